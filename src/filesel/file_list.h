// The file list of the classic dialog as a window: its lines, its columns, and the drive information beside it.
#pragma once

#include <windows.h>

// The option words while a classic dialog is open: KW_SORT_... and KW_SHOW_...
extern DWORD SortOptionBits;
extern DWORD DisplayOptionBits;

// Lets the library's list-box procedure in front of the list's own, and takes it out again. WM_SETREDRAW with TRUE asks
// the list to sort and redraw its entries.
void SubclassFileList(HWND list);
void UnsubclassFileList(HWND list);
