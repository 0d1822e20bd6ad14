#include "filesel/file_list.h"

#include <cstring>

DWORD SortOptionBits = 0;
DWORD DisplayOptionBits = 0;

// The window property that remembers the list box's own procedure.
static constexpr char kPreviousProcedure[] = "kwFileListProcedure";

static LRESULT CALLBACK FileListProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto previous = reinterpret_cast<WNDPROC>(GetPropA(list, kPreviousProcedure));
    if (!previous) return DefWindowProcA(list, message, wParam, lParam);
    if (message == WM_NCDESTROY) UnsubclassFileList(list);
    return CallWindowProcA(previous, list, message, wParam, lParam);
}

void SubclassFileList(HWND list) {
    if (!list || GetPropA(list, kPreviousProcedure)) return;
    const LONG_PTR own = GetWindowLongPtrA(list, GWLP_WNDPROC);
    if (!SetPropA(list, kPreviousProcedure, reinterpret_cast<HANDLE>(own))) return;
    SetWindowLongPtrA(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(FileListProc));
}

void UnsubclassFileList(HWND list) {
    const HANDLE previous = list ? RemovePropA(list, kPreviousProcedure) : nullptr;
    if (previous) SetWindowLongPtrA(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous));
}

std::size_t FileNameLength(const char* line) {
    const std::size_t tab = std::strcspn(line, "\t");
    return line[tab] ? tab : std::strcspn(line, " ");
}
