// Bitmaps as text, so that a test shows what is drawn.
#pragma once

#include <windows.h>

#include <string>

// One line for each row of pixels: '#' dark, '.' light. Empty for no bitmap.
std::string PictureOf(HBITMAP bitmap);

// The same for a bitmap that the caller owns no longer.
std::string TakePicture(HBITMAP bitmap);

// True when a picture holds any dark pixel.
inline bool HasInk(const std::string& picture) { return picture.find('#') != std::string::npos; }
