#include "render.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "kit/paths.h"
#include "preview/command_reader.h"
#include "preview/dispatch.h"
#include "preview/reader.h"

namespace {

constexpr DWORD kCommentSize = 32767;  // as in the file dialog's pane

// What it means for a kind when its reader gives no bitmap, and when the bitmap is all white.
struct KindRow {
    FileTypeCode code;
    const char* word;
    NoPicture withoutBitmap = NoPicture::kindWithout;
    NoPicture blank = NoPicture::none;
};
constexpr KindRow kKinds[] = {
    {FT_LUMOS, "lumos", NoPicture::damaged, NoPicture::blankRecords},
    {FT_QA, "qa", NoPicture::damaged, NoPicture::blankRecords},
    {FT_QJ, "qj", NoPicture::titleOnly},
    {FT_QF, "qf", NoPicture::titleOnly},
    {FT_DXF, "dxf", NoPicture::damaged, NoPicture::blankDxf},
    {FT_BMI, "bmi"},
    {FT_PCS, "pcs"},
    {FT_EXF, "exf", NoPicture::damaged, NoPicture::blankText},
    {FT_HLP, "help"},
    {FT_DLL, "dll", NoPicture::versionOnly},
    {FT_BAT, "batch"},
    {FT_EXE, "exe", NoPicture::versionOnly},
    {FT_SYS, "sys"},
    {FT_VXD, "vxd"},
    {FT_OBJLIB, "object"},
    {FT_BMP, "bitmap", NoPicture::badBitmap},
    {FT_ICO, "icon"},
    {FT_CUR, "cursor"},
    {FT_LZH, "lzh"},
    {FT_SZDD, "szdd"},
    {FT_TEXT, "text", NoPicture::textOnly},
    {FT_BINARY, "unknown", NoPicture::unknownKind},
    {FT_NCPROGRAM, "nc"},
    {FT_BACKUP, "backup", NoPicture::damaged, NoPicture::blankRecords},
    {FT_BLOCKSEQ, "blocks"},
    {FT_COMMAND, "command", NoPicture::ofNamed, NoPicture::ofNamed},
};

const KindRow& RowOf(FileTypeCode kind) {
    for (const KindRow& row : kKinds) {
        if (row.code == kind) return row;
    }
    static constexpr KindRow kOther = {FT_BINARY, "unknown", NoPicture::unknownKind};
    return kOther;
}

// Tries what the readers will do: to open the file as they do.
NoPicture CheckFile(const std::string& path, DWORD* error) {
    if (std::strchr(FindFileName(path.c_str()), '?')) return NoPicture::foreignName;
    const UniqueHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!IsOpen(file)) {
        *error = GetLastError();
        const bool isMissing = *error == ERROR_FILE_NOT_FOUND || *error == ERROR_PATH_NOT_FOUND;
        return isMissing ? NoPicture::missing : NoPicture::unreadable;
    }
    if (GetFileType(file.get()) != FILE_TYPE_DISK) return NoPicture::device;
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(file.get(), &size)) {
        *error = GetLastError();
        return NoPicture::unreadable;
    }
    return size.QuadPart == 0 ? NoPicture::empty : NoPicture::none;
}

void TrimBlanks(std::string* text) {
    while (!text->empty() && text->back() == ' ') text->pop_back();
}

// A comment with plain line ends and without the blanks that fill fields; control characters, which a terminal would
// obey, are shown as dots.
std::string CleanComment(const char* comment) {
    std::string text;
    for (; *comment; ++comment) {
        const auto byte = static_cast<std::uint8_t>(*comment);
        if (*comment == '\r') continue;
        if (*comment == '\n') TrimBlanks(&text);
        const bool isShown = (byte >= 32 && byte != 127) || *comment == '\n' || *comment == '\t';
        text += isShown ? *comment : '.';
    }
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
    return text.empty() ? text : text + "\n";
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

// A reader says only that it has no picture. What it needs besides a sound file is asked for here, one by one.
NoPicture WhyNoBitmap(const std::string& path, DWORD renderMode, const RECT& target, const KindRow& row) {
    if (!PaneReaderFor(row.code)) return row.withoutBitmap;
    if (!LoadedFile(path.c_str()).data) return NoPicture::tooLarge;
    Canvas canvas(renderMode, target);
    return OpenCanvas(&canvas) ? row.withoutBitmap : NoPicture::noMemory;
}

// A command file without a picture: what is wrong with the drawing that it names.
void ExplainCommand(const std::string& path, DWORD renderMode, SIZE size, Preview* preview) {
    preview->named = DrawingOfCommandFile(path.c_str());
    if (preview->named.empty()) {
        preview->problem = NoPicture::namesNone;
        return;
    }
    const bool isCommand = IdentifyFileType(preview->named.c_str(), nullptr, 0) == FT_COMMAND;  // it may name itself
    const Preview named = isCommand ? Preview() : RenderPreview(preview->named, renderMode, size);
    if (named.problem == NoPicture::none) {
        preview->problem = NoPicture::namesOther;
        return;
    }
    preview->whyNamed = named.problem;
    preview->error = named.error;
}

bool Shows(const std::string& path, PreviewReader reader, DWORD renderMode, const RECT& target) {
    const UniqueBitmap bitmap(reader(renderMode, path.c_str(), &target, nullptr, 0));
    return bitmap && !IsBlank(bitmap.get());
}

// What the other reader of DXF makes of the file.
void CompareDxfReaders(const std::string& path, DWORD renderMode, const RECT& target, Preview* preview) {
    const bool full = renderMode & kRenderFullDxf;
    if (preview->problem == NoPicture::none) {
        preview->onlyFullDxf = full && !Shows(path, ReadDxfPreview, renderMode & ~kRenderFullDxf, target);
    } else if (preview->problem == NoPicture::blankDxf || preview->problem == NoPicture::damaged) {
        if (full) preview->problem = NoPicture::blankFullDxf;
        else if (Shows(path, ReadFullDxfPreview, renderMode, target)) preview->problem = NoPicture::needsFullDxf;
    }
}

}  // namespace

const char* KindWord(FileTypeCode kind) { return RowOf(kind).word; }

Preview RenderPreview(const std::string& path, DWORD renderMode, SIZE size) {
    Preview preview;
    preview.problem = CheckFile(path, &preview.error);
    if (preview.problem != NoPicture::none) return preview;

    std::vector<char> comment(kCommentSize);  // zeros, as PreviewCommandFile wants it
    char line[1024] = "";
    preview.kind = IdentifyFileType(path.c_str(), line, sizeof(line));
    const RECT target = {0, 0, size.cx, size.cy};
    if (const PreviewReader reader = PaneReaderFor(preview.kind)) {
        preview.bitmap.reset(reader(renderMode, path.c_str(), &target, comment.data(), kCommentSize));
    }
    preview.comment = CleanComment(comment[0] ? comment.data() : line);
    const KindRow& row = RowOf(preview.kind);
    if (!preview.bitmap) {
        preview.problem = WhyNoBitmap(path, renderMode, target, row);
    } else if (row.blank != NoPicture::none && IsBlank(preview.bitmap.get())) {
        preview.problem = row.blank;
        preview.bitmap.reset();
    }
    if (preview.kind == FT_DXF) CompareDxfReaders(path, renderMode, target, &preview);
    if (preview.problem == NoPicture::ofNamed) ExplainCommand(path, renderMode, size, &preview);
    return preview;
}
