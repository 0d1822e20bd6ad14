// The pairs of a DXF file, a group code and its value, in the text form and both binary forms. Nothing is copied.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "kit/bytes.h"

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

inline bool DxfReader::Next(DxfPair* pair) {
    while (NextOrRemark(pair)) {
        if (pair->code != 999) return true;
    }
    return false;
}

// What a value is worth; 0 when it is no number. The code tells how a binary value is stored.
double DxfNumber(const DxfForm& form, int code, ByteView value);
long long DxfInteger(const DxfForm& form, int code, ByteView value);

// Without blanks at both ends, as names and keywords count.
ByteView Trimmed(ByteView text);

// Names of DXF ignore the case of ASCII letters.
bool SameName(ByteView a, ByteView b);
inline bool IsName(ByteView text, const char* name) {
    return SameName(text, {reinterpret_cast<const std::uint8_t*>(name), std::strlen(name)});
}
