#include "preview/reader.h"

#include <cstdio>
#include <cstring>
#include <utility>

#include "frame/services.h"
#include "kit/file_version.h"
#include "kit/guard.h"

// ---- Comments

Comment ContinueComment(char* commentOut, DWORD commentSize) {
    if (!commentOut || commentSize == 0) return {};
    return {commentOut, commentSize, CopyResString};
}

// Zeroes the caller's buffer and begins a comment in it.
static Comment BeginComment(char* commentOut, DWORD commentSize) {
    if (commentOut) std::memset(commentOut, 0, commentSize);
    return ContinueComment(commentOut, commentSize);
}

// ---- Files

// Deliberate: the zero that ends a text is written over its last byte. Written behind it, a text that does not end in a
// line break would show one character more.
static ByteView EndText(std::uint8_t* bytes, std::size_t size) {
    bytes[size - 1] = 0;
    return {bytes, size};
}

LoadedFile::LoadedFile(HGLOBAL loaded) : block(loaded) {
    if (!block) return;
    size = GlobalSize(block);
    data = static_cast<std::uint8_t*>(GlobalLock(block));
    if (size == 0) data = nullptr;
}

LoadedFile::LoadedFile(const char* fileName) : LoadedFile(LoadFileToGlobal(fileName)) {}
LoadedFile::LoadedFile(UniqueHandle file) : LoadedFile(LoadOpenFile(file.get())) {}

LoadedFile::~LoadedFile() {
    if (!block) return;
    while (GlobalUnlock(block)) {}  // the loader's lock and ours
    GlobalFree(block);
}

ByteView LoadedFile::AsText() const { return EndText(data, size); }

// ---- Readers

static HBITMAP Decode(const PreviewFormat& format, std::uint8_t* bytes, std::size_t size, const PreviewRequest& request,
                      Comment comment) {
    if (size == 0) return nullptr;
    const ByteView file = format.isText ? EndText(bytes, size) : ByteView{bytes, size};
    if (format.manner == PreviewFormat::kPicture) return BitmapFromDibFile(file);
    if (format.manner == PreviewFormat::kComment || !request.target) {
        format.decode(file, &comment, nullptr);
        return nullptr;
    }
    Canvas canvas(request.renderMode, *request.target);
    return format.decode(file, &comment, &canvas) ? TakeCanvasBitmap(&canvas) : nullptr;
}

static const PreviewFormat& Chosen(const PreviewFormat& format, const PreviewRequest& request) {
    return format.decode == DecodeDxf && (request.renderMode & kRenderFullDxf) ? kFullDxfFormat : format;
}

// What all formats share; `decode` gets the cleared comment. All that a run has made is free before the flag falls.
template <typename Work>
static HBITMAP RunReader(const PreviewFormat& format, const PreviewRequest& request, Work decode) {
    const Comment comment = BeginComment(request.commentOut, request.commentSize);
    if (format.manner == PreviewFormat::kTargetedDrawing && !request.target) return nullptr;
    const bool isDrawing = format.manner == PreviewFormat::kDrawing || format.manner == PreviewFormat::kTargetedDrawing;
    if (isDrawing) PreviewCancel(1);
    const HBITMAP bitmap = Guarded(HBITMAP{}, [&] { return decode(comment); });
    if (isDrawing) PreviewCancel(0);
    return bitmap;
}

// The source is a path or an open file.
template <typename Source>
static HBITMAP PreviewLoaded(const PreviewFormat& ofKind, Source source, const PreviewRequest& request) {
    const PreviewFormat& format = Chosen(ofKind, request);
    return RunReader(format, request, [&](const Comment& comment) {
        const LoadedFile file(std::move(source));
        return file.data ? Decode(format, file.data, file.size, request, comment) : nullptr;
    });
}

HBITMAP PreviewFile(const PreviewFormat& format, const char* fileName, const PreviewRequest& request) {
    return PreviewLoaded(format, fileName, request);
}

HBITMAP PreviewFile(const PreviewFormat& format, UniqueHandle file, const PreviewRequest& request) {
    return PreviewLoaded(format, std::move(file), request);
}

HBITMAP PreviewBytes(const PreviewFormat& ofKind, std::uint8_t* bytes, std::size_t size,
                     const PreviewRequest& request) {
    const PreviewFormat& format = Chosen(ofKind, request);
    return RunReader(format, request,
                     [&](const Comment& comment) { return Decode(format, bytes, size, request, comment); });
}

HBITMAP ReadVersionComment(DWORD, const char* fileName, const RECT*, char* commentOut, DWORD commentSize) {
    Comment comment = BeginComment(commentOut, commentSize);
    VS_FIXEDFILEINFO version;
    if (!ReadFileVersion(fileName, &version)) return nullptr;
    char text[64];
    std::snprintf(text, sizeof(text), "Version %d.%d.%d", HIWORD(version.dwFileVersionMS),
                  LOWORD(version.dwFileVersionMS), HIWORD(version.dwFileVersionLS));
    AppendComment(&comment, text);
    return nullptr;
}

HBITMAP ReadNcComment(DWORD, const char*, const RECT*, char*, DWORD) { return nullptr; }
