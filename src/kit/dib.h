// Device-independent bitmaps.
#pragma once

#include <windows.h>

#include "kit/bytes.h"

// The bitmap that the contents of a .BMP file describe, compatible with the screen; the caller owns it. Null when the
// headers, the palette or the pixels do not fit the bytes given.
HBITMAP BitmapFromDibFile(ByteView file);
