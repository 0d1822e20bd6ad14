// The text that a reader shows beside the picture. Knows no Windows.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kit/bytes.h"

// A comment being filled, in a buffer that is zero behind the end. The room counts the bytes left, the ending zero
// included.
struct Comment {
    char* end = nullptr;  // where the next text goes; null when no comment is wanted
    long long room = 0;
    // A text of the string table in the user's language, at most size - 1 bytes and always ended; null: there is none.
    void (*label)(unsigned id, char* out, std::size_t size) = nullptr;
};

// The longest label, its ending zero included.
constexpr std::size_t kLabelSize = 64;
void CopyLabel(const Comment& comment, unsigned id, char (&out)[kLabelSize]);

// Appends as much of a text as fits.
void AppendComment(Comment* comment, ByteView text);
void AppendComment(Comment* comment, const char* text);

// Appends a line and its soft break when both fit. A line that does not fit is left out; a later, shorter one may fit.
void AppendFittingLine(Comment* comment, ByteView line);
inline void AppendCommentLine(Comment* comment, ByteView line) {
    if (comment->room > 4 && line.size < static_cast<std::size_t>(comment->room) - 4) AppendFittingLine(comment, line);
}
