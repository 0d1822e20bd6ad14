#include "preview/formats/comment.h"

#include <algorithm>
#include <cstring>

// Copies and moves on; the buffer is zero behind the end already.
static void Append(Comment* comment, const void* bytes, std::size_t size) {
    std::memcpy(comment->end, bytes, size);
    comment->end += size;
    comment->room -= static_cast<long long>(size);
}

void CopyLabel(const Comment& comment, unsigned id, char (&out)[kLabelSize]) {
    out[0] = '\0';
    if (comment.label) comment.label(id, out, kLabelSize);
}

void AppendComment(Comment* comment, ByteView text) {
    if (comment->room <= 1 || text.size == 0) return;
    Append(comment, text.data, std::min(text.size, static_cast<std::size_t>(comment->room) - 1));
}

void AppendComment(Comment* comment, const char* text) {
    AppendComment(comment, ByteView{reinterpret_cast<const std::uint8_t*>(text), std::strlen(text)});
}

void AppendFittingLine(Comment* comment, ByteView line) {
    if (line.size > 0) Append(comment, line.data, line.size);
    Append(comment, "\r\r\n", 3);
}
