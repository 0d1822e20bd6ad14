#include "support/checked_canvas.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "preview/drawing/path_strokes.h"

void Require(bool holds) {
    if (!holds) std::abort();
}

static StrokeCounts& CountsOf(StrokeTarget& target) { return static_cast<CheckedCanvas&>(target).counts; }

static void Check(PixelPoint p) { Require(std::abs(p.x) <= 1 << 27 && std::abs(p.y) <= 1 << 27); }
static void Check(std::int32_t radius) { Require(radius > 0 && radius < 32767); }

static void CheckPoints(const PixelPoint* points, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) Check(points[i]);
}

// Takes a stroke of a pen and counts it there.
template <std::uint32_t StrokeCounts::*counted, typename... Parts>
static void Count(StrokeTarget& target, unsigned pen, Parts... parts) {
    Require(pen < kPenCount);
    (Check(parts), ...);
    ++(CountsOf(target).*counted);
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
    path = [](DrawingSink& sink, const Path& path, unsigned pen) {
        auto& canvas = static_cast<CheckedCanvas&>(sink);
        Require(canvas.opened && canvas.flag == 1 && path.outlines > 0);
        const auto draw = path.filled ? FillOutlines : DrawOutlines;
        draw(canvas, canvas.view, path.points, path.counts, path.outlines, pen % kPenCount, &canvas.scratch);
        if (canvas.drawsLeft-- == 0) canvas.flag = 0;
    };
    unicodeText = [](DrawingSink& sink, const UnicodeText& text) {
        auto& canvas = static_cast<CheckedCanvas&>(sink);
        Require(canvas.opened && canvas.flag == 1 && !canvas.textsAsFrames && text.length > 0);
        Require(text.height > 0 && std::isfinite(text.height) && std::isfinite(text.at.x) && std::isfinite(text.at.y));
        Require(text.horizontal >= 0 && text.horizontal <= 2 && text.vertical >= 0 && text.vertical <= 3);
        ++canvas.counts.texts;
        if (canvas.drawsLeft-- == 0) canvas.flag = 0;
    };
    goOn = &flag;
    textsAsFrames = false;
    pixel = [](StrokeTarget& target, PixelPoint at) {
        Check(at);
        ++CountsOf(target).pixels;
    };
    line = Count<&StrokeCounts::lines, PixelPoint, PixelPoint>;
    arc = Count<&StrokeCounts::arcs, PixelPoint, std::int32_t, PixelPoint, PixelPoint>;
    dot = Count<&StrokeCounts::marks, PixelPoint, std::int32_t>;
    polyline = [](StrokeTarget& target, unsigned pen, const PixelPoint* points, std::size_t count) {
        Require(pen < kPenCount && count > 1);
        CheckPoints(points, count);
        CountsOf(target).lines += static_cast<std::uint32_t>(count - 1);
    };
    area = [](StrokeTarget&, const PixelPoint* points, const std::size_t* counts, std::size_t outlines) {
        for (std::size_t i = 0; i < outlines; points += counts[i++]) CheckPoints(points, counts[i]);
    };
    polygon = [](StrokeTarget& target, unsigned, const PixelPoint* corners, std::size_t count) {
        CheckPoints(corners, count);
        ++CountsOf(target).marks;
    };
    StrokeTarget::text = [](StrokeTarget& target, const TextStroke& text) {
        Check(text.at);
        Require(text.length > 0 && text.length < sizeof(PreviewPrimitive::g));
        Require(text.height >= 2 && text.height <= kMaxTextPixels && text.width >= 2 && text.width <= kMaxTextPixels);
        Require(std::memchr(text.text, 0, text.length + 1) == text.text + text.length);
        ++CountsOf(target).texts;
    };
}
