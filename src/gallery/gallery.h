// The gallery: a resizable dialog with a thumbnail of every drawing of a folder.
#pragma once

#include <windows.h>

// Lets the user pick a file by its picture.
//   listMode   0: `names` holds patterns separated by ";", enumerated in `folder`; else names ended by NUL, the list by
//              one more NUL
//   folder     may be empty: the current directory
//   renderMode the thumbnails', of a PreviewReader: 0 or kRenderFullDxf
//   result     in: the name to preselect; out, on OK: the chosen name, at most resultSize bytes with its terminator
// Returns 1 for OK; 0 for Cancel, a failure, and when there is no file to show.
int ShowGallery(HWND owner, int listMode, const char* folder, const char* names, char* result, DWORD resultSize,
                DWORD renderMode = 0);
