// From drawing units to pixels: extents, the view transform, clipping. Knows no Windows.
//
// Lengths and coordinates of a drawing are its own units, y upward; pixels are 32-bit, y downward.
#pragma once

#include <cstdint>

struct PixelPoint {
    std::int32_t x, y;
};

// Right and bottom edges lie outside, as Windows counts them.
struct PixelRect {
    std::int32_t left, top, right, bottom;
};

struct WorldPoint {
    double x, y;
};

// Extents of a drawing.
struct WorldRect {
    double minX, minY, maxX, maxY;
};

struct ViewTransform {
    double worldMinX, worldMinY, worldMaxX, worldMaxY;  // the visible window; points and lines are clipped to it
    std::int32_t canvasLeft, canvasTop, canvasRight, canvasBottom;
    double scaleX, scaleY;  // pixels per drawing unit
};

// The sheet that is assumed until a drawing states its extents: A3 in millimetres.
constexpr WorldRect kDefaultSheet = {0, 0, 420, 297};

// Fits the extents into the target without a margin, centred on the axis that has room left. Extents or a target
// without area give a transform that draws nothing harmful.
void FitViewTransform(const WorldRect& extents, const PixelRect& target, ViewTransform* out);

PixelPoint MapPoint(const ViewTransform& transform, double x, double y);

// A length in pixels, rounded; the horizontal scale serves all directions.
std::int64_t MapLength(const ViewTransform& transform, double length);

bool PointInWindow(const ViewTransform& transform, double x, double y);

// Clips a segment to the visible window in at most two passes; false when nothing of it can be seen. After the second
// pass the segment is taken as it stands: whatever draws it clips what remains.
bool ClipSegmentToWindow(const ViewTransform& transform, double* x1, double* y1, double* x2, double* y2);
