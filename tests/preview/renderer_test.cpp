#include "preview/renderer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <limits>
#include <random>

#include "frame/services.h"
#include "preview/canvas.h"
#include "resources/resource.h"
#include "support/handle_counts.h"
#include "support/picture.h"

static constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
static constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Elements = std::vector<PreviewPrimitive>;

template <typename... Values>
static PreviewPrimitive Made(void (PreviewPrimitive::*set)(Values...), Values... values) {
    PreviewPrimitive p;
    (p.*set)(values...);
    return p;
}
static PreviewPrimitive Point(double x, double y) { return Made(&PreviewPrimitive::SetPoint, x, y); }
static PreviewPrimitive Line(double x1, double y1, double x2, double y2, std::uint32_t marks = 0) {
    PreviewPrimitive p = Made(&PreviewPrimitive::SetLine, x1, y1, x2, y2);
    p.e.SetEndMarks(marks);
    return p;
}
static PreviewPrimitive Arc(double x, double y, double radius, double start, double end) {
    return Made(&PreviewPrimitive::SetArc, x, y, radius, start, end);
}
static PreviewPrimitive Frame(double x1, double y1, double x2, double y2, double angle) {
    return Made(&PreviewPrimitive::SetFrame, x1, y1, x2, y2, x1, y1, angle);
}
static PreviewPrimitive Text(double x, double y, double height, double width, double angle, const char* text) {
    return Made(&PreviewPrimitive::SetText, x, y, height, width, 0.0, angle, text);
}

// What `draw` leaves on a canvas of as many pixels as the world has units; (x, y) is the pixel of column x + 0.5 and of
// row height - (y - 0.5), both cut.
static std::string OnCanvas(int width, int height, const std::function<void(Canvas&)>& draw) {
    Canvas canvas;
    EXPECT_TRUE(OpenCanvas(&canvas, 0, {0, 0, width, height}));
    FitCanvas(&canvas, {0, 0, static_cast<double>(width), static_cast<double>(height)});
    SelectCanvasPen(&canvas, 0);
    draw(canvas);
    return TakePicture(ReleaseCanvasBitmap(&canvas));
}

static std::string Drawn(const Elements& elements, int width, int height) {
    return OnCanvas(width, height, [&](Canvas& canvas) {
        for (const auto& element : elements) {
            canvas.primitive = element;
            DrawOnCanvas(&canvas);
        }
    });
}

TEST(ViewTransform, Fits) {
    const struct {
        WorldRect extents;
        RECT target;
        ViewTransform view;
    } cases[] = {
        // clang-format off
        {{0, 0, 100, 50}, {0, 0, 200, 200}, {0, -25, 100, 75, 0, 0, 200, 200, 2, 2}},     // wide: bands above and below
        {{0, 0, 50, 100}, {0, 0, 200, 200}, {-25, 0, 75, 100, 0, 0, 200, 200, 2, 2}},     // tall: bands left and right
        {{-10, -10, 10, 10}, {0, 0, 40, 40}, {-10, -10, 10, 10, 0, 0, 40, 40, 2, 2}},
        {{0, 0, 100, 100}, {10, 20, 60, 120}, {0, -50, 100, 150, 10, 20, 60, 120, .5, .5}},  // a target away from 0
        {kDefaultSheet, {0, 0, 210, 150}, {0, -1.5, 420, 298.5, 0, 0, 210, 150, .5, .5}},
        // clang-format on
    };
    for (const auto& c : cases) {
        ViewTransform v = {};
        FitViewTransform(c.extents, c.target, &v);
        const double got[] = {v.worldMinX, v.worldMinY, v.worldMaxX, v.worldMaxY, v.scaleX, v.scaleY};
        const double want[] = {c.view.worldMinX, c.view.worldMinY, c.view.worldMaxX,
                               c.view.worldMaxY, c.view.scaleX,    c.view.scaleY};
        for (int i = 0; i < 6; ++i) EXPECT_NEAR(got[i], want[i], 1e-9) << i << " of " << c.extents.maxX;
        EXPECT_EQ(v.canvasLeft, c.target.left);
        EXPECT_EQ(v.canvasBottom, c.target.bottom);
    }
}

TEST(ViewTransform, RoundsEachAxisItsOwnWay) {
    const ViewTransform view = {0, 0, 20, 10, 5, 7, 45, 27, 2, 2};
    const struct {
        double x, y;
        LONG column, row;
    } cases[] = {{0, 0, 5, 27},       {0.24, 0.25, 5, 27}, {0.25, 0.74, 6, 27}, {1, 0.75, 7, 26},
                 {-0.7, -0.2, 5, 27}, {-1, -1, 4, 29},     {20, 10, 45, 8},     {1e300, 0, INT32_MIN + 5, 27}};
    for (const auto& c : cases) {
        const POINT p = MapPoint(view, c.x, c.y);
        EXPECT_EQ(p.x, c.column) << c.x;
        EXPECT_EQ(p.y, c.row) << c.y;
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
        {1, 2, 3, 4, true, 1, 2, 3, 4}, {0, 0, 10, 10, true, 0, 0, 10, 10},                     // inside, on the edge
        {-5, 5, 15, 5, true, 0, 5, 10, 5}, {5, -5, 5, 15, true, 5, 0, 5, 10},                   // through two edges
        {15, 5, -5, 5, true, 10, 5, 0, 5}, {-5, -5, 15, 15, true, 0, 0, 10, 10},
        {-5, 0, 5, 10, true, 0, 5, 5, 10}, {2, 12, 14, 0, true, 4, 10, 10, 4},
        {-10, -5, 20, 25, true, 0, 5, 5, 10},                                                  // takes the second pass
        {-5, 1, -1, 9, false, 0, 0, 0, 0}, {11, 1, 12, 9, false, 0, 0, 0, 0}, {1, 11, 9, 12, false, 0, 0, 0, 0},
        {1, -1, 9, -2, false, 0, 0, 0, 0}, {-5, 8, 5, 20, false, 0, 0, 0, 0},  // 0 / 0
        // clang-format on
    };
    for (auto c : cases) {
        const std::string name = testing::PrintToString(c.x1) + " " + testing::PrintToString(c.y1);
        EXPECT_EQ(ClipSegmentToWindow(view, &c.x1, &c.y1, &c.x2, &c.y2), c.seen) << name;
        const double got[] = {c.x1, c.y1, c.x2, c.y2}, want[] = {c.a, c.b, c.c, c.d};
        for (int i = 0; c.seen && i < 4; ++i) EXPECT_NEAR(got[i], want[i], 1e-9) << name << ": " << i;
    }
    for (const double edge : {0.0, 10.0}) {
        EXPECT_TRUE(PointInWindow(view, edge, 5) && PointInWindow(view, 5, edge));
        const double out = edge == 0 ? -1e-9 : 10 + 1e-9;
        EXPECT_FALSE(PointInWindow(view, out, 5) || PointInWindow(view, 5, out));
    }
}

TEST(DrawPreviewPrimitive, Pictures) {
    const std::string blank = Picture("........", "........", "........", "........");
    const struct {
        const char* what;
        Elements elements;
        std::string picture;
    } cases[] = {
        // clang-format off
        {"points inside, on the edge and outside", {Point(2, 2.5), Point(0, 4), Point(7.1, 2), Point(3, -.1)},
         Picture("........", "#.......", "..#.....", ".......#")},
        {"clipped line", {Line(-4, 0, 12, 8)}, Picture("........", "...#....", ".##.....", "#.......")},
        {"unknown marks", {Line(1, 2.5, 6, 2.5, EndMarkWord(3, 9))},
         Picture("........", "........", ".#####..", "........")},
        {"invisible lines", {Line(-4, 0, -1, 4), Line(0, 5, 8, 5)}, blank},
        {"mark at the first, clipped end", {Line(-90, 2.5, 90, 2.5, EndMarkWord(kMarkDot, 0))},
         Picture("##......", "###.....", "########", "###.....")},
        {"mark at the second end", {Line(-90, 2.5, 90, 2.5, EndMarkWord(0, kMarkDot))},
         Picture(".......#", "......##", "########", "......##")},
        {"frame", {Frame(1, 1.5, 6, 3.5, 0)}, Picture("........", ".######.", ".#....#.", ".######.")},
        {"frame upside down", {Frame(6, 2.5, 4, 1.5, 180)}, Picture("........", "......##", "......##", "........")},
        {"frame turned by no number", {Frame(1, 1.5, 6, 3.5, kNan)}, blank},
        {"small texts, unknown kinds",
         {Text(1, 4, 1.4, 4, 0, "X"), Text(1, 4, 4, 1.4, 0, "X"), {5, 1, 1, 5, 3, {}, {}, {}}}, blank},
        {"radius 0, and both ends in one pixel", {Arc(2, 2.5, .2, 0, 360), Arc(2, 1.5, 4, 10, 11)},
         Picture("........", "........", "..#.....", "......#.")},
        // clang-format on
    };
    for (const auto& c : cases) EXPECT_EQ(Drawn(c.elements, 8, 4), c.picture) << c.what;
}

TEST(DrawPreviewPrimitive, ArcsAndTextsAsGdiDrawsThem) {
    const auto line = [](int x1, int y1, int x2, int y2) {
        return [=](HDC dc) {
            MoveToEx(dc, x1, y1, nullptr);
            LineTo(dc, x2, y2);
        };
    };
    const std::function<void(HDC)> circle = [](HDC dc) { Arc(dc, 8, 6, 16, 14, 16, 10, 16, 10); };
    const struct {
        const char* what;
        PreviewPrimitive element;
        std::function<void(HDC)> reference;
    } cases[] = {
        // clang-format off
        {"circle", Arc(12, 10.7, 4, 0, 360), circle},
        {"circle that begins elsewhere", Arc(12, 10.7, 4, 720, 360), circle},
        {"circle whose centre lies between two rows", Arc(12, 10.5, 4, 0, 360), circle},
        {"tiny arc, below 0 degrees at its start: goes all around", Arc(12, 10.7, 4, -1, 0), circle},
        {"quarter", Arc(4, 4.7, 12, 0, 90), [](HDC dc) { Arc(dc, -8, 4, 16, 28, 16, 16, 4, 4); }},
        {"across 0 degrees", Arc(4, 10.7, 12, 330, 30), [](HDC dc) { Arc(dc, -8, -2, 16, 22, 14, 16, 14, 4); }},
        {"12 pixels are straight", Arc(4, 4.7, 7, 0, 90), line(11, 16, 4, 9)},
        {"13 are not", Arc(4, 4.7, 8, 0, 95), [](HDC dc) { Arc(dc, -4, 8, 12, 24, 12, 16, 3, 8); }},
        {"radius beyond GDI's", Arc(-39990, 2.7, 40000, 0, .02), line(10, 18, 10, 4)},
        {"turned text", Text(6, 3.7, 8, 5, 90.06, "AL"), [](HDC dc) {
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
        const std::string picture = Drawn({c.element}, 24, 20);
        EXPECT_EQ(picture, OnCanvas(24, 20, [&](Canvas& canvas) { c.reference(canvas.dc.get()); })) << c.what;
        EXPECT_TRUE(HasInk(picture)) << c.what;
    }
}

TEST(DrawPreviewPrimitive, WritesBackClippedEndsOnly) {
    OnCanvas(8, 4, [](Canvas& canvas) {
        canvas.primitive = Line(-4, 0, 12, 8);
        DrawOnCanvas(&canvas);
        EXPECT_EQ(canvas.primitive.a, 0);
        EXPECT_EQ(canvas.primitive.b, 2);
        EXPECT_EQ(canvas.primitive.c, 4);
        EXPECT_EQ(canvas.primitive.d, 4);
        canvas.primitive = Arc(2, 2, 1, 400, 500);
        DrawOnCanvas(&canvas);
        EXPECT_EQ(canvas.primitive.d, 400);
        EXPECT_EQ(canvas.primitive.e.AsDouble(), 500);
    });
}

TEST(DrawEndMark, Pictures) {
    const auto mark = [](std::uint32_t code, double x, double y, double angle, double size) {
        return OnCanvas(12, 8, [&](Canvas& c) { DrawEndMark(c.dc.get(), c.view, code, x, y, angle, size); });
    };
    const std::string arrow = Picture("............", "............", ".......###..", "...#######..", ".#########..",
                                      "....######..", "........##..", "............");
    const std::string dot = Picture("............", "............", "....###.....", "...#####....", "...#####....",
                                    "...#####....", "....###.....", "............");
    EXPECT_EQ(mark(kMarkArrow, 1, 4.7, 0, 8), arrow);
    EXPECT_EQ(mark(kMarkArrow, 1, 4.7, 360, 8), arrow);
    EXPECT_EQ(mark(kMarkArrow, 1, 4.7, -360, 8), arrow);
    EXPECT_EQ(mark(kMarkDot, 5, 4.7, 0, 4), dot);
    EXPECT_EQ(mark(kMarkDot, 5, 4.7, 0, 0), dot);  // never less than 2 pixels
    EXPECT_NE(mark(kMarkDot, 5, 4.7, 0, 6), dot);
    EXPECT_FALSE(HasInk(mark(3, 5, 4.7, 0, 6)));
}

TEST(Canvas, PensAndBitmaps) {
    std::vector<std::string> lines;
    for (unsigned pen = 0; pen < 18; ++pen)
        lines.push_back(OnCanvas(80, 4, [&](Canvas& canvas) {
            SelectCanvasPen(&canvas, pen);
            canvas.primitive = Line(0, 2.7, 80, 2.7);
            DrawOnCanvas(&canvas);
        }));
    for (const unsigned solid : {0, 1, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17})
        EXPECT_EQ(lines[solid].substr(162, 80), std::string(80, '#')) << solid;
    for (unsigned dashed = 2; dashed < 7; ++dashed) {
        EXPECT_TRUE(HasInk(lines[dashed])) << dashed;
        for (unsigned other = 0; other < dashed; ++other) EXPECT_NE(lines[dashed], lines[other]) << dashed;
    }
    for (const DWORD mode : {0ul, kRenderColor}) {
        const UniqueBitmap bitmap(CreatePlaceholderBitmap(mode, "####", {0, 0, 90, 30}));
        BITMAP shape;
        ASSERT_TRUE(GetObjectA(bitmap.get(), sizeof(shape), &shape));
        EXPECT_EQ(shape.bmBitsPixel > 1, mode == kRenderColor);
        const std::string picture = PictureOf(bitmap.get());
        EXPECT_EQ(picture.size(), 91u * 30);
        EXPECT_FALSE(HasInk(picture.substr(0, 91 * 8) + picture.substr(91 * 22))) << "in the middle";
        EXPECT_TRUE(HasInk(picture));
        EXPECT_EQ(PreviewCancel(-1), 0);
        EXPECT_FALSE(HasInk(TakePicture(CreatePlaceholderBitmap(mode, nullptr, {0, 0, 90, 30}))));
    }
    EXPECT_FALSE(CreatePlaceholderBitmap(kRenderColor, "x", {0, 0, 0x7FFFFFFF, 0x7FFFFFFF}));
}

// Whatever the numbers are: nothing traps, hangs or stays behind.
TEST(DrawPreviewPrimitive, HostileNumbers) {
    const double values[] = {kNan, kInfinity, -kInfinity, 1e300, -1e300, 1e18, -1e9, 2147483647.5, 5e-324, 0, 360, 3};
    const WorldRect worlds[] = {{0, 0, 20, 12},
                                {0, 0, 0, 0},
                                {5, 5, 5, 9},
                                {9, 9, 1, 1},
                                {kNan, 0, kNan, 1},
                                {-1e300, -1e300, 1e300, 1e300},
                                {-kInfinity, 0, kInfinity, 1},
                                {0, 0, 5e-324, 5e-324}};
    HandleCounts before = {};
    for (int pass = 0; pass < 2; ++pass) {  // the first one warms up what the system keeps
        std::minstd_rand random(7);
        for (const auto& world : worlds)
            OnCanvas(20, 12, [&](Canvas& canvas) {
                FitCanvas(&canvas, world);
                for (int i = 0; i < 200; ++i) {
                    const auto any = [&] { return values[random() % std::size(values)]; };
                    PreviewPrimitive& p = canvas.primitive;
                    p.kind = static_cast<std::uint32_t>(i % 6);
                    for (double* field : {&p.a, &p.b, &p.c, &p.d}) *field = any();
                    p.e.Set(any());
                    p.f.Set(any());
                    const double angle = any();
                    if (p.kind == kText) std::strcpy(p.g, "A\x83\x5c");
                    else std::memcpy(p.g, &angle, sizeof(angle));
                    EXPECT_EQ(DrawPreviewPrimitive(canvas.dc.get(), canvas.view, p, i % 2 ? &canvas.textFont : nullptr),
                              1);
                }
            });
        if (pass == 0) before = CountHandles();
    }
    EXPECT_EQ(CountHandles().gdi, before.gdi);
}
