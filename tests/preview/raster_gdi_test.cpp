// The raster beside the platform's own calls: the same pixels, stroke by stroke.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

#include "preview/drawing/raster.h"
#include "preview/drawing/renderer.h"

namespace {

// A bitmap whose bits are within reach, white.
struct Section {
    std::size_t size;
    void* bits = nullptr;
    UniqueBitmap bitmap;

    Section(int width, int height, int depth)
        : size(static_cast<std::size_t>((width * depth + 31) / 32 * 4) * static_cast<std::size_t>(height)) {
        struct {
            BITMAPINFOHEADER header;
            RGBQUAD colours[2];
        } info = {};
        info.header = {sizeof(info.header), width, -height, 1, static_cast<WORD>(depth), BI_RGB, 0, 0, 0, 0, 0};
        info.colours[1] = {255, 255, 255, 0};
        bitmap.reset(
            CreateDIBSection(nullptr, reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS, &bits, nullptr, 0));
        Wipe();
    }
    void Wipe() { std::memset(bits, 0xFF, size); }
};

// GDI's bitmap and ours.
struct Pair {
    Section theirs, ours;
    UniquePen pens[kPenCount];
    UniqueDc dc;
    Selection bitmap, selectedPen, brush;
    GdiStrokes gdi;
    Raster raster;
    unsigned dashed = 2;

    Pair(int width, int height, int depth)
        : theirs(width, height, depth),
          ours(width, height, depth),
          dc(CreateCompatibleDC(nullptr)),
          bitmap(dc.get(), theirs.bitmap.get()),
          selectedPen(dc.get(), GetStockObject(NULL_PEN)),
          brush(dc.get(), GetStockObject(BLACK_BRUSH)),
          gdi(dc.get(), nullptr, pens) {
        SetBkMode(dc.get(), TRANSPARENT);
        EXPECT_TRUE(OpenRaster(&raster, ours.bits, width, height, depth));
    }

    // Whether the last strokes agree; both bitmaps are white again then.
    bool Same() {
        GdiFlush();
        const bool same = std::memcmp(theirs.bits, ours.bits, ours.size) == 0;
        theirs.Wipe();
        ours.Wipe();
        return same;
    }
    // With the solid pen, then with one of the dashed ones, by turns.
    template <typename Draw>
    bool SameStroke(Draw draw) {
        dashed = dashed == 6 ? 2 : dashed + 1;
        for (const unsigned pen : {0u, dashed}) {
            draw(gdi, pen);
            draw(raster, pen);
            if (!Same()) return false;
        }
        return true;
    }
    bool SameLine(PixelPoint from, PixelPoint to) {
        return SameStroke([&](StrokeTarget& target, unsigned pen) { target.line(target, pen, from, to); });
    }
    bool SameArc(PixelPoint centre, int radius, PixelPoint from, PixelPoint to) {
        return SameStroke(
            [&](StrokeTarget& target, unsigned pen) { target.arc(target, pen, centre, radius, from, to); });
    }
};

PixelPoint OnCircle(PixelPoint centre, int radius, double degrees) {
    const double angle = degrees * 3.14159265358979323846 / 180;
    return {centre.x + static_cast<int>(std::lround(radius * std::cos(angle))),
            centre.y - static_cast<int>(std::lround(radius * std::sin(angle)))};
}

class RasterAndGdi : public testing::TestWithParam<int> {};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Depths, RasterAndGdi, testing::Values(1, 32));

TEST_P(RasterAndGdi, LinesOfEveryDirection) {
    Pair pair(101, 101, GetParam());
    for (int dx = -100; dx <= 100; ++dx) {
        for (int dy = -100; dy <= 100; ++dy) {
            const PixelPoint from = {dx < 0 ? 100 : 0, dy < 0 ? 100 : 0};
            ASSERT_TRUE(pair.SameLine(from, {from.x + dx, from.y + dy})) << dx << " " << dy;
        }
    }
}

TEST_P(RasterAndGdi, LinesAcrossEveryEdge) {
    Pair pair(11, 7, GetParam());
    for (int x1 = -5; x1 < 16; ++x1) {
        for (int y1 = -5; y1 < 12; ++y1) {
            for (int x2 = -5; x2 < 16; ++x2) {
                for (int y2 = -5; y2 < 12; ++y2) {
                    ASSERT_TRUE(pair.SameLine({x1, y1}, {x2, y2})) << x1 << "," << y1 << " " << x2 << "," << y2;
                }
            }
        }
    }
}

TEST_P(RasterAndGdi, LinesFromFarAway) {
    Pair pair(70, 45, GetParam());
    std::mt19937 random(1);
    for (int i = 0; i < 60000; ++i) {
        // A point on the bitmap and a direction; both ends lie somewhere on that line, up to 2^27 pixels away.
        const double angle = random() * 1e-6, x = random() % 70, y = random() % 45;
        PixelPoint ends[2];
        for (PixelPoint& end : ends) {
            const double way = std::ldexp(random() / 4294967296.0 - 0.5, static_cast<int>(random() % 28));
            end = {static_cast<int>(x + way * std::cos(angle)), static_cast<int>(y + way * std::sin(angle))};
        }
        ASSERT_TRUE(pair.SameLine(ends[0], ends[1]))
            << ends[0].x << "," << ends[0].y << " " << ends[1].x << "," << ends[1].y;
    }
}

TEST_P(RasterAndGdi, Arcs) {
    Pair pair(210, 180, GetParam());
    std::mt19937 random(2);
    for (int radius = 1; radius <= 400; ++radius) {
        for (int i = 0; i < 40; ++i) {
            const PixelPoint centre = {static_cast<int>(random() % 260) - 30, static_cast<int>(random() % 230) - 30};
            const double start = i < 8 ? i * 45 : random() % 3600 * 0.1;
            const double sweep = i % 4 == 0 ? 0 : i % 4 == 1 ? random() % 30 : random() % 3600 * 0.1;
            const PixelPoint from = OnCircle(centre, radius, start), to = OnCircle(centre, radius, start + sweep);
            ASSERT_TRUE(pair.SameArc(centre, radius, from, to)) << radius << " " << start << " " << sweep;
        }
    }
    for (int i = 0; i < 400; ++i) {  // big ones, of which a part crosses the bitmap
        const int radius = 400 + static_cast<int>(random() % 32367);
        const PixelPoint centre = OnCircle({static_cast<int>(random() % 210), static_cast<int>(random() % 180)}, radius,
                                           random() % 3600 * 0.1);
        const double start = random() % 3600 * 0.1, sweep = i % 2 ? 0 : random() % 3600 * 0.1;
        const PixelPoint from = OnCircle(centre, radius, start), to = OnCircle(centre, radius, start + sweep);
        ASSERT_TRUE(pair.SameArc(centre, radius, from, to)) << radius << " " << start << " " << sweep;
    }
}

TEST_P(RasterAndGdi, Dots) {
    Pair pair(90, 70, GetParam());
    for (int radius = 2; radius <= 120; ++radius) {
        for (const PixelPoint centre : {PixelPoint{45, 35}, {0, 0}, {100, 20}, {30, 90}}) {
            pair.gdi.dot(pair.gdi, 0, centre, radius);
            pair.raster.dot(pair.raster, 0, centre, radius);
            ASSERT_TRUE(pair.Same()) << radius << " " << centre.x;
        }
    }
}

TEST_P(RasterAndGdi, PolygonsAndAreas) {
    Pair pair(70, 45, GetParam());
    std::mt19937 random(3);
    const auto corner = [&random](int around) {
        return PixelPoint{static_cast<int>(random() % static_cast<unsigned>(70 + 2 * around)) - around,
                          static_cast<int>(random() % static_cast<unsigned>(45 + 2 * around)) - around};
    };
    for (int i = 0; i < 20000; ++i) {
        std::vector<PixelPoint> corners(3 + (i % 8 == 0 ? random() % 9 : 0));
        const int around = i % 3 == 0 ? 0 : i % 3 == 1 ? 30 : 2000;
        const PixelPoint middle = corner(10);
        for (PixelPoint& p : corners) {
            p = corner(around);
            if (i % 3 == 0) p = {middle.x + p.x % 9, middle.y + p.y % 9};  // as small as an arrowhead
        }
        ASSERT_TRUE(pair.SameStroke([&](StrokeTarget& target, unsigned pen) {
            target.polygon(target, pen, corners.data(), corners.size());
        })) << i;
    }
    const Selection noPen(pair.dc.get(), GetStockObject(NULL_PEN));
    for (int i = 0; i < 5000; ++i) {
        std::vector<std::size_t> counts;
        std::vector<PixelPoint> points;
        std::vector<POINT> gdiPoints;
        std::vector<INT> gdiCounts;
        for (unsigned outline = 0; outline <= random() % 4; ++outline) {
            counts.push_back(3 + random() % 6);
            gdiCounts.push_back(static_cast<INT>(counts.back()));
            for (std::size_t k = 0; k < counts.back(); ++k) {
                points.push_back(corner(i % 2 ? 20 : 0));
                gdiPoints.push_back({points.back().x, points.back().y});
            }
        }
        PolyPolygon(pair.dc.get(), gdiPoints.data(), gdiCounts.data(), static_cast<int>(gdiCounts.size()));
        pair.raster.area(pair.raster, points.data(), counts.data(), counts.size());
        ASSERT_TRUE(pair.Same()) << i;
    }
}
