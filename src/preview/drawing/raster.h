// Strokes, black, straight into a bitmap's bits. Knows no Windows.
//
// Every pixel is the one that the platform's own calls would set: lines and polygons without exception, arcs and dots
// as far as tests reach. What a stroke costs follows what of it lies on the bitmap, never its length.
#pragma once

#include <cstdint>
#include <vector>

#include "preview/drawing/strokes.h"

// A bitmap's bits as a target. It draws no text, and a dot with every pen alike: whoever owns it sends texts, and dots
// with a dashed pen, elsewhere.
struct Raster : StrokeTarget {
    void* bits = nullptr;  // borrowed; rows from the top down, each padded to four bytes
    std::int32_t width = 0, height = 0;
    std::int32_t pitch = 0;            // from a pixel to the one below it, in pixels
    std::vector<std::uint32_t> edges;  // one bit a pixel: where an area begins or ends; zero between two areas
};

// One bit a pixel, a set bit is white, the highest bit of a byte is its leftmost pixel; or 32, of which all zero are
// black. False for a bitmap of any other depth, without area or with more than 2^30 pixels.
bool OpenRaster(Raster* raster, void* bits, std::int32_t width, std::int32_t height, int bitsPerPixel);
