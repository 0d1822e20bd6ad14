#include "preview/reader.h"

#include <algorithm>
#include <cstring>

Comment BeginComment(char* commentOut, DWORD commentSize) {
    if (commentOut) std::memset(commentOut, 0, commentSize);
    return ContinueComment(commentOut, commentSize);
}

Comment ContinueComment(char* commentOut, DWORD commentSize) {
    if (!commentOut || commentSize == 0) return {};
    return {commentOut, static_cast<long>(std::min<DWORD>(commentSize, 0x7FFFFFFF))};
}

// Copies and moves on; the buffer is zero behind the end already.
static void Append(Comment* comment, const void* bytes, std::size_t size) {
    std::memcpy(comment->end, bytes, size);
    comment->end += size;
    comment->room -= static_cast<long>(size);
}

void AppendFittingLine(Comment* comment, ByteView line) {
    Append(comment, line.data, line.size);
    Append(comment, "\r\r\n", 3);
}

void AppendComment(Comment* comment, ByteView text) {
    if (comment->room <= 1) return;
    Append(comment, text.data, std::min(text.size, static_cast<std::size_t>(comment->room) - 1));
}

void AppendComment(Comment* comment, const char* text) {
    AppendComment(comment, ByteView{reinterpret_cast<const std::uint8_t*>(text), std::strlen(text)});
}

LoadedFile::LoadedFile(const char* fileName) : block(LoadFileToGlobal(fileName)) {
    if (!block) return;
    size = GlobalSize(block);
    data = static_cast<std::uint8_t*>(GlobalLock(block));
    if (size == 0) data = nullptr;
}

void LoadedFile::FreeAside() {
    constexpr std::size_t kSlowToFree = 1 << 20;
    if (!block || size < kSlowToFree) return;
    while (GlobalUnlock(block)) {}
    data = nullptr;
    size = 0;
    if (StartModuleThread([](void* memory) { GlobalFree(memory); }, block)) block = nullptr;
}

LoadedFile::~LoadedFile() {
    if (!block) return;
    while (GlobalUnlock(block)) {}  // the loader's lock and ours
    GlobalFree(block);
}

HBITMAP RunDrawingReader(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                         DWORD commentSize, bool (*decode)(DrawingRun&)) {
    const Comment comment = BeginComment(commentOut, commentSize);
    PreviewCancel(1);
    HBITMAP bitmap = nullptr;
    {
        DrawingRun run = {renderMode, target, comment, LoadedFile(fileName), {}};
        if (run.file.data && decode(run)) bitmap = ReleaseCanvasBitmap(&run.canvas);
        if (!MayContinue()) run.file.FreeAside();
    }
    PreviewCancel(0);
    return bitmap;
}

HBITMAP RunTargetedReader(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                          DWORD commentSize, bool (*decode)(DrawingRun&)) {
    if (target) return RunDrawingReader(renderMode, fileName, target, commentOut, commentSize, decode);
    BeginComment(commentOut, commentSize);
    return nullptr;
}
