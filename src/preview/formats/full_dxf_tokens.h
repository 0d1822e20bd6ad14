// The pairs of a DXF file, a group code and its value, in the text form and both binary forms. Nothing is copied.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "kit/bytes.h"
#include "kit/numbers.h"
#include "kit/sjis.h"

struct DxfPair {
    int code = 0;
    ByteView value;  // text: the line without its end; binary: the value's bytes
};

// How a file's pairs are stored.
struct DxfForm {
    ByteView file;
    std::size_t begin = 0;  // of the first pair
    bool binary = false;
    bool wideCodes = false;       // binary: group codes take two bytes
    std::uint8_t lineEnd = '\n';  // text: '\r' where a file has no other
    bool byteOrderMark = false;   // text is UTF-8 whatever the file says
};

DxfForm DxfFormOf(ByteView file);

// A walk over the pairs. Remarks (999) are stepped over unless they are asked for.
struct DxfReader {
    const DxfForm* form;
    std::size_t at;
    bool Next(DxfPair* pair);  // false at the end
    bool NextOrRemark(DxfPair* pair) { return form->binary ? NextBinary(pair) : NextText(pair); }

private:
    bool NextText(DxfPair* pair);
    bool NextBinary(DxfPair* pair);
};

// What a value is worth; 0 when it is no number. The code tells how a binary value is stored.
double BinaryDxfNumber(int code, ByteView value);
inline double DxfNumber(const DxfForm& form, int code, ByteView value) {
    return form.binary ? BinaryDxfNumber(code, value) : ParseDecimal(value);
}
long long DxfInteger(const DxfForm& form, int code, ByteView value);

std::uint32_t DxfHandle(ByteView value);  // hexadecimal in all forms; its last eight digits

// Without blanks at both ends, as names and keywords count.
ByteView Trimmed(ByteView text);

// Names of DXF ignore the case of ASCII letters.
bool SameName(ByteView a, ByteView b);
inline bool IsName(ByteView text, const char* name) {
    return SameName(text, {reinterpret_cast<const std::uint8_t*>(name), std::strlen(name)});
}

// ---- The text form, split where it is used: a drawing has millions of lines

// Where the byte stands, or `end`. Most lines are shorter than one look.
inline const std::uint8_t* FindDxfByte(const std::uint8_t* at, const std::uint8_t* end, std::uint8_t byte) {
    const __m128i wanted = _mm_set1_epi8(static_cast<char>(byte));
    for (; end - at >= 16; at += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const int found = _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, wanted));
        if (found) return at + LowestBit(static_cast<std::uint32_t>(found));
    }
    while (at != end && *at != byte) ++at;
    return at;
}

// The line at *at, without its end; *at moves behind it. A run of carriage returns before a line feed is one end.
inline ByteView TakeDxfLine(const DxfForm& form, std::size_t* at) {
    const std::uint8_t* const begin = form.file.data + *at;
    const std::uint8_t* const fileEnd = form.file.data + form.file.size;
    const std::uint8_t* end = FindDxfByte(begin, fileEnd, form.lineEnd);
    const bool stop = end != fileEnd;
    *at = static_cast<std::size_t>(end - form.file.data) + (stop ? 1 : 0);
    while (end != begin && end[-1] == '\r') --end;
    return {begin, static_cast<std::size_t>(end - begin)};
}

inline bool IsDxfBlank(std::uint8_t byte) { return byte == ' ' || byte == '\t'; }

// False when the line is no group code.
inline bool ParseDxfCode(ByteView line, int* code) {
    const std::uint8_t* at = line.data;
    const std::uint8_t* const end = at + line.size;
    while (at != end && IsDxfBlank(*at)) ++at;
    const bool negative = at != end && *at == '-';
    if (negative) ++at;
    int value = 0;
    const std::uint8_t* const digits = at;
    for (; at != end && *at >= '0' && *at <= '9' && at - digits < 5; ++at) value = value * 10 + (*at - '0');
    if (at == digits) return false;
    while (at != end && IsDxfBlank(*at)) ++at;
    *code = negative ? -value : value;
    return at == end;
}

// The code of a line that holds nothing else than blanks and one to four digits; null when it is another one.
inline const std::uint8_t* TakePlainDxfCode(const std::uint8_t* at, const std::uint8_t* end, std::uint8_t lineEnd,
                                            int* code) {
    if (end - at < 16) return nullptr;  // the line and its end are well inside then
    while (*at == ' ') {
        if (++at == end) return nullptr;
    }
    if (end - at < 8) return nullptr;
    int value = 0;
    const std::uint8_t* const digits = at;
    for (unsigned digit; at - digits < 4 && (digit = *at - unsigned{'0'}) < 10; ++at)
        value = value * 10 + static_cast<int>(digit);
    if (at == digits) return nullptr;
    if (*at == '\r' && lineEnd != '\r') ++at;
    if (*at != lineEnd) return nullptr;
    *code = value;
    return at + 1;
}

inline bool DxfReader::NextText(DxfPair* pair) {
    const std::size_t size = form->file.size;
    while (at < size) {
        const std::uint8_t* const data = form->file.data;
        if (const std::uint8_t* value = TakePlainDxfCode(data + at, data + size, form->lineEnd, &pair->code)) {
            at = static_cast<std::size_t>(value - data);
            pair->value = TakeDxfLine(*form, &at);
            return true;
        }
        const ByteView line = TakeDxfLine(*form, &at);
        if (!ParseDxfCode(line, &pair->code)) continue;
        if (at >= size) return false;
        pair->value = TakeDxfLine(*form, &at);
        return true;
    }
    return false;
}

inline bool DxfReader::Next(DxfPair* pair) {
    while (NextOrRemark(pair)) {
        if (pair->code != 999) return true;
    }
    return false;
}
