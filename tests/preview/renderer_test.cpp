#include "preview/drawing/renderer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <set>
#include <tuple>

#include "frame/services.h"
#include "preview/drawing/canvas.h"
#include "preview/drawing/placeholder.h"
#include "resources/resource.h"
#include "support/drawings.h"
#include "support/handle_counts.h"
#include "support/picture.h"

static constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
static constexpr double kInfinity = std::numeric_limits<double>::infinity();

// What `draw` leaves on a canvas of as many pixels as the world has units; (x, y) is the pixel of column x + 0.5 and of
// row height - (y - 0.5), both cut.
static std::string OnCanvas(int width, int height, const std::function<void(Canvas&)>& draw) {
    Canvas canvas(0, {0, 0, width, height});
    const WorldRect sheet = {0, 0, static_cast<double>(width), static_cast<double>(height)};
    EXPECT_TRUE(canvas.fit(canvas, sheet, DrawingSink::kWipe));
    draw(canvas);
    return TakePicture(ReleaseCanvasBitmap(&canvas));
}

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

TEST(DrawPreviewPrimitive, Pictures) {
    const auto solid = [](Stroke stroke) { return stroke.pen = 0, stroke; };
    const std::string blank = Picture("........", "........", "........", "........");
    const struct {
        const char* what;
        std::vector<Stroke> strokes;
        std::string picture;
    } cases[] = {
        // clang-format off
        {"points inside, on the edge and outside", {PointStroke(2, 2.5), PointStroke(0, 4), PointStroke(7.1, 2), PointStroke(3, -.1)},
         Picture("........", "#.......", "..#.....", ".......#")},
        {"mark at the first, clipped end", {LineStroke(0, -90, 2.5, 90, 2.5, EndMarkWord(kMarkDot, 0))},
         Picture("##......", "###.....", "########", "###.....")},
        {"mark at the second end", {LineStroke(0, -90, 2.5, 90, 2.5, EndMarkWord(0, kMarkDot))},
         Picture(".......#", "......##", "########", "......##")},
        {"frame", {solid(FrameStroke(1, 1.5, 6, 3.5, 1, 1.5))}, Picture("........", ".######.", ".#....#.", ".######.")},
        {"frame upside down", {solid(FrameStroke(6, 2.5, 4, 1.5, 6, 2.5, 180))}, Picture("........", "......##", "......##", "........")},
        {"frame turned by no number", {FrameStroke(1, 1.5, 6, 3.5, 1, 1.5, kNan)}, blank},
        {"small texts, unknown kinds",
         {TextStroke(1, 4, 1.4, 4, 0, 0, "X"), TextStroke(1, 4, 4, 1.4, 0, 0, "X"), {0, {5, 1, 1, 5, 3, {}, {}, {}}}}, blank},
        {"radius 0, and both ends in one pixel", {ArcStroke(0, 2, 2.5, .2, 0, 360), ArcStroke(0, 2, 1.5, 4, 10, 11)},
         Picture("........", "........", "..#.....", "......#.")},
        // clang-format on
    };
    for (const auto& c : cases) EXPECT_EQ(Rendered(8, 4, c.strokes), c.picture) << c.what;
}

TEST(DrawPreviewPrimitive, ArcsAndTextsAsGdiDrawsThem) {
    const auto line = [](int x1, int y1, int x2, int y2) {
        return [=](HDC dc) { MoveToEx(dc, x1, y1, nullptr), LineTo(dc, x2, y2); };
    };
    const std::function<void(HDC)> circle = [](HDC dc) { Arc(dc, 8, 6, 16, 14, 16, 10, 16, 10); };
    const struct {
        const char* what;
        Stroke stroke;
        std::function<void(HDC)> reference;
    } cases[] = {
        // clang-format off
        {"circle", ArcStroke(0, 12, 10.7, 4, 0, 360), circle},
        {"tiny arc, below 0 degrees at its start: goes all around", ArcStroke(0, 12, 10.7, 4, -1, 0), circle},
        {"across 0 degrees", ArcStroke(0, 4, 10.7, 12, 330, 30), [](HDC dc) { Arc(dc, -8, -2, 16, 22, 14, 16, 14, 4); }},
        {"12 pixels are straight", ArcStroke(0, 4, 4.7, 7, 0, 90), line(11, 16, 4, 9)},
        {"13 are not", ArcStroke(0, 4, 4.7, 8, 0, 95), [](HDC dc) { Arc(dc, -4, 8, 12, 24, 12, 16, 3, 8); }},
        {"radius beyond GDI's", ArcStroke(0, -39990, 2.7, 40000, 0, .02), line(10, 18, 10, 4)},
        {"turned text", TextStroke(6, 3.7, 8, 5, 0, 90.06, "AL"), [](HDC dc) {
             char face[LF_FACESIZE];
             CopyResString(IDS_TEXT_FACE, face, sizeof(face));
             const UniqueFont font(
                 CreateFontA(-8, 5, 900, 0, 400, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, FIXED_PITCH | FF_MODERN, face));
             const Selection selected(dc, font.get());
             TextOutA(dc, 6, 17, "AL", 2);
         }},
        // clang-format on
    };
    for (const auto& c : cases) {
        const std::string picture = Rendered(24, 20, {c.stroke});
        EXPECT_EQ(picture, OnCanvas(24, 20, [&](Canvas& canvas) { c.reference(canvas.dc.get()); })) << c.what;
        EXPECT_TRUE(HasInk(picture)) << c.what;
    }
}

TEST(DrawEndMark, Pictures) {
    const auto mark = [](std::uint32_t code, double x, double angle, double size) {
        return OnCanvas(12, 8, [&](Canvas& c) { DrawEndMark(*c.strokes, 0, c.view, code, x, 4.7, angle, size); });
    };
    const std::string arrow = Picture("............", "............", ".......###..", "...#######..", ".#########..",
                                      "....######..", "........##..", "............");
    const std::string dot = Picture("............", "............", "....###.....", "...#####....", "...#####....",
                                    "...#####....", "....###.....", "............");
    for (const double angle : {0, -360}) EXPECT_EQ(mark(kMarkArrow, 1, angle, 8), arrow);
    for (const double size : {0, 4}) EXPECT_EQ(mark(kMarkDot, 5, 0, size), dot) << "never less than 2 pixels";
    EXPECT_NE(mark(kMarkDot, 5, 0, 6), dot);
    EXPECT_FALSE(HasInk(mark(3, 5, 0, 6)));
}

TEST(Canvas, PensAndBitmaps) {
    std::set<std::string> lines;
    for (unsigned pen = 0; pen < 18; ++pen) lines.insert(Rendered(80, 4, {LineStroke(pen, 0, 2.7, 80, 2.7)}));
    EXPECT_EQ(lines.size(), 6u) << "a solid and five dashed ones";
    for (const DWORD mode : {0ul, kRenderColor}) {
        const std::string picture = TakePicture(CreatePlaceholderBitmap(mode, "####", {0, 0, 90, 30}));
        EXPECT_EQ(picture.size(), 91u * 30);
        EXPECT_FALSE(HasInk(picture.substr(0, 91 * 8) + picture.substr(91 * 22))) << "in the middle";
        EXPECT_TRUE(HasInk(picture));
    }
    EXPECT_FALSE(CreatePlaceholderBitmap(kRenderColor, "x", {0, 0, 0x7FFFFFFF, 0x7FFFFFFF}));
}

// Whatever the numbers are: nothing traps, hangs or stays behind.
TEST(DrawPreviewPrimitive, HostileNumbers) {
    const double values[] = {kNan, kInfinity, -kInfinity, 1e300, -1e300, 1e18, -1e9, 2147483647.5, 5e-324, 0, 360, 3};
    HandleCounts before = {};
    for (int pass = 0; pass < 2; ++pass) {  // the first one warms up what the system keeps
        std::minstd_rand random(7);
        const auto any = [&] { return values[random() % std::size(values)]; };
        OnCanvas(20, 12, [&](Canvas& canvas) {
            for (int i = 0; i < 3000; ++i) {
                if (i >= 300 && i % 30 == 0) canvas.fit(canvas, {any(), any(), any(), any()}, DrawingSink::kWipe);
                PreviewPrimitive p;
                p.kind = static_cast<std::uint32_t>(i % 6);
                for (double* field : {&p.a, &p.b, &p.c, &p.d}) *field = any();
                p.e.Set(any());
                p.f.Set(any());
                const double angle = any();
                if (p.kind == kText) std::strcpy(p.g, "A\x83\x5c");
                else std::memcpy(p.g, &angle, sizeof(angle));
                if (i % 2) canvas.draw(canvas, p, static_cast<unsigned>(i));
                else EXPECT_EQ(DrawPreviewPrimitive(canvas.dc.get(), canvas.view, p), 1);
            }
        });
        if (pass == 0) before = CountHandles();
    }
    EXPECT_EQ(CountHandles().gdi, before.gdi);
}
