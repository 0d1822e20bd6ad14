#include "frame/os_kind.h"

int OsKindOf(DWORD platformId, DWORD majorVersion) {
    switch (platformId) {
        case VER_PLATFORM_WIN32s: return kOsWin32s;
        case VER_PLATFORM_WIN32_WINDOWS: return kOsWindows9x;
        case VER_PLATFORM_WIN32_NT: return majorVersion < 4 ? kOsNt3 : kOsNt4;
    }
    return kOsUnknown;
}

#ifdef _MSC_VER
#pragma warning(disable : 4996)  // the generation is what is asked for, not the exact version
#endif

int WINAPI GetOsKind() {
    OSVERSIONINFOA info = {};
    static_assert(sizeof(info) == 148);
    info.dwOSVersionInfoSize = sizeof(info);
    if (!GetVersionExA(&info)) return kOsUnknown;
    return OsKindOf(info.dwPlatformId, info.dwMajorVersion);
}
