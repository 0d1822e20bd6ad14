// The text that a reader shows beside the picture. Knows no Windows.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kit/bytes.h"
#include "kit/code_pages.h"

// A comment being filled, in a buffer that is zero behind the end. The room counts the bytes left, the ending zero
// included.
struct Comment {
    char* end = nullptr;  // where the next text goes; null when no comment is wanted
    long long room = 0;
    // A text of the string table in the user's language, at most size - 1 bytes and always ended; null: there is none.
    void (*label)(unsigned id, char* out, std::size_t size) = nullptr;
    const CodePages* codePages = nullptr;  // for texts of other code pages; may be null
};
