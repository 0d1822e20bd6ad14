// kwpreview.exe is run as its users run it; what it draws is compared with what the library's readers draw here.
#include <windows.h>

#include <gtest/gtest.h>
#include <winioctl.h>

#include <algorithm>

#include "kit/paths.h"
#include "kwpreview/render.h"
#include "kwpreview/resource.h"
#include "png_file.h"
#include "preview/dispatch.h"
#include "support/drawings.h"
#include "support/samples.h"
#include "support/temp_folder.h"

namespace {

using Arguments = std::vector<std::string>;

const std::string kDrawing = DxfDrawing(40, 30, "0 CIRCLE|10 20|20 15|40 14");
const std::string kEmptyDrawing = DxfDrawing(40, 30, "0 CIRCLE|10 90|20 90|40 9");  // outside

// kwpreview.exe stands beside the tests.
std::string ProgramPath() {
    char path[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    return std::string(static_cast<const char*>(path), FindFileName(path)) + "kwpreview.exe";
}

// A text of the program, in the language of this run.
std::string ProgramText(UINT id) {
    char text[512] = "";
    const HMODULE module = LoadLibraryExA(ProgramPath().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    EXPECT_TRUE(module);
    LoadStringA(module, id, text, sizeof(text));
    FreeLibrary(module);
    return text;
}

std::string Utf8(const std::string& text) {
    wchar_t wide[4096] = L"";
    char utf8[12288] = "";
    MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide, 4096);
    WideCharToMultiByte(CP_UTF8, 0, wide, -1, utf8, sizeof(utf8), nullptr, nullptr);
    return utf8;
}

std::string Why(NoPicture problem) {
    const std::string text = ProgramText(IDS_WHY + static_cast<UINT>(problem));
    EXPECT_FALSE(text.empty()) << static_cast<int>(problem);
    return Utf8(text.substr(0, text.find("%1")));
}

HANDLE OutputFile(const std::string& path) {
    SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
    return CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
}

struct Result {
    DWORD code = 0;
    std::string out, err;
};

Result RunKwpreview(const Arguments& arguments, const char* folder = nullptr) {
    const TempFolder output;
    std::string line = "\"" + ProgramPath() + "\"";
    for (const std::string& argument : arguments) line += " \"" + argument + "\"";
    STARTUPINFOA start = {};
    start.cb = sizeof(start);
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = OutputFile(output.At("out"));
    start.hStdError = OutputFile(output.At("err"));
    PROCESS_INFORMATION process = {};
    Result result;
    if (CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, folder, &start, &process)) {
        if (WaitForSingleObject(process.hProcess, 60000) != WAIT_OBJECT_0) TerminateProcess(process.hProcess, 99);
        WaitForSingleObject(process.hProcess, INFINITE);
        GetExitCodeProcess(process.hProcess, &result.code);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    } else {
        ADD_FAILURE() << line << ": " << GetLastError();
    }
    CloseHandle(start.hStdOutput);
    CloseHandle(start.hStdError);
    result.out = ReadWholeFile(output.At("out"));
    result.err = ReadWholeFile(output.At("err"));
    return result;
}

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

std::size_t Lines(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

std::size_t FilesIn(const std::string& folder) {
    std::size_t count = 0;
    WIN32_FIND_DATAA found;
    const UniqueFind search(FindFirstFileA((folder + "\\*").c_str(), &found));
    for (BOOL more = search.get() != INVALID_HANDLE_VALUE; more; more = FindNextFileA(search.get(), &found)) {
        count += !(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
    }
    return count;
}

struct Seen {
    std::string png, comment;
};

// What the library's own reader gives.
Seen DrawnByReader(const std::string& path, int width, int height, DWORD mode = kRenderColor) {
    const TempFolder folder;
    const RECT target = {0, 0, width, height};
    std::vector<char> comment(32767);
    const PreviewReader reader = PaneReaderFor(IdentifyFileType(path.c_str(), nullptr, 0));
    const UniqueBitmap bitmap(reader ? reader(mode, path.c_str(), &target, comment.data(), 32767) : nullptr);
    if (!bitmap) return {"", comment.data()};
    EXPECT_TRUE(SavePng(bitmap.get(), folder.At("a.png").c_str()));
    return {ReadWholeFile(folder.At("a.png")), comment.data()};
}

// Width and height stand at the same place in every PNG file.
std::string SizeOfPng(const std::string& png) {
    if (png.size() < 24 || png.compare(1, 3, "PNG") != 0) return "no PNG";
    const auto number = [&](std::size_t at) {
        return static_cast<std::uint8_t>(png[at + 2]) * 256 + static_cast<std::uint8_t>(png[at + 3]);
    };
    return std::to_string(number(16)) + "x" + std::to_string(number(20));
}

}  // namespace

TEST(Kwpreview, Samples) {
    const struct {
        const char *end, *word, *size;
    } kinds[] = {{".lbk", "backup", "200x150"},
                 {".lms", "lumos", "200x150"},
                 {"house_plan.qa", "lumos", "200x150"},
                 {".qa", "qa", "200x150"},
                 {".qj", "qj", ""},
                 {".qf", "qf", ""},
                 {".dxf", "dxf", "200x150"},
                 {".exf", "exf", "200x150"},
                 {"flange.bmp", "bitmap", "176x124"},
                 {".bmp", "bitmap", "178x124"},
                 {".txt", "text", ""},
                 {".nc", "nc", ""},
                 {".cmd", "command", "200x150"}};
    const TempFolder folder;
    const std::string out = folder.At("deep\\er");
    const auto samples = SampleFiles();
    ASSERT_FALSE(samples.empty());
    const std::string root(samples[0].first, 0, samples[0].first.rfind('/'));
    const Result result = RunKwpreview({root, "-o", out, "--size", "200x150", "--kind", "--comment"});
    EXPECT_EQ(result.code, 1u);
    std::size_t pictures = 0;
    for (const auto& sample : samples) {
        const std::string name = FindFileName(sample.first.c_str());
        for (const auto& kind : kinds) {
            const std::string end = kind.end;
            if (name.size() < end.size() || name.compare(name.size() - end.size(), end.size(), end) != 0) continue;
            const std::string png = ReadWholeFile(out + "\\" + name + ".png");
            EXPECT_EQ(SizeOfPng(png), *kind.size ? kind.size : "no PNG") << name;
            const Seen seen = DrawnByReader(sample.first, 200, 150);
            EXPECT_TRUE(png == seen.png) << name;
            pictures += *kind.size != 0;

            const std::size_t at = result.out.find("\\" + name + ": ");
            ASSERT_NE(at, std::string::npos) << name;
            const std::string report = result.out.substr(at, 700);
            const std::string first = *kind.size ? name + ".png, " + kind.size + "\r\n    " : "\r\n    ";
            const std::string kindLine = Utf8(ProgramText(IDS_KIND_LINE)), word = std::string(kind.word) + " (";
            EXPECT_TRUE(Has(report, first + kindLine.substr(0, kindLine.find("%1")) + word)) << report;
            const std::string comment = Utf8(seen.comment.substr(0, seen.comment.find('\r')));
            EXPECT_TRUE(Has(report, comment.empty() ? "" : "        " + comment + "\r\n")) << report;
            break;
        }
    }
    EXPECT_EQ(FilesIn(out), pictures);
    EXPECT_GE(pictures, 17u);
}

TEST(Kwpreview, Comments) {
    const TempFolder folder;
    const std::string file = folder.Write("a.txt", "one  \r\n\r\n\ttwo\x1b[2J\r\n \r\n\r\n");
    const std::string nc = folder.Write("b.nc", "G90 G01 X1\n"), bitmap = folder.Write("c.bin", std::string(9, '\1'));
    EXPECT_TRUE(Has(RunKwpreview({file, "--comment"}).out, ":\r\n        one\r\n\r\n        \ttwo.[2J\r\n"));
    EXPECT_TRUE(Has(RunKwpreview({nc, "--comment"}).out, "        G90 G01 X1\r\n")) << "the file list's comment";
    EXPECT_TRUE(Has(RunKwpreview({bitmap, "--comment"}).out, Utf8(ProgramText(IDS_NO_COMMENT_LINE))));
    EXPECT_EQ(Lines(RunKwpreview({file}).out), 1u);
}

TEST(Kwpreview, Modes) {
    const TempFolder folder;
    const std::string shape = folder.Write("shape.dxf", kDrawing);
    const std::string text = folder.Write("text.dxf", DxfDrawing(40, 30, "0 TEXT|10 5|20 5|40 6|1 Plate"));
    const struct {
        Arguments arguments;
        int width, height;
        DWORD mode;
    } cases[] = {
        {{shape}, 640, 480, kRenderColor},
        {{shape, "--size", "16x4096"}, 16, 4096, kRenderColor},
        {{shape, "--mono"}, 640, 480, 0},
        {{text, "--frames"}, 640, 480, kRenderColor | kRenderTextFrames},
        {{"--frames", "--size", "90X60", "--mono", text}, 90, 60, kRenderTextFrames},
    };
    for (const auto& c : cases) {
        const std::string& file = c.arguments[0] == shape ? shape : text;
        EXPECT_EQ(RunKwpreview(c.arguments).code, 0u);
        EXPECT_TRUE(ReadWholeFile(file + ".png") == DrawnByReader(file, c.width, c.height, c.mode).png) << c.mode;
    }
}

TEST(Kwpreview, Reasons) {
    const TempFolder folder;
    const std::string native = NativeFile(kEditionA, 40, 30, LineRecord(1, 1, 30, 20));
    const std::string bitmap = BitmapFile(2, 2, 24, "", std::string(16, '\0'));
    const std::string locked = folder.Write("locked.dxf", kDrawing), huge = folder.Write("huge.dxf", kDrawing);
    const UniqueHandle lock(
        CreateFileA(locked.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    {
        const UniqueHandle file(CreateFileA(huge.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        DWORD size = 0;
        DeviceIoControl(file.get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &size, nullptr);
        LARGE_INTEGER end = {};
        end.QuadPart = 0xF0000000;
        SetFilePointerEx(file.get(), end, nullptr, FILE_BEGIN);
        SetEndOfFile(file.get());
    }
    folder.MakeFolder("taken.dxf.png");
    folder.Write("blank.dxf", kEmptyDrawing);
    const struct {
        std::string path;
        NoPicture problem;
        DWORD code;
    } cases[] = {
        {folder.At("missing.dxf"), NoPicture::missing, 3},
        {folder.At("none\\a.dxf"), NoPicture::missing, 3},
        {folder.At("*.zip"), NoPicture::noMatch, 3},
        {folder.At("taken.dxf.p*"), NoPicture::noMatch, 3},  // a folder is no file
        {folder.MakeFolder("empty"), NoPicture::emptyFolder, 3},
        {locked, NoPicture::unreadable, 3},
        {"NUL", NoPicture::device, 3},
        {folder.Write("empty.dxf", ""), NoPicture::empty, 1},
        {huge, NoPicture::tooLarge, 1},
        {folder.Write("a.bin", std::string("\0\1\2", 3)), NoPicture::unknownKind, 1},
        {folder.Write("a.ico", std::string("\0\0\1", 3)), NoPicture::kindWithout, 1},
        {folder.Write("a.nc", "G90 G01 X1\n"), NoPicture::kindWithout, 1},
        {folder.Write("a.qf", BytesAt(1024, {{4, "CADORVIL QF"}})), NoPicture::titleOnly, 1},
        {folder.Write("a.txt", "text\n"), NoPicture::textOnly, 1},
        {folder.Write("a.exe", "MZ"), NoPicture::versionOnly, 1},
        {ProgramPath(), NoPicture::versionOnly, 1},
        {folder.Write("cut.qa", native.substr(0, native.size() - 1)), NoPicture::damaged, 1},
        {folder.Write("cut.lbk", BackupFile(40, 30, LineRecord(1, 1, 30, 20)).substr(0, 450)), NoPicture::damaged, 1},
        {folder.Write("cut.bmp", bitmap.substr(0, 60)), NoPicture::badBitmap, 1},
        {folder.Write("a.cmd", "DIALOG_PREVIEW \"none.dxf\"\r\n"), NoPicture::missing, 1},
        {folder.Write("no.cmd", "DIALOG_PREVIEW none.dxf\r\n"), NoPicture::namesNone, 1},
        {folder.Write("self.cmd", "DIALOG_PREVIEW \"self.cmd\"\r\n"), NoPicture::namesOther, 1},
        {folder.At("blank.dxf"), NoPicture::blankDxf, 1},
        {folder.Write("left.dxf", "0\nSECTION\n2\nENTITIES\n0\nLINE\n10\n1\n20\n1\n11\n90\n21\n90\n0\nEOF\n"),
         NoPicture::blankDxf, 1},
        {folder.Write("blank.qa", NativeFile(kEditionA, 40, 30, "")), NoPicture::blankRecords, 1},
        {folder.Write("blank.exf", "GL 1 0 0 9 9 0\n"), NoPicture::blankText, 1},
        {folder.Write("blank.cmd", "DIALOG_PREVIEW \"blank.dxf\"\r\n"), NoPicture::blankDxf, 1},
        {folder.Write("taken.dxf", kDrawing), NoPicture::notWritten, 4},
    };
    const std::size_t before = FilesIn(folder.path);
    for (const auto& c : cases) {
        const Result result = RunKwpreview({c.path});
        EXPECT_EQ(result.code, c.code) << result.out;
        EXPECT_TRUE(Has(result.out, c.path + ": ") && Has(result.out, Why(c.problem))) << result.out;
        EXPECT_EQ(Lines(result.out), 1u) << result.out;
    }
    EXPECT_EQ(FilesIn(folder.path), before) << "no picture, and no part of one";
    const std::string bad = folder.At("taken.dxf"), missing = folder.At("missing.dxf"), text = folder.At("a.txt");
    EXPECT_EQ(RunKwpreview({bad, missing, text}).code, 4u);
    EXPECT_EQ(RunKwpreview({text, missing, text}).code, 3u);
}

TEST(Kwpreview, PatternsFoldersAndNames) {
    const TempFolder folder;
    const std::string a = folder.MakeFolder("a"), b = folder.MakeFolder("b c"), out = folder.At("out");
    folder.Write("a\\part.dxf", kDrawing);
    folder.Write("b c\\PART.dxf", DxfDrawing(40, 30, "0 LINE|10 0|20 0|11 40|21 30"));
    for (const char* name : {"a\\b.dxf", "a\\A.DXF", "a\\old.png"}) folder.Write(name, kDrawing);
    folder.MakeFolder("a\\sub.dxf");

    // Every file once, in the order of names; two of a name do not meet.
    const Result result = RunKwpreview({"a\\*.dxf", "b c", "a/b.dxf", "-o", "out"}, folder.path.c_str());
    EXPECT_EQ(result.code, 0u) << result.out;
    EXPECT_EQ(result.out.find("a\\A.DXF: out\\A.DXF.png, 640x480\r\na\\b.dxf: out\\b.dxf.png, 640x480\r\n"
                              "a\\part.dxf: out\\part.dxf.png, 640x480\r\n"
                              "b c\\PART.dxf: out\\PART.dxf.2.png, 640x480\r\n4 "),
              0u)
        << result.out;
    EXPECT_EQ(FilesIn(out), 4u);
    EXPECT_TRUE(ReadWholeFile(out + "\\part.dxf.png") == DrawnByReader(a + "\\part.dxf", 640, 480).png);
    EXPECT_TRUE(ReadWholeFile(out + "\\PART.dxf.2.png") == DrawnByReader(b + "\\PART.dxf", 640, 480).png);
    EXPECT_EQ(Lines(result.err), 4u) << result.err;

    // A second run meets the pictures of the first.
    for (int round = 0; round < 2; ++round) {
        const Result again = RunKwpreview({a});
        EXPECT_EQ(again.code, 0u) << again.out;
        EXPECT_EQ(again.err, "") << "no progress for three files";
        EXPECT_EQ(FilesIn(a), 7u);
    }
    EXPECT_EQ(RunKwpreview({a + "\\part.dxf", "-o", a + "\\b.dxf"}).code, 4u) << "a file is no folder";
    EXPECT_EQ(ReadWholeFile(a + "\\b.dxf"), kDrawing);

    // An input is never written to, whatever its name.
    folder.Write("b c\\PART.dxf.png", "mine");
    EXPECT_EQ(RunKwpreview({b + "\\PART.dxf", b + "\\PART.dxf.png"}).code, 1u);
    EXPECT_EQ(ReadWholeFile(b + "\\PART.dxf.png"), "mine");
}

// Names and texts come in the system's code page and go out as UTF-8.
TEST(Kwpreview, JapaneseNames) {
    const TempFolder folder;
    wchar_t path[MAX_PATH] = L"";
    const int length = MultiByteToWideChar(CP_ACP, 0, folder.At("x.dxf").c_str(), -1, path, MAX_PATH);
    ASSERT_GT(length, 6);
    path[length - 6] = 0xAC00;  // in neither language's code page
    const UniqueHandle foreign(
        CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    ASSERT_TRUE(IsOpen(foreign));
    const Result other = RunKwpreview({folder.path});
    EXPECT_EQ(other.code, 3u);
    EXPECT_TRUE(Has(other.out, Why(NoPicture::foreignName))) << other.out;
    if (GetACP() != 932) return;
    const std::string inside = folder.MakeFolder("\x90\x7d\x96\xca");         // drawings
    folder.Write("\x90\x7d\x96\xca\\\x95\x5c.dxf", kDrawing);                 // a backslash as second byte
    folder.Write("\x90\x7d\x96\xca\\\x95\x5c\x8e\xa6.txt", "\x83\x5c\r\n.");  // and in the text
    const Result result = RunKwpreview({inside, "-o", inside + "\\\x95\x5c", "--comment"});
    EXPECT_EQ(result.code, 1u);
    EXPECT_TRUE(Has(result.out, u8"図面\\表.dxf: ") && Has(result.out, u8"\\表\\表.dxf.png, 640x480")) << result.out;
    EXPECT_TRUE(Has(result.out, u8"        ソ\r\n")) << result.out;
    EXPECT_EQ(FilesIn(inside + "\\\x95\x5c"), 1u);
}

TEST(Kwpreview, Usage) {
    const TempFolder folder;
    const std::string file = folder.Write("a.dxf", kDrawing);
    const Arguments wrong[] = {{},
                               {"--mono"},
                               {file, "--unknown"},
                               {file, "-x"},
                               {file, "-o"},
                               {file, "-o", ""},
                               {file, "--size"},
                               {file, "--size", "640"},
                               {file, "--size", "640x"},
                               {file, "--size", "x480"},
                               {file, "--size", "640x480x1"},
                               {file, "--size", "-20x20"},
                               {file, "--size", "15x480"},
                               {file, "--size", "640x4097"},
                               {file, "--size", "99999999999x480"},
                               {file, "--size", " 64x48"}};
    for (const Arguments& arguments : wrong) {
        const Result result = RunKwpreview(arguments);
        EXPECT_EQ(result.code, 2u) << arguments.size();
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(Has(result.err, "kwpreview --help")) << result.err;
    }
    EXPECT_EQ(FilesIn(folder.path), 1u);

    const Result help = RunKwpreview({"--help", file});
    EXPECT_EQ(help.code, 0u);
    EXPECT_TRUE(Has(help.out, "--frames") && Has(help.out, "UTF-8") && Has(help.out, "\r\n  4  ")) << help.out;
    folder.Write("-a.dxf", kDrawing);
    EXPECT_EQ(RunKwpreview({"--", "-a.dxf"}, folder.path.c_str()).code, 0u);
}

TEST(Kwpreview, EveryKindHasItsName) {
    for (int kind = FT_LUMOS; kind <= FT_COMMAND; ++kind) {
        EXPECT_EQ(ProgramText(IDS_KIND + static_cast<UINT>(kind)).empty(), kind == 15) << kind;  // 15 is no kind
    }
}
