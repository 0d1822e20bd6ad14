#include "preview/drawing/strokes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>
#include <tuple>

#include "support/drawings.h"

TEST(ViewTransform, Fits) {
    const struct {
        WorldRect extents;
        PixelRect target;
        WorldRect world;
        double scale;
    } cases[] = {
        // clang-format off
        {{0, 0, 100, 50}, {0, 0, 200, 200}, {0, -25, 100, 75}, 2},             // wide: bands above and below
        {{0, 0, 50, 100}, {0, 0, 200, 200}, {-25, 0, 75, 100}, 2},             // tall: bands left and right
        {{0, 0, 100, 100}, {10, 20, 60, 120}, {0, -50, 100, 150}, .5},         // a target away from 0
        // clang-format on
    };
    for (const auto& c : cases) {
        ViewTransform v = {};
        FitViewTransform(c.extents, c.target, &v);
        const double got[] = {v.worldMinX, v.worldMinY, v.worldMaxX, v.worldMaxY, v.scaleX, v.scaleY};
        const double want[] = {c.world.minX, c.world.minY, c.world.maxX, c.world.maxY, c.scale, c.scale};
        for (int i = 0; i < 6; ++i) EXPECT_NEAR(got[i], want[i], 1e-9) << i << " of " << c.extents.maxX;
        EXPECT_EQ(v.canvasLeft, c.target.left);
        EXPECT_EQ(v.canvasBottom, c.target.bottom);
    }
    const ViewTransform view = {0, 0, 20, 10, 5, 7, 45, 27, 2, 2};  // each axis is rounded its own way
    const std::tuple<double, double, std::int32_t, std::int32_t> points[] = {
        {0.24, 0.25, 5, 27},
        {0.25, 0.74, 6, 27},
        {1, 0.75, 7, 26},
        {-1, -1, 4, 29},
        {1e300, 1e300, INT32_MIN + 5, INT32_MIN + 27}};  // beyond a number's range they wrap
    for (const auto& [x, y, column, row] : points) {
        const PixelPoint p = MapPoint(view, x, y);
        EXPECT_TRUE(p.x == column && p.y == row) << x << " " << y;
    }
}

TEST(ClipSegmentToWindow, Table) {
    const ViewTransform view = {0, 0, 10, 10, 0, 0, 10, 10, 1, 1};
    const struct {
        double x1, y1, x2, y2;
        bool seen;
        double a, b, c, d;
    } cases[] = {
        // clang-format off
        {0, 0, 10, 10, true, 0, 0, 10, 10},                                     // on the edge
        {-5, 5, 15, 5, true, 0, 5, 10, 5}, {5, 15, 5, -5, true, 5, 10, 5, 0},   // through two edges
        {-10, -5, 20, 25, true, 0, 5, 5, 10},                                   // takes the second pass
        {-5, 1, -1, 9, false, 0, 0, 0, 0}, {1, 11, 9, 12, false, 0, 0, 0, 0},
        {-5, 8, 5, 20, false, 0, 0, 0, 0},                                      // 0 / 0
        // clang-format on
    };
    for (auto c : cases) {
        const auto name = testing::Message() << c.x1 << " " << c.y1;
        EXPECT_EQ(ClipSegmentToWindow(view, &c.x1, &c.y1, &c.x2, &c.y2), c.seen) << name;
        const double got[] = {c.x1, c.y1, c.x2, c.y2}, want[] = {c.a, c.b, c.c, c.d};
        for (int i = 0; c.seen && i < 4; ++i) EXPECT_NEAR(got[i], want[i], 1e-9) << name << ": " << i;
    }
}

// Elements that a sheet of 8 x 4 units shows nothing or little of.
TEST(DrawElement, Edges) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::string blank = "........\n........\n........\n........\n";
    const struct {
        const char* what;
        std::vector<Stroke> strokes;
        std::string plot;
    } cases[] = {
        // clang-format off
        {"points on the edge and outside", {PointStroke(0, 4), PointStroke(7.1, 2), PointStroke(3, -.1)},
         "........\n*.......\n........\n.......*\n"},
        {"frame", {FrameStroke(1, 1.5, 6, 3.5, 1, 1.5)}, "........\n.666666.\n.6....6.\n.666666.\n"},
        {"frame upside down", {FrameStroke(6.2, 2.3, 4.2, 1.3, 6.2, 2.3, 180)}, "........\n........\n......66\n......66\n"},
        {"frame turned by no number", {FrameStroke(1, 1.5, 6, 3.5, 1, 1.5, nan)}, blank},
        {"unknown kind", {{0, {5, 1, 1, 5, 3, {}, {}, {}}}}, blank},
        {"a text that ends far from the sheet", {TextStrokeOf(-70, 3, 2, 2, 0, 0, "abcdefg")}, blank},
        {"one letter that may reach it", {TextStrokeOf(-11, 3, 2, 2, 0, 0, "a")}, blank + "-10 2 2 2 0 0 a\n"},
        {"one that may reach it", {TextStrokeOf(-20, 3, 2, 2, -1, 0, "abcdefg")}, blank + "-19 2 2 2 0 0 abcdefg\n"},
        {"the largest text, and larger ones",
         {TextStrokeOf(1, 3, 4096, 2, 0, 0, "a"), TextStrokeOf(1, 3, 4097, 2, 0, 0, "a"), TextStrokeOf(1, 3, 2, 4097, 0, 0, "a")},
         blank + "1 2 4096 2 0 0 a\n"},
        // clang-format on
    };
    for (const auto& c : cases) EXPECT_EQ(PlotOf(c.strokes, 8, 4), c.plot) << c.what;
}

// Whatever the numbers are: a target is asked for nothing that it cannot see, nor for what overflows.
TEST(DrawElement, HostileNumbers) {
    static int calls;
    static const auto check = [](PixelPoint at, std::int64_t reach) {
        ++calls;
        EXPECT_TRUE(std::abs(at.x) < 1 << 27 && std::abs(at.y) < 1 << 27);
        EXPECT_TRUE(at.x + reach >= 0 && at.x - reach < 20 && at.y + reach >= 0 && at.y - reach < 12);
    };
    StrokeTarget target = {};
    target.pixel = [](StrokeTarget&, PixelPoint at) { check(at, 0); };
    target.line = [](StrokeTarget&, unsigned, PixelPoint a, PixelPoint b) {
        check(a, std::max(std::abs(a.x - b.x), std::abs(a.y - b.y)));
    };
    target.arc = [](StrokeTarget&, unsigned, PixelPoint centre, std::int32_t radius, PixelPoint, PixelPoint) {
        EXPECT_TRUE(radius > 0 && radius < 32767);
        check(centre, radius);
    };
    target.polygon = [](StrokeTarget&, unsigned, const PixelPoint* corners, std::size_t) {
        check(corners[0], 1 << 28);
    };
    target.dot = [](StrokeTarget&, unsigned, PixelPoint centre, std::int32_t radius) { check(centre, radius); };
    target.text = [](StrokeTarget&, const TextStroke& text) {
        EXPECT_TRUE(text.height >= 2 && text.height <= 4096 && text.width >= 2 && text.width <= 4096);
        check(text.at, std::int64_t{1} << 40);
    };
    const double infinity = std::numeric_limits<double>::infinity();
    const double values[] = {std::numeric_limits<double>::quiet_NaN(),
                             infinity,
                             -infinity,
                             1e300,
                             -1e300,
                             1e18,
                             -1e9,
                             2147483647.5,
                             5e-324,
                             0,
                             360,
                             3,
                             9,
                             2};
    std::minstd_rand random(7);
    const auto any = [&] { return values[random() % std::size(values)]; };
    ViewTransform view;
    FitViewTransform({0, 0, 20, 12}, {0, 0, 20, 12}, &view);
    for (int i = 0; i < 100000; ++i) {
        if (i >= 20000 && i % 30 == 0) FitViewTransform({any(), any(), any(), any()}, {0, 0, 20, 12}, &view);
        PreviewPrimitive p;
        p.SetFrame(any(), any(), any(), any(), any(), any(), any());
        p.kind = static_cast<std::uint32_t>(i % 6);
        if (i % 7 == 0) p.SetLineMarks(EndMarkWord(1, 2)), p.SetArcMarks(EndMarkWord(2, 1));
        if (p.kind == kText) std::strcpy(p.g, "A\x83\x5c");
        DrawElement(target, view, p, static_cast<unsigned>(i % kPenCount));
    }
    EXPECT_GT(calls, 1000);
}
