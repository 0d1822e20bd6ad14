#include "preview/file_type.h"

#include <cstring>

#include "frame/services.h"
#include "kit/handles.h"
#include "kit/paths.h"

FileTypeCode IdentifyFileType(const char* fileName, char* commentOut, int commentSize) {
    if (commentOut && commentSize > 0) std::memset(commentOut, 0, static_cast<std::size_t>(commentSize));
    if (!fileName) return FT_UNREADABLE;
    const UniqueHandle file(OpenDiskFile(fileName));
    if (!IsOpen(file)) return FT_UNREADABLE;
    return IdentifyOpenFile(file.get(), fileName, commentOut, commentSize);
}

FileTypeCode IdentifyOpenFile(HANDLE file, const char* fileName, char* commentOut, int commentSize) {
    std::uint8_t head[kHeadSize];
    DWORD count = 0;
    if (!ReadFile(file, head, sizeof(head), &count, nullptr)) count = 0;
    return IdentifyBytes({head, count}, FindExtension(fileName), commentOut, commentSize);
}
