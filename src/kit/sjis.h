// 8-bit text in the Japanese multi-byte code page (Shift_JIS): scanning that never splits a two-byte character.
#pragma once

#include <emmintrin.h>
#ifdef _MSC_VER
#include <intrin.h>
#endif

#include <cstddef>
#include <cstdint>

#include "kit/bytes.h"

// The first byte of a two-byte character: 129 to 159 and 224 to 252.
constexpr bool IsLeadByte(std::uint8_t byte) {
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

// The position of the lowest bit of a mask that is not 0.
inline unsigned LowestBit(std::uint32_t mask) {
#ifdef _MSC_VER
    unsigned long position = 0;
    _BitScanForward(&position, mask);
    return position;
#else
    return static_cast<unsigned>(__builtin_ctz(mask));
#endif
}

// Skips bytes that neither end a line nor begin a two-byte character; looks at sixteen at a time, since drawings have
// millions of lines. As signed numbers both control bytes and all bytes from 128 up lie below a blank.
inline const std::uint8_t* SkipOrdinary(const std::uint8_t* at, const std::uint8_t* end) {
    while (end - at >= 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const int found = _mm_movemask_epi8(_mm_cmplt_epi8(bytes, _mm_set1_epi8(' ')));
        if (found == 0) {
            at += 16;
            continue;
        }
        at += LowestBit(static_cast<std::uint32_t>(found));
        if (*at < ' ' || IsLeadByte(*at)) return at;
        ++at;  // a half-width character
    }
    while (at < end && *at >= ' ' && !IsLeadByte(*at)) ++at;
    return at;
}

// A text that is being walked line by line: what has not been taken yet.
struct LineWalk {
    const std::uint8_t* next;
    const std::uint8_t* end;
};

// Looks at the next 32 bytes at once. A line that ends in them at a usual break, with another line behind it, is taken;
// most lines of drawings are such. Looks at nothing behind `end`; false leaves the walk as it was.
inline bool TakeShortLine(LineWalk* walk, ByteView* line) {
    if (walk->end - walk->next < 32 + 2) return false;
    const auto* const at = reinterpret_cast<const __m128i*>(walk->next);
    const auto endsIn = [](__m128i bytes) {  // bytes from 128 up are negative numbers: they too are below a blank
        return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmplt_epi8(bytes, _mm_set1_epi8(' '))));
    };
    const std::uint32_t ends = endsIn(_mm_loadu_si128(at)) | endsIn(_mm_loadu_si128(at + 1)) << 16;
    if (ends == 0) return false;
    const unsigned length = LowestBit(ends);
    const std::uint8_t* behind = walk->next + length;
    if (*behind == '\r') ++behind;
    if (*behind != '\n' || *++behind < ' ') return false;
    *line = {walk->next, length};
    walk->next = behind;
    return true;
}

// Takes the next line to `line` and the control bytes behind it; false at the end of the text.
//
// A line ends at the first byte below 32, and the bytes 1 to 31 that follow vanish with it, so only the first line can
// be empty. A zero byte ends the text. The second byte of a two-byte character never ends a line, whatever it is.
inline bool TakeLine(LineWalk* walk, ByteView* line) {
    const std::uint8_t* const begin = walk->next;
    const std::uint8_t* const end = walk->end;
    if (begin >= end || *begin == 0) return false;
    if (TakeShortLine(walk, line)) return true;
    const std::uint8_t* at = SkipOrdinary(begin, end);
    while (at < end && *at >= ' ') {
        at += end - at < 2 ? 1 : 2;  // a lead byte at the very end stands alone
        at = SkipOrdinary(at, end);
    }
    *line = {begin, static_cast<std::size_t>(at - begin)};
    while (at < end && *at != 0 && *at < ' ') ++at;
    walk->next = at;
    return true;
}
