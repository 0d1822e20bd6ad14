#include "preview/formats/signatures.h"

#include <algorithm>
#include <bitset>
#include <cstring>
#include <iterator>

#include "kit/sjis.h"
#include "preview/formats/title_block.h"

namespace {

constexpr std::size_t kBufferSize = 2048;  // the rest stays zero: fields behind the end of a short file read as empty

// ---- Drawings, by what stands at fixed offsets

struct DrawingSignature {
    FileTypeCode code;
    const char* text;
};
constexpr std::size_t kSignatureAt = 4;
constexpr DrawingSignature kDrawingSignatures[] = {
    // in the order of their test
    {FT_QA, "CAD ORVIL QA V4.0"},
    {FT_LUMOS, "LumosBase"},
    {FT_QJ, "CADORVIL QJ"},
    {FT_QF, "CADORVIL QF"},
};
constexpr char kBackupSignature[] = "VEXTRON lumos Backup V2";
constexpr std::size_t kBackupTextAt = 24, kBackupTextEnd = 283;

const TitleSlots& TitleSlotsOf(FileTypeCode code) {
    switch (code) {
        case FT_QJ: return kQjTitle;
        case FT_QF: return kQfTitle;
        default: return kNativeTitle;
    }
}

// True when `text` stands at `offset`. The buffer is longer than every offset and text asked for.
bool Stands(const char* buffer, std::size_t offset, const char* text) {
    return std::strncmp(buffer + offset, text, std::strlen(text)) == 0;
}

bool IsBlockSequence(const char* head) { return head[0] == 0 && head[32] == 1 && head[64] == 2 && head[96] == 3; }

bool IsKnownVersion(char version) {
    return version == 4 || version == 5 || version == 20 || version == 21 || version == 26;
}

// A native drawing's kind or FT_BINARY when it is none.
FileTypeCode NativeKind(const char* head) {
    const auto* signature = std::find_if(std::begin(kDrawingSignatures), std::end(kDrawingSignatures),
                                         [&](const auto& row) { return Stands(head, kSignatureAt, row.text); });
    if (signature == std::end(kDrawingSignatures)) return IsBlockSequence(head) ? FT_BLOCKSEQ : FT_BINARY;
    FileTypeCode code = signature->code;
    if (code == FT_QA && (Stands(head, 0, "LMOS") || Stands(head, 92, "...lumos..."))) code = FT_LUMOS;
    if ((code == FT_QA || code == FT_LUMOS) && !IsKnownVersion(head[25])) return FT_BINARY;
    return code;
}

// ---- Files, by signature and extension

struct ExtensionRow {
    const char* extension;
    FileTypeCode code;
};

// Null extension: the signature alone decides.
struct SignatureRow {
    const char* signature;
    std::size_t length, offset;
    ExtensionRow row;
};
constexpr SignatureRow kSignatures[] = {
    {"MZ", 2, 0, {".EXE", FT_EXE}},         {"MZ", 2, 0, {".DLL", FT_DLL}},
    {"MZ", 2, 0, {".SYS", FT_SYS}},         {"MZ", 2, 0, {".VXD", FT_VXD}},
    {"?_", 2, 0, {".HLP", FT_HLP}},         {"\x4C\x01", 2, 0, {".OBJ", FT_OBJLIB}},
    {"!<arch>", 7, 0, {".LIB", FT_OBJLIB}}, {"-lh", 3, 2, {".LZH", FT_LZH}},
    {"BM", 2, 0, {".BMP", FT_BMP}},         {"\0\0\1", 3, 0, {".ICO", FT_ICO}},
    {"\0\0\2", 3, 0, {".CUR", FT_CUR}},     {"SZDD\x88\xF0\x27\x33", 8, 0, {nullptr, FT_SZDD}},
};
constexpr ExtensionRow kExtensions[] = {
    {".DXF", FT_DXF}, {".EXF", FT_EXF},  {".BMI", FT_BMI},       {".PCS", FT_PCS},
    {".BAT", FT_BAT}, {".TXT", FT_TEXT}, {".PTP", FT_NCPROGRAM}, {".CMD", FT_COMMAND},
};

// Both cases alike; `wanted` is in capitals.
bool IsExtension(const char* extension, const char* wanted) {
    const auto capital = [](char c) { return static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c); };
    while (*wanted && capital(*extension) == *wanted) ++extension, ++wanted;
    return *extension == *wanted;
}

// The kind that signatures and the extension settle, or FT_BINARY.
FileTypeCode KindByExtension(const char* head, const char* extension) {
    for (const SignatureRow& row : kSignatures) {
        if (std::memcmp(head + row.offset, row.signature, row.length) == 0 &&
            (!row.row.extension || IsExtension(extension, row.row.extension))) {
            return row.row.code;
        }
    }
    for (const ExtensionRow& row : kExtensions) {
        if (IsExtension(extension, row.extension)) return row.code;
    }
    return FT_BINARY;
}

// ---- Texts, by a vote of keywords

struct KeywordRow {
    FileTypeCode code;
    const char* keywords[18];
};
constexpr KeywordRow NcKeywordTable[] = {
    {FT_NCPROGRAM,
     {"G90", "G91", "G0", "G1", "G2", "G3", "G00", "G01", "G02", "G03", "G40", "G41", "M98", "M99", "M30", "N", "X",
      "Y"}},
};

// The bytes that a keyword of the table begins with: few bytes of a text need a closer look.
struct FirstBytes {
    bool is[256];
};
constexpr FirstBytes MakeFirstBytes() {
    FirstBytes first = {};
    for (const KeywordRow& row : NcKeywordTable) {
        for (const char* keyword : row.keywords) first.is[static_cast<std::uint8_t>(*keyword)] = true;
    }
    return first;
}
constexpr FirstBytes kFirstBytes = MakeFirstBytes();

bool BeginsWith(const char* text, const char* prefix) {
    while (*prefix && *text == *prefix) ++text, ++prefix;
    return *prefix == '\0';
}

// How many of a row's keywords occur in a line. Each counts once wherever it stands, inside a longer one too.
int CountKeywords(const char* line, const KeywordRow& row) {
    std::bitset<std::size(KeywordRow().keywords)> found;
    for (; *line; ++line) {
        if (!kFirstBytes.is[static_cast<std::uint8_t>(*line)]) continue;
        for (std::size_t i = 0; i < found.size(); ++i) {
            if (!found[i] && BeginsWith(line, row.keywords[i])) found.set(i);
        }
    }
    return static_cast<int>(found.count());
}

// The kind of a text; splits it into lines in place.
FileTypeCode KindOfText(char* text) {
    int counters[std::size(NcKeywordTable)] = {};
    const char* line = text;
    for (int lines = SplitLines(text, "\n"); lines > 0; --lines) {
        for (std::size_t row = 0; row < std::size(NcKeywordTable); ++row) {
            counters[row] += CountKeywords(line, NcKeywordTable[row]);
        }
        line += std::strlen(line) + 1;
    }
    const auto winner = std::max_element(std::begin(counters), std::end(counters)) - counters;
    return counters[winner] >= 2 ? NcKeywordTable[winner].code : FT_TEXT;
}

// ---- The text of a comment

// Deliberate: one byte fewer than the buffer could hold. Mended, long comments in the classic dialog's list would be a
// character longer.
void CopyTitle(const char* title, char* out, int size) {
    if (!out || size <= 0) return;
    const std::size_t length = std::min(std::strlen(title), static_cast<std::size_t>(std::max(size - 2, 0)));
    std::memcpy(out, title, length);
    out[length] = '\0';
}

void CopyTitleBlock(const char* head, FileTypeCode code, char* out, int size) {
    const ByteView file = {reinterpret_cast<const std::uint8_t*>(head), kBufferSize};
    char text[kHeadSize] = {};
    char* end = text;
    for (std::size_t i = 0; i < 3; ++i) {
        const ByteView field = TitleField(file, TitleSlotsOf(code), i);
        if (i > 0) *end++ = ',';
        end = std::copy_n(reinterpret_cast<const char*>(field.data), field.size, end);
    }
    CopyTitle(text, out, size);
}

void CopyHeadAsLine(const char* head, char* out, int size) {
    if (!out || size <= 1) return;
    const std::size_t length = std::min(static_cast<std::size_t>(size - 1), kBufferSize);
    std::replace_copy_if(
        head, head + length, out, [](char c) { return c == '\n' || c == '\r'; }, ' ');
}

}  // namespace

FileTypeCode IdentifyBytes(ByteView file, const char* extension, char* commentOut, int commentSize) {
    char head[kBufferSize] = {};
    const std::size_t count = std::min(file.size, kHeadSize);
    if (count > 0) std::memcpy(head, file.data, count);

    const FileTypeCode native = NativeKind(head);
    if (native == FT_BLOCKSEQ) return native;
    if (native != FT_BINARY) {
        CopyTitleBlock(head, native, commentOut, commentSize);
        return native;
    }
    if (Stands(head, 0, kBackupSignature)) {
        head[kBackupTextEnd] = '\0';
        CopyTitle(head + kBackupTextAt, commentOut, commentSize);
        return FT_BACKUP;
    }
    const FileTypeCode code = KindByExtension(head, extension);
    if (code != FT_BINARY) return code;
    if (!IsTextBuffer(reinterpret_cast<const unsigned char*>(head), count)) return FT_BINARY;
    CopyHeadAsLine(head, commentOut, commentSize);
    return KindOfText(head);
}

bool IsTextBuffer(const unsigned char* bytes, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned char byte = bytes[i];
        if (byte < 32) {
            const bool isEndOfFile = byte == 26 && i + 1 == count;
            if (byte != '\t' && byte != '\n' && byte != '\r' && !isEndOfFile) return false;
        } else if (byte == 127 || byte >= 253) {
            return false;
        } else if (IsLeadByte(byte)) {
            // A character cut off by the end counts as followed by zero.
            const unsigned char trail = ++i < count ? bytes[i] : 0;
            if (trail < 64 || trail == 127 || trail >= 253) return false;
        }
    }
    return true;
}

int SplitLines(char* buffer, const char* delimiters) {
    if (!buffer || !delimiters) return 0;
    int pieces = 1;
    while ((buffer = std::strpbrk(buffer, delimiters)) != nullptr) {
        *buffer++ = '\0';
        ++pieces;
    }
    return pieces;
}
