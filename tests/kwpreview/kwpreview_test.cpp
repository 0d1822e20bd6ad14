// kwpreview.exe is run as its users run it; what it draws is compared with what the library's readers draw here.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <tuple>

#include "gallery/gallery_items.h"
#include "kit/paths.h"
#include "kwdialogs.h"
#include "kwpreview/render.h"
#include "kwpreview/resource.h"
#include "png_file.h"
#include "preview/dispatch.h"
#include "support/drawings.h"
#include "support/samples.h"
#include "support/temp_folder.h"

namespace {

using Arguments = std::vector<std::string>;

#define QUOTE(text) #text
#define QUOTED(text) QUOTE(text)
#define VERSION QUOTED(KW_VERSION_MAJOR.KW_VERSION_MINOR.KW_VERSION_PATCH)

const std::string kDrawing = DxfDrawing(40, 30, "0 CIRCLE|10 20|20 15|40 14");
const std::string kEmptyDrawing = DxfDrawing(40, 30, "0 CIRCLE|10 90|20 90|40 9|60 1");  // outside and hidden

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

std::wstring Wide(const std::string& text) {
    wchar_t wide[4096] = L"";
    MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide, 4096);
    return wide;
}

std::string Utf8(const std::string& text) { return std::filesystem::path(Wide(text)).u8string(); }

std::string Why(NoPicture problem) {
    const std::string text = ProgramText(IDS_WHY + static_cast<UINT>(problem));
    return Utf8(text.substr(0, text.find("%1")));
}

SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};

HANDLE OutputFile(const std::string& path) {
    return CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
}

struct Result {
    DWORD code = 0;
    std::string out, err;
};

// `out` takes the place of a file for stdout, and is closed.
Result RunWide(const std::vector<std::wstring>& arguments, const char* folder = ".", HANDLE out = nullptr) {
    const TempFolder output;
    std::wstring line = L"\"" + Wide(ProgramPath()) + L"\"";
    for (const std::wstring& argument : arguments) line += L" \"" + argument + L"\"";
    STARTUPINFOW start = {};
    start.cb = sizeof(start);
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = out ? out : OutputFile(output.At("out"));
    start.hStdError = OutputFile(output.At("err"));
    PROCESS_INFORMATION process = {};
    Result result;
    EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, Wide(folder).c_str(), &start,
                               &process))
        << GetLastError();
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &result.code);
    for (const HANDLE handle : {process.hThread, process.hProcess, start.hStdOutput, start.hStdError})
        CloseHandle(handle);
    if (!out) result.out = ReadWholeFile(output.At("out"));
    result.err = ReadWholeFile(output.At("err"));
    return result;
}

Result RunKwpreview(const Arguments& arguments, const char* folder = ".") {
    std::vector<std::wstring> wide;
    for (const std::string& argument : arguments) wide.push_back(Wide(argument));
    return RunWide(wide, folder);
}

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

// The program says what went well to stdout and what did not to stderr: these parts, and to the other one nothing.
void ExpectRun(const Arguments& arguments, DWORD code, const std::vector<std::string>& parts) {
    const Result result = RunKwpreview(arguments);
    const std::string &said = code ? result.err : result.out, &other = code ? result.out : result.err;
    EXPECT_EQ(result.code, code) << said << other;
    EXPECT_EQ(other, "");
    for (const std::string& part : parts) EXPECT_TRUE(Has(said, part)) << part << said;
}

int FilesIn(const std::string& folder) {
    GalleryItems files;
    EXPECT_TRUE(ListFolder(&files, folder.c_str(), "*"));
    return files.count;
}

// The PNG file that the library's own reader gives; empty when it gives no picture.
std::string DrawnByReader(const std::string& path, int width, int height, DWORD mode = kRenderColor | kRenderFullDxf) {
    const PreviewReader reader = PaneReaderFor(IdentifyFileType(path.c_str(), nullptr, 0));
    const RECT target = {0, 0, width, height};
    const UniqueBitmap bitmap(reader ? reader(mode, path.c_str(), &target, nullptr, 0) : nullptr);
    if (!bitmap) return "";
    const TempFolder folder;
    EXPECT_TRUE(SavePng(bitmap.get(), folder.At("a.png").c_str()));
    return ReadWholeFile(folder.At("a.png"));
}

}  // namespace

TEST(Kwpreview, Samples) {
    const TempFolder folder;
    const std::string out = folder.At("deep\\er");
    const auto samples = SampleFiles();
    ASSERT_FALSE(samples.empty());
    const std::string root(samples[0].first, 0, samples[0].first.find_last_of("/\\"));
    const Result result = RunKwpreview({root, "-o", out, "--size", "200x150", "--kind"});
    EXPECT_EQ(result.code, 0u) << "texts are no failures";
    int pictures = 0;
    for (const auto& [path, contents] : samples) {
        const std::string name = FindFileName(path.c_str()), png = DrawnByReader(path, 200, 150);
        EXPECT_TRUE(ReadWholeFile(out + "\\" + name + ".png") == png) << name;
        EXPECT_TRUE(Has(result.out, "\\" + name + ": ")) << name;
        pictures += !png.empty();
    }
    EXPECT_EQ(FilesIn(out), pictures);
    EXPECT_GE(pictures, 17);
    const std::string kindLine = Utf8(ProgramText(IDS_KIND_LINE));
    const std::string bitmapKind = kindLine.substr(0, kindLine.find("%1")) + "bitmap (";
    EXPECT_TRUE(Has(result.out, "flange.bmp.png, 176x124\r\n    " + bitmapKind)) << result.out;
}

TEST(Kwpreview, Comments) {
    const TempFolder folder;
    const std::string file = folder.Write("a.txt", "one  \r\n\r\n\ttwo\x1b[2J\r\n \r\n\r\n");
    const std::string nc = folder.Write("b.nc", "G90 G01 X1\n"), unknown = folder.Write("c.bin", std::string(9, '\1'));
    ExpectRun({file, "--comment"}, 0, {":\r\n        one\r\n\r\n        \ttwo.[2J\r\n"});
    ExpectRun({nc, "--comment"}, 0, {"        G90 G01 X1\r\n"});  // the file list's comment
    ExpectRun({unknown, "--comment"}, 0, {Utf8(ProgramText(IDS_NO_COMMENT_LINE))});
}

TEST(Kwpreview, Modes) {
    const TempFolder folder;
    const std::string shape = folder.Write("shape.dxf", kDrawing);
    const std::string text = folder.Write("text.dxf", DxfDrawing(40, 30, "0 TEXT|10 5|20 5|40 6|1 Plate"));
    const std::tuple<std::string, Arguments, int, int, DWORD> cases[] = {
        {shape, {"--size", "16x4096"}, 16, 4096, kRenderColor | kRenderFullDxf},
        {shape, {"--basic-dxf"}, 640, 480, kRenderColor},
        {shape, {"--mono"}, 640, 480, kRenderFullDxf},
        {text, {"--frames", "--size", "90X60", "--mono"}, 90, 60, kRenderTextFrames | kRenderFullDxf},
    };
    for (auto [file, arguments, width, height, mode] : cases) {
        arguments.push_back(file);
        EXPECT_EQ(RunKwpreview(arguments).code, 0u);
        EXPECT_TRUE(ReadWholeFile(file + ".png") == DrawnByReader(file, width, height, mode)) << mode;
    }
}

TEST(Kwpreview, Reasons) {
    const TempFolder folder;
    const std::string native = NativeFile(kEditionA, 40, 30, LineRecord(1, 1, 30, 20));
    const std::string locked = folder.Write("locked.dxf", kDrawing);
    const UniqueHandle lock(
        CreateFileA(locked.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    folder.MakeFolder("taken.dxf.png");
    folder.Write("blank.dxf", kEmptyDrawing);
    const std::tuple<std::string, NoPicture, DWORD> cases[] = {
        {folder.At("missing.dxf"), NoPicture::missing, 3},
        {folder.At("none\\a.dxf"), NoPicture::missing, 3},
        {folder.At("*.zip"), NoPicture::noMatch, 3},
        {folder.MakeFolder("empty"), NoPicture::emptyFolder, 3},
        {locked, NoPicture::unreadable, 3},
        {"NUL", NoPicture::device, 3},
        {folder.Write("empty.dxf", ""), NoPicture::empty, 1},
        {folder.Write("a.bin", std::string("\0\1\2", 3)), NoPicture::unknownKind, 0},
        {folder.Write("a.ico", std::string("\0\0\1", 3)), NoPicture::kindWithout, 0},
        {folder.Write("a.txt", "text\n"), NoPicture::textOnly, 0},
        {folder.Write("cut.qa", native.substr(0, native.size() - 1)), NoPicture::damaged, 1},
        {folder.Write("a.cmd", "DIALOG_PREVIEW \"none.dxf\"\r\n"), NoPicture::missing, 1},
        {folder.Write("no.cmd", "DIALOG_PREVIEW none.dxf\r\n"), NoPicture::namesNone, 1},
        {folder.Write("self.cmd", "DIALOG_PREVIEW \"self.cmd\"\r\n"), NoPicture::namesOther, 1},
        {folder.At("blank.dxf"), NoPicture::blankFullDxf, 1},
        {folder.Write("blank.cmd", "DIALOG_PREVIEW \"blank.dxf\"\r\n"), NoPicture::blankFullDxf, 1},
        {folder.Write("taken.dxf", kDrawing), NoPicture::notWritten, 4},
    };
    const int before = FilesIn(folder.path);
    for (const auto& [path, problem, code] : cases) ExpectRun({path}, code, {path + ": ", Why(problem)});
    EXPECT_EQ(RunKwpreview({folder.At("a.txt"), "--strict"}).code, 1u);
    EXPECT_EQ(FilesIn(folder.path), before) << "no picture, and no part of one";
    EXPECT_EQ(RunKwpreview({folder.At("missing.dxf"), folder.At("taken.dxf"), folder.At("a.txt")}).code, 4u);
}

TEST(Kwpreview, DxfReaders) {
    const TempFolder folder;
    const std::string left = folder.Write("left.dxf", "0\nLINE\n10\n0\n20\n0\n11\n4\n21\n3\n");
    const std::string empty = folder.Write("empty.dxf", kEmptyDrawing), both = folder.Write("both.dxf", kDrawing);
    ExpectRun({left}, 0, {Utf8(ProgramText(IDS_ONLY_FULL_DXF))});
    ExpectRun({left, "--basic-dxf"}, 1, {Why(NoPicture::needsFullDxf)});
    ExpectRun({empty, "--basic-dxf"}, 1, {Why(NoPicture::blankDxf)});
    EXPECT_FALSE(Has(RunKwpreview({both}).out, Utf8(ProgramText(IDS_ONLY_FULL_DXF))));
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
    EXPECT_EQ(FilesIn(out), 4);
    EXPECT_TRUE(ReadWholeFile(out + "\\part.dxf.png") == DrawnByReader(a + "\\part.dxf", 640, 480));
    EXPECT_TRUE(ReadWholeFile(out + "\\PART.dxf.2.png") == DrawnByReader(b + "\\PART.dxf", 640, 480));

    // A second run meets the pictures of the first.
    RunKwpreview({a});
    const Result again = RunKwpreview({a});
    EXPECT_EQ(again.code, 0u) << again.out;
    EXPECT_EQ(FilesIn(a), 7);
    EXPECT_EQ(RunKwpreview({a + "\\part.dxf", "-o", a + "\\b.dxf"}).code, 4u) << "a file is no folder";
    EXPECT_EQ(ReadWholeFile(a + "\\b.dxf"), kDrawing);

    // An input is never written to, whatever its name.
    folder.Write("b c\\PART.dxf.png", "mine");
    EXPECT_EQ(RunKwpreview({b + "\\PART.dxf", b + "\\PART.dxf.png"}).code, 0u);
    EXPECT_EQ(RunKwpreview({b + "\\PART.dxf.png", "-o", b + "\\PART.dxf.png"}).code, 2u);
    EXPECT_EQ(ReadWholeFile(b + "\\PART.dxf.png"), "mine");

    // Sub-folders on request, a picture's own name for one file.
    EXPECT_EQ(RunKwpreview({folder.path, "-o", out, "--recursive", "--mono"}).code, 0u);
    EXPECT_TRUE(ReadWholeFile(out + "\\PART.dxf.2.png") == DrawnByReader(b + "\\PART.dxf", 640, 480, kRenderFullDxf));
    EXPECT_EQ(RunKwpreview({"a\\b.dxf", "-o", "new\\x.PNG"}, folder.path.c_str()).code, 0u);
    EXPECT_TRUE(ReadWholeFile(folder.At("new\\x.PNG")) == DrawnByReader(a + "\\b.dxf", 640, 480));
    EXPECT_EQ(RunKwpreview({a, "-o", "x.png"}, folder.path.c_str()).code, 2u);
}

// Names are wide, comments are in the system's code page, both go out as UTF-8.
TEST(Kwpreview, NamesOfEveryLanguage) {
    const TempFolder folder;
    // One of the folder's characters is in neither language's code page.
    const std::filesystem::path inside = Wide(folder.At("")) + L"\uAC00\u56F3";
    ASSERT_TRUE(std::filesystem::create_directory(inside));
    const auto put = [&](const wchar_t* name, const std::string& contents) {
        std::ofstream(inside / name, std::ios::binary) << contents;
    };
    for (const wchar_t* name : {L"\uAC00.dxf", L"\uAC01.dxf", L"b.dxf"}) put(name, kDrawing);
    put(L"\uAC00.txt", "Ein Text.\r\n.");
    put(L"\uAC00.cmd", "DIALOG_PREVIEW \"b.dxf\"\r\n");
    const Result result = RunWide({inside, L"--comment"});
    EXPECT_EQ(result.code, 0u) << result.err;
    EXPECT_TRUE(Has(result.out, u8"\uAC00\u56F3\\\uAC00.dxf: ") && Has(result.out, "        Ein Text.\r\n"))
        << result.out;
    const std::string drawn = DrawnByReader(folder.Write("x.dxf", kDrawing), 640, 480);
    for (const wchar_t* name : {L"\uAC00.dxf.png", L"\uAC01.dxf.png", L"b.dxf.png", L"\uAC00.cmd.png"}) {
        std::ifstream png(inside / name, std::ios::binary);
        EXPECT_TRUE(std::string(std::istreambuf_iterator<char>(png), {}) == drawn) << name[0];
    }
    if (GetACP() != 932) return;
    EXPECT_TRUE(
        Has(RunKwpreview({folder.Write("\x95\x5c.txt", "\x83\x5c\r\n."), "--comment"}).out, u8"        ソ\r\n"));
}

TEST(Kwpreview, Usage) {
    const TempFolder folder;
    const std::string file = folder.Write("a.dxf", kDrawing);
    const Arguments wrong[] = {
        // clang-format off
        {"--mono"}, {file, "--unknown"}, {file, "-o"}, {file, "-o", ""}, {file, "--size", "640"},
        {file, "--size", "640x480x1"}, {file, "--size", "15x480"}, {file, "--size", "640x4097"},
        // clang-format on
    };
    for (const Arguments& arguments : wrong) ExpectRun(arguments, 2, {"kwpreview --help"});
    EXPECT_EQ(FilesIn(folder.path), 1);

    ExpectRun({"--help", file}, 0, {"--frames", "UTF-8", "\r\n  4  "});
    EXPECT_EQ(RunKwpreview({"--version"}).out, "kwpreview " VERSION "\r\n");
    HANDLE reader = nullptr, writer = nullptr;
    ASSERT_TRUE(CreatePipe(&reader, &writer, &inherited, 0));
    CloseHandle(reader);
    EXPECT_EQ(RunWide({Wide(file)}, ".", writer).code, 4u) << "nobody reads the report";
    folder.Write("-a.dxf", kDrawing);
    EXPECT_EQ(RunKwpreview({"--", "-a.dxf"}, folder.path.c_str()).code, 0u);
}

TEST(Kwpreview, EveryKindAndReasonHasItsText) {
    for (int kind = FT_LUMOS; kind <= FT_COMMAND; ++kind)
        EXPECT_EQ(ProgramText(IDS_KIND + static_cast<UINT>(kind)).empty(), kind == 15) << kind;  // 15 is no kind
    for (UINT reason = 1; reason <= static_cast<UINT>(NoPicture::namesOther); ++reason)
        EXPECT_FALSE(ProgramText(IDS_WHY + reason).empty()) << reason;
}
