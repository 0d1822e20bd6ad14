// Windows counts for us. Wine answers 0, but finds an object by the low half of its handle alone, so there the handles
// are tried one by one.
#include "support/handle_counts.h"

#include <windows.h>

#include <gtest/gtest.h>

static BOOL CALLBACK CountChild(HWND, LPARAM count) { return ++*reinterpret_cast<int*>(count); }

static BOOL CALLBACK CountWindow(HWND window, LPARAM count) {
    EnumChildWindows(window, CountChild, count);
    return CountChild(window, count);
}

// How many handles below `end` there are, by a function that tells.
template <typename Exists>
static int CountBelow(UINT_PTR end, UINT_PTR step, Exists exists) {
    int count = 0;
    for (UINT_PTR handle = step; handle < end; handle += step) count += exists(handle) ? 1 : 0;
    return count;
}

static int CountWindowsAndMenus() {
    int count = CountBelow(0x10000, 1, [](UINT_PTR handle) { return IsMenu(reinterpret_cast<HMENU>(handle)); });
    EnumThreadWindows(GetCurrentThreadId(), CountWindow, reinterpret_cast<LPARAM>(&count));
    return count;
}

static int CountGdiObjects() {
    return CountBelow(0x10000, 1, [](UINT_PTR handle) { return GetObjectType(reinterpret_cast<HGDIOBJ>(handle)); });
}

static int CountKernelHandles() {
    DWORD flags = 0;
    return CountBelow(0x4000, 4,
                      [&](UINT_PTR handle) { return GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags); });
}

HandleCounts CountHandles() {
    const HANDLE process = GetCurrentProcess();
    const DWORD gdi = GetGuiResources(process, GR_GDIOBJECTS), user = GetGuiResources(process, GR_USEROBJECTS);
    DWORD kernel = 0;
    GetProcessHandleCount(process, &kernel);
    return {gdi ? static_cast<int>(gdi) : CountGdiObjects(), user ? static_cast<int>(user) : CountWindowsAndMenus(),
            kernel ? static_cast<int>(kernel) : CountKernelHandles()};
}

void ExpectNothingLeft(const HandleCounts& before, int most) {
    const HandleCounts after = CountHandles();
    EXPECT_LE(after.gdi, before.gdi + most);
    EXPECT_LE(after.user, before.user + most);
    EXPECT_LE(after.kernel, before.kernel + most);
}

int CountHeapBlocks() {
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(64, heaps);
    int blocks = 0;
    for (DWORD i = 0; i < count && i < 64; ++i) {
        PROCESS_HEAP_ENTRY entry = {};
        HeapLock(heaps[i]);
        while (HeapWalk(heaps[i], &entry)) blocks += entry.wFlags & PROCESS_HEAP_ENTRY_BUSY ? 1 : 0;
        HeapUnlock(heaps[i]);
    }
    return blocks;
}
