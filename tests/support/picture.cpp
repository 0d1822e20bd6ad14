#include "support/picture.h"

#include <cstdint>
#include <vector>

#include "kit/handles.h"

std::string PictureOf(HBITMAP bitmap) {
    BITMAP shape = {};
    if (!bitmap || !GetObjectA(bitmap, sizeof(shape), &shape)) return "";
    const std::size_t width = static_cast<std::size_t>(shape.bmWidth),
                      height = static_cast<std::size_t>(shape.bmHeight);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), shape.bmWidth, -shape.bmHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    std::vector<std::uint32_t> pixels(width * height, 0xFFFFFF);
    const WindowDc screen(nullptr);
    GetDIBits(screen.dc, bitmap, 0, static_cast<UINT>(height), pixels.data(), &info, DIB_RGB_COLORS);
    std::string text;
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) text += (pixels[y * width + x] & 0xFF00) < 0x8000 ? '#' : '.';
        text += '\n';
    }
    return text;
}

std::string TakePicture(HBITMAP bitmap) {
    const UniqueBitmap owner(bitmap);
    return PictureOf(bitmap);
}
