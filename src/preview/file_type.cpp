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
    std::uint8_t head[kHeadSize];
    DWORD count = 0;
    if (!ReadFile(file.get(), head, sizeof(head), &count, nullptr)) count = 0;
    return IdentifyBytes({head, count}, FindExtension(fileName), commentOut, commentSize);
}
