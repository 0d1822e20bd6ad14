// The raster beside the platform's own calls: the same pixels, stroke by stroke.
#include <gtest/gtest.h>

#include <cstring>

#include "preview/drawing/raster.h"
#include "preview/drawing/renderer.h"
#include "support/random_strokes.h"

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
    // Whether `draw` does the same with the solid pen, then with one of the dashed ones, by turns.
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
};

class RasterAndGdi : public testing::TestWithParam<int> {};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Depths, RasterAndGdi, testing::Values(1, 32));

TEST_P(RasterAndGdi, LinesOfEveryDirection) {
    Pair pair(101, 101, GetParam());
    for (int dx = -100; dx <= 100; ++dx) {
        for (int dy = -100; dy <= 100; ++dy) {
            const PixelPoint from = {dx < 0 ? 100 : 0, dy < 0 ? 100 : 0}, to = {from.x + dx, from.y + dy};
            ASSERT_TRUE(pair.SameStroke([&](StrokeTarget& target, unsigned pen) {
                target.line(target, pen, from, to);
            })) << dx
                << " " << dy;
        }
    }
}

TEST_P(RasterAndGdi, StrokesNearAndFar) {
    Pair pair(70, 45, GetParam());
    const struct {
        int around;
        unsigned first, count, step;
    } cases[] = {
        {8, 0, 40000, 1}, {100, 0, 20000, 1}, {2000, 0, 4000, 1}, {32000, 0, 800, 1}, {1 << 26, 2, 4000, 8},  // lines
    };
    for (const auto& c : cases) {
        const RandomStrokes strokes = {70, 45, c.around};
        for (unsigned seed = c.first; seed < c.count * c.step; seed += c.step) {
            ASSERT_TRUE(pair.SameStroke([&](StrokeTarget& target, unsigned pen) { strokes.Draw(target, pen, seed); }))
                << c.around << ", stroke " << seed;
        }
    }
}
