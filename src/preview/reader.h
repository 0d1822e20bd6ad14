// The one contract of all preview readers, and what every reader does before and after its format.
#pragma once

#include <windows.h>

#include <cstddef>

#include "kit/dib.h"
#include "kit/handles.h"
#include "preview/drawing/canvas.h"
#include "preview/formats/backup.h"
#include "preview/formats/comments.h"
#include "preview/formats/dxf.h"
#include "preview/formats/full_dxf.h"
#include "preview/formats/native.h"
#include "preview/formats/text.h"

// Reads `fileName` and draws it into a bitmap of the target's size, which the caller then owns.
//   renderMode               kRenderColor, kRenderTextFrames, kRenderFullDxf
//   target                   size of the bitmap in pixels; without one there is no bitmap
//   commentOut, commentSize  receives the title block or the head of the text, at most commentSize - 1
//                            bytes, always ended by a zero; lines are separated by "\r\r\n"; may be null and 0
// Null when the file gives no picture, cannot be read, or the run was cancelled (PreviewCancel).
using PreviewReader = HBITMAP (*)(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                                  DWORD commentSize);

// What a caller of a reader wants, but for the file.
struct PreviewRequest {
    DWORD renderMode;
    const RECT* target;
    char* commentOut;
    DWORD commentSize;
};

// How a kind of file is shown.
struct PreviewFormat {
    enum Manner {
        kDrawing,          // drawn, its comment given without a target too; a run that can be cancelled
        kTargetedDrawing,  // the same, but its comment is made while it is drawn: without a target nothing is read
        kComment,          // nothing but a text
        kPicture,          // the file is a bitmap, which keeps its own size
    };
    Manner manner;
    bool isText;     // a zero over the last byte ends the contents
    Decoder decode;  // null for pictures
};
inline constexpr PreviewFormat kNativeFormat = {PreviewFormat::kDrawing, false, DecodeNative};
inline constexpr PreviewFormat kBackupFormat = {PreviewFormat::kDrawing, false, DecodeBackup};
inline constexpr PreviewFormat kTextFormat = {PreviewFormat::kTargetedDrawing, true, DecodeTextDrawing};
inline constexpr PreviewFormat kDxfFormat = {PreviewFormat::kTargetedDrawing, true, DecodeDxf};
inline constexpr PreviewFormat kFullDxfFormat = {PreviewFormat::kDrawing, false, DecodeFullDxf};
inline constexpr PreviewFormat kQjFormat = {PreviewFormat::kComment, true, DecodeQjComment};
inline constexpr PreviewFormat kQfFormat = {PreviewFormat::kComment, true, DecodeQfComment};
inline constexpr PreviewFormat kPlainTextFormat = {PreviewFormat::kComment, true, DecodeTextComment};
inline constexpr PreviewFormat kBitmapFormat = {PreviewFormat::kPicture, false, nullptr};

// Reads a file of a known format, by its name or as it has been opened; DXF by the full reader where the mode asks for
// it.
HBITMAP PreviewFile(const PreviewFormat& format, const char* fileName, const PreviewRequest& request);
HBITMAP PreviewFile(const PreviewFormat& format, UniqueHandle file, const PreviewRequest& request);

// The same for a file that is in memory already. The bytes are the caller's; of a text, the last one is overwritten.
HBITMAP PreviewBytes(const PreviewFormat& format, std::uint8_t* bytes, std::size_t size, const PreviewRequest& request);

template <const PreviewFormat& format>
HBITMAP ReadFormat(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut, DWORD commentSize) {
    return PreviewFile(format, fileName, {renderMode, target, commentOut, commentSize});
}
inline constexpr PreviewReader ReadNativePreview = ReadFormat<kNativeFormat>;
inline constexpr PreviewReader ReadBackupDrawing = ReadFormat<kBackupFormat>;
inline constexpr PreviewReader ReadTextDrawing = ReadFormat<kTextFormat>;
inline constexpr PreviewReader ReadDxfPreview = ReadFormat<kDxfFormat>;
inline constexpr PreviewReader ReadFullDxfPreview = ReadFormat<kFullDxfFormat>;
inline constexpr PreviewReader ReadQjComment = ReadFormat<kQjFormat>;
inline constexpr PreviewReader ReadQfComment = ReadFormat<kQfFormat>;
inline constexpr PreviewReader ReadTextComment = ReadFormat<kPlainTextFormat>;
inline constexpr PreviewReader ReadBitmapFile = ReadFormat<kBitmapFormat>;

// "Version 1.2.3" of an executable's version resource as the comment; nothing when it has none.
HBITMAP ReadVersionComment(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                           DWORD commentSize);

// NC programs: shows nothing and leaves the comment as the caller has cleared it.
HBITMAP ReadNcComment(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut, DWORD commentSize);

// Begins a comment in a buffer that the caller has cleared.
Comment ContinueComment(char* commentOut, DWORD commentSize);

// A file's contents in global memory, locked for as long as the record lives. `data` is null when it could not be
// loaded.
struct LoadedFile {
    HGLOBAL block;
    std::uint8_t* data = nullptr;
    std::size_t size = 0;
    explicit LoadedFile(const char* fileName);
    explicit LoadedFile(UniqueHandle file);  // which is open; closed as soon as it is loaded
    ~LoadedFile();
    LoadedFile(const LoadedFile&) = delete;
    LoadedFile& operator=(const LoadedFile&) = delete;

    // Ends the contents as a string.
    ByteView AsText() const;

private:
    explicit LoadedFile(HGLOBAL loaded);
};
