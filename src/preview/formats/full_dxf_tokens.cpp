// Text form: lines in pairs. A line that should be a group code and is no number is left out, so that a file that has
// lost a line comes back into step at the next pair.
//
// Binary form: a signature, then group codes of one byte (255: two more follow) or of two, each before a value whose
// form its code tells.
#include "preview/formats/full_dxf_tokens.h"

#include <algorithm>

#include "kit/numbers.h"

// ---- Form

static constexpr char kBinarySignature[] = "AutoCAD Binary DXF\r\n\x1A";  // and the zero behind it
static constexpr std::size_t kBinaryBegin = sizeof(kBinarySignature);

DxfForm DxfFormOf(ByteView file) {
    DxfForm form;
    form.file = file;
    if (MatchAt(file, 0, kBinarySignature, kBinaryBegin)) {
        form.binary = true;
        form.begin = kBinaryBegin;
        // The first pair is 0 and "SECTION" or a remark: behind a code of two bytes stands no letter yet.
        form.wideCodes = file.size > kBinaryBegin + 1 && file.data[kBinaryBegin + 1] < ' ';
        return form;
    }
    if (MatchAt(file, 0, "\xEF\xBB\xBF")) {
        form.byteOrderMark = true;
        form.begin = 3;
    }
    constexpr std::size_t kLook = 4096;
    const auto* const head = file.data;
    if (file.size && !std::memchr(head, '\n', std::min(file.size, kLook)) &&
        std::memchr(head, '\r', std::min(file.size, kLook))) {
        form.lineEnd = '\r';
    }
    return form;
}

// ---- Binary form

enum class ValueForm { kString, kDouble, kInt16, kInt32, kInt64, kByte, kChunk };

struct CodeRange {
    int last;
    ValueForm form;
};
// Each row reaches from behind the one before to its last code.
static constexpr CodeRange kCodeRanges[] = {
    {9, ValueForm::kString},    {59, ValueForm::kDouble},   {79, ValueForm::kInt16},    {89, ValueForm::kString},
    {99, ValueForm::kInt32},    {109, ValueForm::kString},  {149, ValueForm::kDouble},  {159, ValueForm::kString},
    {169, ValueForm::kInt64},   {179, ValueForm::kInt16},   {209, ValueForm::kString},  {239, ValueForm::kDouble},
    {269, ValueForm::kString},  {289, ValueForm::kInt16},   {299, ValueForm::kByte},    {309, ValueForm::kString},
    {319, ValueForm::kChunk},   {369, ValueForm::kString},  {389, ValueForm::kInt16},   {399, ValueForm::kString},
    {409, ValueForm::kInt16},   {419, ValueForm::kString},  {429, ValueForm::kInt32},   {439, ValueForm::kString},
    {459, ValueForm::kInt32},   {469, ValueForm::kDouble},  {1003, ValueForm::kString}, {1004, ValueForm::kChunk},
    {1009, ValueForm::kString}, {1059, ValueForm::kDouble}, {1070, ValueForm::kInt16},  {1071, ValueForm::kInt32},
};

static ValueForm FormOfCode(int code) {
    for (const CodeRange& range : kCodeRanges) {
        if (code <= range.last) return range.form;
    }
    return ValueForm::kString;
}

bool DxfReader::NextBinary(DxfPair* pair) {
    const ByteView file = form->file;
    std::uint8_t small = 0;
    std::uint16_t wide = 0;
    if (form->wideCodes) {
        if (!ReadAt(file, at, &wide)) return false;
        at += 2;
    } else {
        if (!ReadAt(file, at, &small)) return false;
        ++at;
        wide = small;
        if (small == 255) {
            if (!ReadAt(file, at, &wide)) return false;
            at += 2;
        }
    }
    pair->code = wide;
    std::size_t size = 0;
    switch (FormOfCode(pair->code)) {
        case ValueForm::kString: {
            const std::size_t left = file.size - at;
            const auto* const begin = file.data + at;
            const auto* const end = left ? static_cast<const std::uint8_t*>(std::memchr(begin, 0, left)) : nullptr;
            if (!end) return false;
            pair->value = {begin, static_cast<std::size_t>(end - begin)};
            at += pair->value.size + 1;
            return true;
        }
        case ValueForm::kDouble:
        case ValueForm::kInt64: size = 8; break;
        case ValueForm::kInt32: size = 4; break;
        case ValueForm::kInt16: size = 2; break;
        case ValueForm::kByte: size = 1; break;
        case ValueForm::kChunk:
            if (!ReadAt(file, at, &small)) return false;
            ++at;
            size = small;
            break;
    }
    if (file.size - at < size) return false;
    pair->value = {file.data + at, size};
    at += size;
    return true;
}

// ---- Values

template <typename T>
static T BinaryValue(ByteView value) {
    T number = 0;
    ReadAt(value, 0, &number);
    return number;
}

static long long BinaryInteger(int code, ByteView value) {
    switch (FormOfCode(code)) {
        case ValueForm::kInt16: return BinaryValue<std::int16_t>(value);
        case ValueForm::kInt32: return BinaryValue<std::int32_t>(value);
        case ValueForm::kInt64: return BinaryValue<std::int64_t>(value);
        case ValueForm::kByte: return BinaryValue<std::uint8_t>(value);
        default: return 0;
    }
}

double BinaryDxfNumber(int code, ByteView value) {
    if (FormOfCode(code) == ValueForm::kDouble) return BinaryValue<double>(value);
    return static_cast<double>(BinaryInteger(code, value));
}

long long DxfInteger(const DxfForm& form, int code, ByteView value) {
    if (!form.binary || FormOfCode(code) == ValueForm::kDouble) return TruncToInt64(DxfNumber(form, code, value));
    return BinaryInteger(code, value);
}

static std::uint8_t Upper(std::uint8_t byte) {
    return byte >= 'a' && byte <= 'z' ? static_cast<std::uint8_t>(byte - 0x20) : byte;
}

std::uint32_t DxfHandle(ByteView value) {
    std::uint32_t handle = 0;
    value = Trimmed(value);
    for (std::size_t i = 0; i < value.size; ++i) {
        const std::uint8_t c = Upper(value.data[i]);
        const bool digit = c >= '0' && c <= '9';
        if (!digit && !(c >= 'A' && c <= 'F')) return 0;
        handle = handle << 4 | static_cast<std::uint32_t>(digit ? c - '0' : c - 'A' + 10);
    }
    return handle;
}

// ---- Names

ByteView Trimmed(ByteView text) {
    while (text.size && text.data[0] <= ' ') ++text.data, --text.size;
    while (text.size && text.data[text.size - 1] <= ' ') --text.size;
    return text;
}

bool SameName(ByteView a, ByteView b) {
    return a.size == b.size && std::equal(a.data, a.data + a.size, b.data,
                                          [](std::uint8_t x, std::uint8_t y) { return Upper(x) == Upper(y); });
}
