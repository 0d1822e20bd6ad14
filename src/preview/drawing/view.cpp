#include "preview/drawing/view.h"

#include <cmath>

#include "kit/numbers.h"

void FitViewTransform(const WorldRect& extents, const PixelRect& target, ViewTransform* out) {
    double minX = extents.minX, minY = extents.minY, maxX = extents.maxX, maxY = extents.maxY;
    double width = maxX - minX, height = maxY - minY;
    const double pixelWidth = static_cast<double>(target.right) - target.left;
    const double pixelHeight = static_cast<double>(target.bottom) - target.top;
    if (width / pixelWidth > height / pixelHeight) {
        const double centre = (minY + maxY) / 2;
        height = width * pixelHeight / pixelWidth;
        minY = centre - height / 2;
        maxY = centre + height / 2;
    } else {
        const double centre = (minX + maxX) / 2;
        width = height * pixelWidth / pixelHeight;
        minX = centre - width / 2;
        maxX = centre + width / 2;
    }
    *out = {minX,
            minY,
            maxX,
            maxY,
            target.left,
            target.top,
            target.right,
            target.bottom,
            pixelWidth / width,
            pixelHeight / height};
}

// Deliberate: x and y are rounded by different terms. With one term for both, everything in every picture would stand a
// row higher.
PixelPoint MapPoint(const ViewTransform& view, double x, double y) {
    return {WrappingAdd(view.canvasLeft, TruncToInt32((x - view.worldMinX) * view.scaleX + 0.5)),
            WrappingSubtract(view.canvasBottom, TruncToInt32((y - view.worldMinY) * view.scaleY - 0.5))};
}

std::int64_t MapLength(const ViewTransform& view, double length) { return TruncToInt64(length * view.scaleX + 0.5); }

// ---- Clipping

static int OutCode(const ViewTransform& view, double x, double y) {
    int code = 0;
    if (x < view.worldMinX) code = 1;
    else if (x > view.worldMaxX) code = 2;
    if (y < view.worldMinY) code += 4;
    else if (y > view.worldMaxY) code += 8;
    return code;
}

bool PointInWindow(const ViewTransform& view, double x, double y) { return OutCode(view, x, y) == 0; }

// Moves one end of a segment along (dx, dy) onto the edge that its code names.
static void MoveToEdge(const ViewTransform& view, int code, double dx, double dy, double* x, double* y) {
    if (code & 3) {
        const double edge = code & 1 ? view.worldMinX : view.worldMaxX;
        *y += (edge - *x) * dy / dx;
        *x = edge;
    } else if (code & 12) {
        const double edge = code & 4 ? view.worldMinY : view.worldMaxY;
        *x += (edge - *y) * dx / dy;
        *y = edge;
    }
}

bool ClipSegmentToWindow(const ViewTransform& view, double* x1, double* y1, double* x2, double* y2) {
    for (int pass = 0; pass < 2; ++pass) {
        const int code1 = OutCode(view, *x1, *y1);
        const int code2 = OutCode(view, *x2, *y2);
        if (code1 & code2) return false;
        if (code1 == 0 && code2 == 0) return true;
        MoveToEdge(view, code1, *x2 - *x1, *y2 - *y1, x1, y1);
        MoveToEdge(view, code2, *x2 - *x1, *y2 - *y1, x2, y2);
    }
    // Both ends on one point outside give 0 / 0 above: there is nothing to draw.
    return !(std::isnan(*x1) || std::isnan(*y1) || std::isnan(*x2) || std::isnan(*y2));
}
