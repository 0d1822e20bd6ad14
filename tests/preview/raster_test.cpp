#include "preview/drawing/raster.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/random_strokes.h"

namespace {

// Bits of their own size on the heap, so that a sanitizer sees the first one beside them.
struct Sheet {
    std::vector<std::uint32_t> bits;
    Raster raster;
    int depth;

    Sheet(int width, int height, int bitsPerPixel) : depth(bitsPerPixel) {
        const int words = depth == 1 ? (width + 31) / 32 : width;
        bits.assign(static_cast<std::size_t>(words * height), 0xFFFFFFFFu);
        EXPECT_TRUE(OpenRaster(&raster, bits.data(), width, height, depth));
    }
    bool IsBlack(int x, int y) const {
        const int at = y * raster.pitch + x;
        if (depth == 32) return bits[static_cast<std::size_t>(at)] == 0;
        return (reinterpret_cast<const std::uint8_t*>(bits.data())[at / 8] >> (7 - at % 8) & 1) == 0;
    }
    // A part of it, a row a line.
    std::string Picture(int left, int top, int width, int height) const {
        std::string text;
        for (int y = top; y < top + height; ++y) {
            for (int x = left; x < left + width; ++x) text += IsBlack(x, y) ? '#' : '.';
            text += '\n';
        }
        return text;
    }
};

constexpr int kWidth = 45, kHeight = 33, kAround = 60;

}  // namespace

// What lies outside leaves the rest as it is: on a sheet large enough for every stroke the same pixels are set.
TEST(Raster, ClippedStrokesKeepTheirPixels) {
    constexpr int kMargin = 2 * kAround + 2;
    const RandomStrokes clipped = {kWidth, kHeight, kAround}, whole = {kWidth, kHeight, kAround, {kMargin, kMargin}};
    for (const int depth : {1, 32}) {
        Sheet sheet(kWidth, kHeight, depth), large(kWidth + 2 * kMargin, kHeight + 2 * kMargin, 33 - depth);
        int inked = 0;
        for (unsigned seed = 0; seed < 4000; ++seed) {
            const unsigned pen = seed / 8 % 7;
            clipped.Draw(sheet.raster, pen, seed);
            whole.Draw(large.raster, pen, seed);
            const std::string picture = sheet.Picture(0, 0, kWidth, kHeight);
            ASSERT_EQ(picture, large.Picture(kMargin, kMargin, kWidth, kHeight)) << "stroke " << seed;
            inked += picture.find('#') != std::string::npos;
            for (Sheet* used : {&sheet, &large}) std::fill(used->bits.begin(), used->bits.end(), 0xFFFFFFFFu);
        }
        EXPECT_GT(inked, 2000);
    }
}

TEST(Raster, StrokesFromTheEndsOfTheSpace) {
    Sheet sheet(kWidth, kHeight, 1);
    const RandomStrokes farAway = {kWidth, kHeight, 1 << 26};
    for (unsigned seed = 0; seed < 4000; ++seed) farAway.Draw(sheet.raster, 2, seed);
}

TEST(Raster, RefusesWhatItCannotHold) {
    Raster raster;
    std::uint32_t bits[4] = {};
    EXPECT_FALSE(OpenRaster(&raster, bits, 1, 1, 24));
    EXPECT_FALSE(OpenRaster(&raster, bits, 0, 1, 1));
    EXPECT_FALSE(OpenRaster(&raster, bits, 1 << 16, 1 << 15, 32));
    EXPECT_FALSE(OpenRaster(&raster, nullptr, 1, 1, 1));
}
