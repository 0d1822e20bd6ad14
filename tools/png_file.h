// Writes pictures as PNG files, by the system's own encoder.
#pragma once

#include <windows.h>

// Saves a bitmap that is not selected into any device context. An existing file is replaced, but only once the new one
// is complete. False, and nothing is left behind, when the bitmap cannot be read or the file cannot be written.
bool SavePng(HBITMAP bitmap, const wchar_t* path);
bool SavePng(HBITMAP bitmap, const char* path);  // in the system's code page
