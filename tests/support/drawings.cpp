#include "support/drawings.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "support/guard_block.h"

std::string CommentOf(Decoder decode, const std::string& file, std::size_t size, bool withSink) {
    static std::atomic<std::int32_t> goOn = 1;
    const auto label = [](unsigned id, char* out, std::size_t room) { std::snprintf(out, room, "<%u>", id); };
    DrawingSink sink = {[](DrawingSink&, const WorldRect&, DrawingSink::FitMode) { return true; },
                        [](DrawingSink&, PreviewPrimitive&, unsigned) {},
                        nullptr,
                        nullptr,
                        {},
                        false,
                        &goOn};
    const GuardBlock block(file), out(std::string(size, '\0'));
    Comment comment;
    if (size > 0) comment = {out.Text(), static_cast<long long>(size), label};
    decode(block.View(), &comment, withSink ? &sink : nullptr);
    const std::string text(out.Text(), strnlen(out.Text(), size));
    EXPECT_EQ(std::string(out.Text(), size), text + std::string(size - text.size(), '\0'));
    return text;
}

// A stroke of what `set` makes of an element.
template <typename Set>
static Stroke StrokeOf(unsigned pen, Set set) {
    Stroke stroke = {pen, {}};
    set(stroke.primitive);
    return stroke;
}

Stroke PointStroke(double x, double y) {
    return StrokeOf(0, [=](PreviewPrimitive& out) { out.SetPoint(x, y); });
}

Stroke LineStroke(unsigned pen, double x1, double y1, double x2, double y2, std::uint32_t marks) {
    return StrokeOf(pen, [=](PreviewPrimitive& out) { out.SetLine(x1, y1, x2, y2), out.e.SetEndMarks(marks); });
}

Stroke ArcStroke(unsigned pen, double x, double y, double radius, double start, double end, std::uint32_t marks) {
    return StrokeOf(pen,
                    [=](PreviewPrimitive& out) { out.SetArc(x, y, radius, start, end), out.f.SetEndMarks(marks); });
}

Stroke FrameStroke(double x1, double y1, double x2, double y2, double centreX, double centreY, double angle) {
    return StrokeOf(kTextPen, [=](PreviewPrimitive& out) { out.SetFrame(x1, y1, x2, y2, centreX, centreY, angle); });
}

Stroke TextStrokeOf(double x, double y, double height, double width, double spacing, double angle,
                    const std::string& text) {
    return StrokeOf(kTextPen,
                    [&](PreviewPrimitive& out) { out.SetText(x, y, height, width, spacing, angle, text.c_str()); });
}
