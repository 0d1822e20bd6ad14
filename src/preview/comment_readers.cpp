#include "preview/comment_readers.h"

#include <cstdio>

#include "kit/file_version.h"

HBITMAP ReadTextComment(DWORD, const char* fileName, const RECT*, char* commentOut, DWORD commentSize) {
    Comment comment = BeginComment(commentOut, commentSize);
    const LoadedFile file(fileName);
    if (file.data) AppendComment(&comment, reinterpret_cast<const char*>(file.AsText().data));
    return nullptr;
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
