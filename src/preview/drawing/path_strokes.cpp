#include "preview/drawing/path_strokes.h"

#include <algorithm>
#include <cmath>

#include "kit/numbers.h"

// A line being gathered: pixels, none twice in a row.
struct LineOfPixels {
    StrokeTarget& target;
    unsigned pen;
    std::vector<PixelPoint>& pixels;

    void Add(PixelPoint p) {
        if (pixels.empty() || pixels.back().x != p.x || pixels.back().y != p.y) pixels.push_back(p);
    }
    void End() {
        if (pixels.size() == 1) target.pixel(target, pixels[0]);
        if (pixels.size() > 1) target.polyline(target, pen, pixels.data(), pixels.size());
        pixels.clear();
    }
};

// The window and a little around it, so that no clipped end can be seen.
static WorldRect ClipOf(const ViewTransform& view) {
    const double x = 2 / view.scaleX, y = 2 / view.scaleY;
    return {view.worldMinX - x, view.worldMinY - y, view.worldMaxX + x, view.worldMaxY + y};
}

// The part of a segment that lies in the rectangle, as shares of its length; false when there is none.
static bool ClipShares(const WorldRect& clip, WorldPoint a, WorldPoint b, double* first, double* last) {
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double steps[] = {-dx, dx, -dy, dy};
    const double rooms[] = {a.x - clip.minX, clip.maxX - a.x, a.y - clip.minY, clip.maxY - a.y};
    *first = 0, *last = 1;
    for (int i = 0; i < 4; ++i) {
        if (steps[i] < 0) *first = std::max(*first, rooms[i] / steps[i]);
        else if (steps[i] > 0) *last = std::min(*last, rooms[i] / steps[i]);
        else if (!(rooms[i] >= 0)) return false;
    }
    return *first <= *last;
}

static bool IsInside(const WorldRect& clip, WorldPoint p) {
    return p.x >= clip.minX && p.x <= clip.maxX && p.y >= clip.minY && p.y <= clip.maxY;
}

static void AddSegment(LineOfPixels* line, const ViewTransform& view, const WorldRect& clip, WorldPoint a,
                       WorldPoint b) {
    double first = 0, last = 1;
    if (IsInside(clip, a) && IsInside(clip, b)) {
        line->Add(MapPoint(view, a.x, a.y));
        line->Add(MapPoint(view, b.x, b.y));
        return;
    }
    if (!ClipShares(clip, a, b, &first, &last)) return line->End();
    const auto at = [&](double share) { return MapPoint(view, a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share); };
    if (first > 0) line->End();
    line->Add(at(first));
    line->Add(at(last));
    if (last < 1) line->End();
}

static void DrawLines(StrokeTarget& target, const ViewTransform& view, const WorldPoint* points,
                      const std::size_t* counts, std::size_t outlines, unsigned pen, bool closed,
                      std::vector<PixelPoint>* scratch) {
    const WorldRect clip = ClipOf(view);
    scratch->clear();
    LineOfPixels line = {target, pen, *scratch};
    for (std::size_t i = 0; i < outlines; points += counts[i++]) {
        for (std::size_t k = 0; k + 1 < counts[i]; ++k) AddSegment(&line, view, clip, points[k], points[k + 1]);
        if (closed && counts[i] > 1) AddSegment(&line, view, clip, points[counts[i] - 1], points[0]);
        line.End();
    }
}

void DrawOutlines(StrokeTarget& target, const ViewTransform& view, const WorldPoint* points, const std::size_t* counts,
                  std::size_t outlines, unsigned pen, std::vector<PixelPoint>* scratch) {
    DrawLines(target, view, points, counts, outlines, pen, false, scratch);
}

// Far outside, where a share of a pixel does not matter any more, corners are brought near.
static PixelPoint MapNear(const ViewTransform& view, WorldPoint p) {
    constexpr double kFar = 1 << 24;
    const double x = std::clamp((p.x - view.worldMinX) * view.scaleX, -kFar, kFar);
    const double y = std::clamp((p.y - view.worldMinY) * view.scaleY, -kFar, kFar);
    return MapPoint(view, view.worldMinX + x / view.scaleX, view.worldMinY + y / view.scaleY);
}

void FillOutlines(StrokeTarget& target, const ViewTransform& view, const WorldPoint* points, const std::size_t* counts,
                  std::size_t outlines, unsigned pen, std::vector<PixelPoint>* scratch) {
    scratch->clear();
    const WorldPoint* point = points;
    for (std::size_t i = 0; i < outlines; ++i) {
        for (std::size_t k = 0; k < counts[i]; ++k) scratch->push_back(MapNear(view, *point++));
    }
    target.area(target, scratch->data(), counts, outlines);
    DrawLines(target, view, points, counts, outlines, pen, true, scratch);
}
