#include "preview/comment_readers.h"

#include <cstdio>

#include "kit/file_version.h"
#include "preview/title_block.h"

static void ReadTitleComment(const TitleSlots& slots, const char* fileName, char* commentOut, DWORD commentSize) {
    Comment comment = BeginComment(commentOut, commentSize);
    const LoadedFile file(fileName);
    if (file.data && file.size >= slots.begin + 3 * slots.size) AppendTitleBlock(&comment, file.AsText(), slots);
}

HBITMAP ReadQjComment(DWORD, const char* fileName, const RECT*, char* commentOut, DWORD commentSize) {
    ReadTitleComment(kQjTitle, fileName, commentOut, commentSize);
    return nullptr;
}

HBITMAP ReadQfComment(DWORD, const char* fileName, const RECT*, char* commentOut, DWORD commentSize) {
    ReadTitleComment(kQfTitle, fileName, commentOut, commentSize);
    return nullptr;
}

HBITMAP ReadNcComment(DWORD, const char*, const RECT*, char*, DWORD) { return nullptr; }

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
