// The platform's conversions between 8-bit text and UTF-16, as portable code calls them.
#pragma once

#include <cstddef>

#include "kit/bytes.h"

struct CodePages {
    // Converts text of a Windows code page (1252, 932, ...); gives the number of units, at most `room`, and 0 when the
    // page or the text is not known. What has no character becomes the platform's replacement.
    std::size_t (*toUnicode)(unsigned page, ByteView text, char16_t* out, std::size_t room);
    // Converts to the page of the user's 8-bit texts; gives the number of bytes, at most `room`.
    std::size_t (*toSystem)(const char16_t* text, std::size_t length, char* out, std::size_t room);
};
