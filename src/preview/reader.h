// The one contract of all preview readers, and what every reader does before and after its format.
#pragma once

#include <windows.h>

#include <cstddef>

#include "frame/services.h"
#include "kit/bytes.h"
#include "preview/canvas.h"

// Reads `fileName` and draws it into a bitmap of the target's size, which the caller then owns.
//   renderMode               kRenderColor, kRenderTextFrames
//   target                   size of the bitmap in pixels; without one there is no bitmap
//   commentOut, commentSize  receives the title block or the head of the text, at most commentSize - 1
//                            bytes, always ended by a zero; lines are separated by "\r\r\n"; may be null and 0
// Null when the file gives no picture, cannot be read, or the run was cancelled (PreviewCancel).
using PreviewReader = HBITMAP (*)(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                                  DWORD commentSize);

// A comment being filled. The room counts the bytes left, the ending zero included.
struct Comment {
    char* end = nullptr;  // where the next text goes; null when no comment is wanted
    long room = 0;
};

// Zeroes the caller's buffer and begins a comment in it.
Comment BeginComment(char* commentOut, DWORD commentSize);

// The same in a buffer that the caller has cleared.
Comment ContinueComment(char* commentOut, DWORD commentSize);

// Appends a line and its soft break when both fit. A line that does not fit is left out; a later, shorter one may fit.
void AppendFittingLine(Comment* comment, ByteView line);
inline void AppendCommentLine(Comment* comment, ByteView line) {
    if (comment->room > 4 && line.size < static_cast<std::size_t>(comment->room) - 4) AppendFittingLine(comment, line);
}

// Appends as much of a text as fits.
void AppendComment(Comment* comment, ByteView text);
void AppendComment(Comment* comment, const char* text);

// A file's contents in global memory, locked for as long as the record lives. `data` is null when it could not be
// loaded.
struct LoadedFile {
    HGLOBAL block;
    std::uint8_t* data = nullptr;
    std::size_t size = 0;
    explicit LoadedFile(const char* fileName);
    ~LoadedFile();
    LoadedFile(const LoadedFile&) = delete;
    LoadedFile& operator=(const LoadedFile&) = delete;

    ByteView Bytes() const { return {data, size}; }
    // Has a big block freed by a thread of its own, as that can take longer than a cancelled run may.
    void FreeAside();

    // Ends the contents as a string. Deliberate: the zero is written over the block's last byte; text formats end in a
    // line break.
    ByteView AsText() const {
        data[size - 1] = 0;
        return {data, size};
    }
};

// One run of a drawing reader, as its format sees it.
struct DrawingRun {
    const DWORD renderMode;
    const RECT* const target;  // null: the comment alone is wanted
    Comment comment;
    LoadedFile file;
    Canvas canvas;  // not open yet
};

// True while nobody has cancelled the run.
inline bool MayContinue() { return PreviewCancelFlag.load(std::memory_order_relaxed) == 1; }

// What all drawing readers share: clear the comment, set the cancel flag to 1, load the file, let `decode` open the
// canvas and draw, set the flag to 0. The canvas's bitmap is returned when `decode` returns true, else everything is
// freed.
HBITMAP RunDrawingReader(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                         DWORD commentSize, bool (*decode)(DrawingRun&));

// The same for a format whose comment is made while it draws: without a target the comment is cleared and nothing read.
HBITMAP RunTargetedReader(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                          DWORD commentSize, bool (*decode)(DrawingRun&));
