#include "preview/drawing/strokes.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "support/drawings.h"

// Each axis is rounded its own way; beyond a number's range they wrap.
TEST(MapPoint, Rounding) {
    const ViewTransform view = {0, 0, 20, 10, 5, 7, 45, 27, 2, 2};
    const std::tuple<double, double, std::int32_t, std::int32_t> points[] = {
        {0.24, 0.25, 5, 27},
        {0.25, 0.74, 6, 27},
        {1, 0.75, 7, 26},
        {-1, -1, 4, 29},
        {1e300, 1e300, INT32_MIN + 5, INT32_MIN + 27}};
    for (const auto& [x, y, column, row] : points) {
        const PixelPoint p = MapPoint(view, x, y);
        EXPECT_TRUE(p.x == column && p.y == row) << x << " " << y;
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
