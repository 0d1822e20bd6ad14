#include "support/checked_canvas.h"

#include <cstdlib>
#include <cstring>

static void Require(bool holds) {
    if (!holds) std::abort();
}

static StrokeCounts& CountsOf(StrokeTarget& target) { return static_cast<CheckedCanvas&>(target).counts; }

static bool IsInSpace(PixelPoint p) { return std::abs(p.x) <= 1 << 27 && std::abs(p.y) <= 1 << 27; }

static void CheckPoints(const PixelPoint* points, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) Require(IsInSpace(points[i]));
}

CheckedCanvas::CheckedCanvas(const PixelRect& rect) : target(rect) {
    fit = [](DrawingSink& sink, const WorldRect& extents, FitMode mode) {
        auto& canvas = static_cast<CheckedCanvas&>(sink);
        Require(canvas.opened || mode == kWipe);
        if (canvas.fitsLeft-- == 0) return false;
        canvas.opened = true;
        FitViewTransform(extents, canvas.target, &canvas.view);
        return true;
    };
    draw = [](DrawingSink& sink, PreviewPrimitive& element, unsigned pen) {
        auto& canvas = static_cast<CheckedCanvas&>(sink);
        Require(canvas.opened && canvas.flag == 1);
        DrawElement(canvas, canvas.view, element, pen % kPenCount);
        if (canvas.drawsLeft-- == 0) canvas.flag = 0;
    };
    path = nullptr;
    unicodeText = nullptr;
    goOn = &flag;
    textsAsFrames = false;
    pixel = [](StrokeTarget& target, PixelPoint at) {
        Require(IsInSpace(at));
        ++CountsOf(target).pixels;
    };
    line = [](StrokeTarget& target, unsigned pen, PixelPoint from, PixelPoint to) {
        Require(pen < kPenCount && IsInSpace(from) && IsInSpace(to));
        ++CountsOf(target).lines;
    };
    arc = [](StrokeTarget& target, unsigned pen, PixelPoint centre, std::int32_t radius, PixelPoint from,
             PixelPoint to) {
        Require(pen < kPenCount && radius > 0 && radius < 32767);
        Require(IsInSpace(centre) && IsInSpace(from) && IsInSpace(to));
        ++CountsOf(target).arcs;
    };
    polyline = [](StrokeTarget&, unsigned, const PixelPoint* points, std::size_t count) { CheckPoints(points, count); };
    area = [](StrokeTarget&, const PixelPoint* points, const std::size_t* counts, std::size_t outlines) {
        for (std::size_t i = 0; i < outlines; points += counts[i++]) CheckPoints(points, counts[i]);
    };
    polygon = [](StrokeTarget& target, unsigned, const PixelPoint* corners, std::size_t count) {
        CheckPoints(corners, count);
        ++CountsOf(target).marks;
    };
    dot = [](StrokeTarget& target, unsigned, PixelPoint centre, std::int32_t radius) {
        Require(radius >= 2 && radius < 32767 && IsInSpace(centre));
        ++CountsOf(target).marks;
    };
    StrokeTarget::text = [](StrokeTarget& target, const TextStroke& text) {
        Require(IsInSpace(text.at) && text.length > 0 && text.length < sizeof(PreviewPrimitive::g));
        Require(text.height >= 2 && text.height <= kMaxTextPixels && text.width >= 2 && text.width <= kMaxTextPixels);
        Require(std::memchr(text.text, 0, text.length + 1) == text.text + text.length);
        ++CountsOf(target).texts;
    };
}
