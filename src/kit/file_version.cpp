#include "kit/file_version.h"

#include <vector>

bool ReadFileVersion(const char* path, VS_FIXEDFILEINFO* out) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeA(path, &ignored);
    if (size == 0) return false;
    std::vector<char> resource(size);
    void* fixed = nullptr;
    UINT fixedSize = 0;
    if (!GetFileVersionInfoA(path, 0, size, resource.data()) ||
        !VerQueryValueA(resource.data(), "\\", &fixed, &fixedSize) || fixedSize < sizeof(*out)) {
        return false;
    }
    *out = *static_cast<const VS_FIXEDFILEINFO*>(fixed);
    return true;
}
