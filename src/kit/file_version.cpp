#include "kit/file_version.h"

#include <cstdint>

#include "kit/handles.h"

// The size that a resource claims, which the system doubles to have room for both forms of its texts, against the size
// of the file that is to hold it.
static bool CanHold(const char* path, DWORD resourceSize) {
    WIN32_FILE_ATTRIBUTE_DATA file;
    if (!GetFileAttributesExA(path, GetFileExInfoStandard, &file)) return false;
    return (static_cast<std::uint64_t>(file.nFileSizeHigh) << 32 | file.nFileSizeLow) >= resourceSize / 4;
}

bool ReadFileVersion(const char* path, VS_FIXEDFILEINFO* out) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeA(path, &ignored);
    if (size == 0 || !CanHold(path, size)) return false;
    const UniqueLocal<char> resource(static_cast<char*>(LocalAlloc(LMEM_FIXED, size)));
    void* fixed = nullptr;
    UINT fixedSize = 0;
    if (!resource || !GetFileVersionInfoA(path, 0, size, resource.get()) ||
        !VerQueryValueA(resource.get(), "\\", &fixed, &fixedSize) || fixedSize < sizeof(*out)) {
        return false;
    }
    *out = *static_cast<const VS_FIXEDFILEINFO*>(fixed);
    return true;
}
