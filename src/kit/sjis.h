// 8-bit text in the Japanese multi-byte code page (Shift_JIS): scanning that never splits a two-byte character.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kit/bytes.h"

// The first byte of a two-byte character: 129 to 159 and 224 to 252.
constexpr bool IsLeadByte(std::uint8_t byte) {
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

// A text that is being walked line by line: what has not been taken yet.
struct LineWalk {
    const std::uint8_t* next;
    const std::uint8_t* end;
};

// Takes the next line to `line` and the control bytes behind it; false at the end of the text.
//
// A line ends at the first byte below 32, and the bytes 1 to 31 that follow vanish with it, so only the first line can
// be empty. A zero byte ends the text. The second byte of a two-byte character never ends a line, whatever it is.
bool TakeLine(LineWalk* walk, ByteView* line);

// The last backslash of a path that is not the second byte of a character; null when there is none.
const char* FindLastBackslash(const char* path);

// The extension of a path's file name, its dot included; an empty string at the path's end when it has none.
const char* FindExtension(const char* path);
