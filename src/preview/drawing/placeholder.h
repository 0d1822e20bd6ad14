// Bitmaps with a line of text, for what has no picture.
#pragma once

#include <windows.h>

// A white bitmap of the target's size with one line of text in its middle, for "Loading..." and "Not Preview"; colour
// with kRenderColor in `flags`, else monochrome. The caller owns it; null when it could not be made.
HBITMAP CreatePlaceholderBitmap(DWORD flags, const char* text, const RECT& target);
