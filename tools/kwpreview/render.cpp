#include "render.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <vector>

#include "console.h"
#include "preview/dispatch.h"
#include "preview/formats/command.h"
#include "preview/reader.h"

namespace {

constexpr DWORD kCommentSize = 32767;  // as in the file dialog's pane

// What it means for a kind when its reader gives no bitmap, and when the bitmap is all white.
struct KindRow {
    FileTypeCode code;
    const wchar_t* word;
    NoPicture withoutBitmap = NoPicture::kindWithout;
    NoPicture blank = NoPicture::none;
};
constexpr KindRow kKinds[] = {
    {FT_LUMOS, L"lumos", NoPicture::damaged, NoPicture::blankRecords},
    {FT_QA, L"qa", NoPicture::damaged, NoPicture::blankRecords},
    {FT_QJ, L"qj", NoPicture::titleOnly},
    {FT_QF, L"qf", NoPicture::titleOnly},
    {FT_DXF, L"dxf", NoPicture::damaged, NoPicture::blankDxf},
    {FT_BMI, L"bmi"},
    {FT_PCS, L"pcs"},
    {FT_EXF, L"exf", NoPicture::damaged, NoPicture::blankText},
    {FT_HLP, L"help"},
    {FT_DLL, L"dll", NoPicture::versionOnly},
    {FT_BAT, L"batch"},
    {FT_EXE, L"exe", NoPicture::versionOnly},
    {FT_SYS, L"sys"},
    {FT_VXD, L"vxd"},
    {FT_OBJLIB, L"object"},
    {FT_BMP, L"bitmap", NoPicture::badBitmap},
    {FT_ICO, L"icon"},
    {FT_CUR, L"cursor"},
    {FT_LZH, L"lzh"},
    {FT_SZDD, L"szdd"},
    {FT_TEXT, L"text", NoPicture::textOnly},
    {FT_BINARY, L"unknown", NoPicture::unknownKind},
    {FT_NCPROGRAM, L"nc"},
    {FT_BACKUP, L"backup", NoPicture::damaged, NoPicture::blankRecords},
    {FT_BLOCKSEQ, L"blocks"},
    {FT_COMMAND, L"command", NoPicture::ofNamed, NoPicture::ofNamed},
};

const KindRow& RowOf(FileTypeCode kind) {
    for (const KindRow& row : kKinds) {
        if (row.code == kind) return row;
    }
    static constexpr KindRow kOther = {FT_BINARY, L"unknown", NoPicture::unknownKind};
    return kOther;
}

struct File {
    UniqueHandle handle;
    std::uint64_t size = 0;
};

// Opens a file as the library does, but by its wide name.
NoPicture OpenFile(const FilePath& path, File* file, DWORD* error) {
    if (FullPath(path).rfind(L"\\\\.\\", 0) == 0) return NoPicture::device;  // merely opening one may block for ever
    file->handle.reset(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                   FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!IsOpen(file->handle)) {
        *error = GetLastError();
        const bool isMissing = *error == ERROR_FILE_NOT_FOUND || *error == ERROR_PATH_NOT_FOUND;
        return isMissing ? NoPicture::missing : NoPicture::unreadable;
    }
    if (GetFileType(file->handle.get()) != FILE_TYPE_DISK) return NoPicture::device;
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(file->handle.get(), &size)) {
        *error = GetLastError();
        return NoPicture::unreadable;
    }
    file->size = static_cast<std::uint64_t>(size.QuadPart);
    return size.QuadPart == 0 ? NoPicture::empty : NoPicture::none;
}

// Empty when the system's code page lacks a character, and for what is longer than a path of the library's.
std::string Narrow(const std::wstring& text) {
    char bytes[4 * MAX_PATH];
    BOOL isForeign = FALSE;
    const int size =
        WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text.c_str(), -1, bytes, sizeof(bytes), nullptr, &isForeign);
    return size == 0 || isForeign ? std::string() : bytes;
}

FileTypeCode Identify(const File& file, const FilePath& path, char* line, int lineSize) {
    std::uint8_t head[kHeadSize];
    DWORD count = 0;
    if (file.size > 0 && !ReadFile(file.handle.get(), head, sizeof(head), &count, nullptr)) count = 0;
    return IdentifyBytes({head, count}, Narrow(path.extension()).c_str(), line, lineSize);
}

// The whole file; null when it does not fit the memory or cannot be read to its end.
std::unique_ptr<std::uint8_t[]> LoadFile(const File& file) {
    if (file.size > MAXLONG) return nullptr;
    const auto size = static_cast<DWORD>(file.size);
    std::unique_ptr<std::uint8_t[]> bytes(new (std::nothrow) std::uint8_t[size]);
    DWORD count = 0;
    SetFilePointer(file.handle.get(), 0, nullptr, FILE_BEGIN);
    const bool isWhole = bytes && ReadFile(file.handle.get(), bytes.get(), size, &count, nullptr) && count == size;
    return isWhole ? std::move(bytes) : nullptr;
}

void TrimBlanks(std::string* text) {
    while (!text->empty() && text->back() == ' ') text->pop_back();
}

// A comment with plain line ends and without the blanks that fill fields; control characters, which a terminal would
// obey, are shown as dots.
std::wstring CleanComment(const char* comment) {
    std::string text;
    for (; *comment; ++comment) {
        const auto byte = static_cast<std::uint8_t>(*comment);
        if (*comment == '\r') continue;
        if (*comment == '\n') TrimBlanks(&text);
        const bool isShown = (byte >= 32 && byte != 127) || *comment == '\n' || *comment == '\t';
        text += isShown ? *comment : '.';
    }
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
    return text.empty() ? std::wstring() : Widen(text + "\n");
}

// Looks at a band of rows at a time: a large picture's pixels need not stand in the memory twice.
bool IsBlank(HBITMAP bitmap) {
    BITMAP header = {};
    if (!GetObjectA(bitmap, sizeof(header), &header)) return true;
    constexpr long kBand = 64;
    constexpr std::uint32_t kWhite = 0xFFFFFF;
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = header.bmWidth;
    info.bmiHeader.biHeight = header.bmHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(header.bmWidth) * kBand);
    const WindowDc screen(nullptr);
    for (long row = 0; row < header.bmHeight; row += kBand) {
        const auto count = static_cast<UINT>(std::min(kBand, header.bmHeight - row));
        std::fill(pixels.begin(), pixels.end(), kWhite);
        GetDIBits(screen.dc, bitmap, static_cast<UINT>(row), count, pixels.data(), &info, DIB_RGB_COLORS);
        if (std::any_of(pixels.begin(), pixels.end(), [](std::uint32_t p) { return (p & kWhite) != kWhite; })) {
            return false;
        }
    }
    return true;
}

// A run over one file.
struct Run {
    const DWORD renderMode;
    const SIZE size;
    std::vector<char> comment = std::vector<char>(kCommentSize);  // zeros, as command files want it
    RECT Target() const { return {0, 0, size.cx, size.cy}; }
};

Preview Render(const FilePath& path, DWORD renderMode, SIZE size, bool isNamed);

// Beside the command file, as the library has it; empty when the path becomes longer than it can be.
FilePath NamedBeside(const FilePath& commandFile, const std::string& name) {
    const FilePath path = name.empty() ? FilePath() : commandFile.parent_path() / Widen(name);
    return path.native().size() < kMaxPath ? path : FilePath();
}

// A command file shows the drawing that it names, if that is of a kind that command files can show.
void RenderNamed(const FilePath& path, const ByteView file, Run* run, Preview* preview) {
    Comment comment = ContinueComment(run->comment.data(), kCommentSize);
    const FilePath named = NamedBeside(path, TakeCommandFile(file, &comment));
    preview->named = named;
    if (named.empty()) {
        preview->problem = NoPicture::namesNone;
        return;
    }
    Preview drawing = Render(named, run->renderMode, run->size, true);
    preview->whyNamed = drawing.problem;
    preview->error = drawing.error;
    if (drawing.problem != NoPicture::none) preview->problem = NoPicture::ofNamed;
    else if (CommandReaderFor(drawing.kind)) preview->bitmap = std::move(drawing.bitmap);
    else preview->problem = NoPicture::namesOther;
}

// What the other reader of DXF makes of the file.
void CompareDxfReaders(std::uint8_t* bytes, std::size_t size, const PreviewRequest& request, Preview* preview) {
    const bool isFull = request.renderMode & kRenderFullDxf;
    const bool isBlank = preview->problem == NoPicture::blankDxf || preview->problem == NoPicture::damaged;
    if (isFull && isBlank) preview->problem = NoPicture::blankFullDxf;
    if (isFull == isBlank) return;
    const PreviewRequest other = {request.renderMode ^ kRenderFullDxf, request.target, nullptr, 0};
    const UniqueBitmap bitmap(PreviewBytes(kDxfFormat, bytes, size, other));
    const bool shows = bitmap && !IsBlank(bitmap.get());
    if (isFull) preview->onlyFullDxf = !shows;
    else if (shows) preview->problem = NoPicture::needsFullDxf;
}

// A reader says only that it has no picture. What it needs besides a sound file is asked for here.
void RenderContents(const File& file, const PreviewFormat& format, Run* run, Preview* preview) {
    const auto bytes = LoadFile(file);
    if (!bytes) {
        preview->problem = NoPicture::tooLarge;
        return;
    }
    const RECT target = run->Target();
    const PreviewRequest request = {run->renderMode, &target, run->comment.data(), kCommentSize};
    const auto size = static_cast<std::size_t>(file.size);
    preview->bitmap.reset(PreviewBytes(format, bytes.get(), size, request));
    const KindRow& row = RowOf(preview->kind);
    if (!preview->bitmap) {
        Canvas canvas(run->renderMode, target);
        preview->problem = OpenCanvas(&canvas) ? row.withoutBitmap : NoPicture::noMemory;
    } else if (row.blank != NoPicture::none && IsBlank(preview->bitmap.get())) {
        preview->problem = row.blank;
        preview->bitmap.reset();
    }
    if (preview->kind == FT_DXF) CompareDxfReaders(bytes.get(), size, request, preview);
}

void RenderCommand(const File& file, const FilePath& path, Run* run, Preview* preview) {
    const auto bytes = LoadFile(file);
    if (!bytes) {
        preview->problem = NoPicture::tooLarge;
        return;
    }
    bytes[static_cast<std::size_t>(file.size) - 1] = 0;  // as the library ends its texts
    RenderNamed(path, {bytes.get(), static_cast<std::size_t>(file.size)}, run, preview);
}

// Kinds without a picture. The version of a program is asked of the system, by a name that it also has in the system's
// code page.
void ReadVersion(const FilePath& path, Run* run, Preview* preview) {
    preview->problem = RowOf(preview->kind).withoutBitmap;
    wchar_t shortPath[MAX_PATH];
    std::string name = Narrow(path);
    const DWORD length = name.empty() ? GetShortPathNameW(path.c_str(), shortPath, MAX_PATH) : 0;
    if (length > 0 && length < MAX_PATH) name = Narrow(shortPath);
    const PreviewReader reader = PaneReaderFor(preview->kind);
    if (reader && !name.empty()) reader(run->renderMode, name.c_str(), nullptr, run->comment.data(), kCommentSize);
}

Preview Render(const FilePath& path, DWORD renderMode, SIZE size, bool isNamed) {
    Preview preview;
    File file;
    preview.problem = OpenFile(path, &file, &preview.error);
    if (preview.problem != NoPicture::none && preview.problem != NoPicture::empty) return preview;
    char line[1024] = "";
    preview.kind = Identify(file, path, line, sizeof(line));
    const bool isCommand = preview.kind == FT_COMMAND;
    if (preview.problem == NoPicture::empty || (isNamed && isCommand)) return preview;  // it may name itself

    Run run = {renderMode, size};
    if (isCommand) RenderCommand(file, path, &run, &preview);
    else if (const PreviewFormat* format = FormatOf(preview.kind)) RenderContents(file, *format, &run, &preview);
    else ReadVersion(path, &run, &preview);
    preview.comment = CleanComment(run.comment[0] ? run.comment.data() : line);
    return preview;
}

}  // namespace

const wchar_t* KindWord(FileTypeCode kind) { return RowOf(kind).word; }

bool IsDrawing(FileTypeCode kind) {
    const PreviewFormat* const format = FormatOf(kind);
    return kind == FT_COMMAND || (format && format->manner != PreviewFormat::kComment);
}

Preview RenderPreview(const FilePath& path, DWORD renderMode, SIZE size) {
    return Render(path, renderMode, size, false);
}
