// The screen's resolution.
#pragma once

#include <windows.h>

#include "kit/handles.h"

// So many pixels of a screen of 96 dots per inch, in pixels of this one. The resolution is the process's for its life.
inline int ScreenPixels(int pixels) {
    static const int dotsPerInch = GetDeviceCaps(WindowDc(nullptr).dc, LOGPIXELSY);
    return MulDiv(pixels, dotsPerInch, USER_DEFAULT_SCREEN_DPI);
}
