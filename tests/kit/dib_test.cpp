#include "kit/dib.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "kit/handles.h"
#include "support/guard_block.h"
#include "support/handle_counts.h"
#include "support/picture.h"
#include "support/samples.h"

static const std::string kBlack(3, '\0'), kWhite(3, '\xff');
static const std::string kPalette("\xff\xff\xff\0\0\0\0\0", 8);
// Both show the same: a dark pixel at the lower left and one at the upper right.
static const std::string kTrueColor =
    BitmapFile(4, 2, 24, "", kBlack + kWhite + kWhite + kWhite + kWhite + kWhite + kWhite + kBlack);
static const std::string kPixels("\1\0\0\0\0\0\0\1", 8), kIndexed = BitmapFile(4, 2, 8, kPalette, kPixels);

static std::string Shown(const std::string& file) {
    const GuardBlock block(file);
    return TakePicture(BitmapFromDibFile(block.View()));
}

TEST(Dib, Pictures) {
    const std::string expected = "...#\n#...\n";
    const std::uint32_t before[] = {0, 0, 26 + 768, 12};  // the oldest header: 16-bit sizes, colours of three bytes
    const std::uint16_t oldest[] = {4, 2, 1, 8};
    for (const std::string& file :
         {kTrueColor, kIndexed,
          "BM" + Raw(before) + Raw(oldest) + std::string("\xff\xff\xff\0\0\0", 6) + std::string(762, '\0') + kPixels,
          BitmapFile(4, 2, 8, kPalette + std::string(1600, '\0'), kPixels),    // too many colours
          BitmapFile(4, -2, 8, kPalette, std::string("\0\0\0\1\1\0\0\0", 8)),  // top down
          BitmapFile(4, 2, 1, kPalette, std::string("\x80\0\0\0\x10\0\0\0", 8))})
        EXPECT_EQ(Shown(file), expected) << file.size();
}

// A picture that would take many times its file in the screen's colours keeps its own.
TEST(Dib, LargePicturesStaySmall) {
    // Two dark pixels and two light ones; in the third row three dark ones; nothing where there are no runs.
    const std::string runs("\2\1\2\0\0\0\0\2\3\1\0\3\1\0\1\0\0\1", 18);
    EXPECT_EQ(Shown(BitmapFile(8, 4, 8, kPalette, runs, 1)), "########\n####.###\n########\n##..####\n");
    const struct {
        std::string file;
        int bits;
        std::vector<POINT> dark, light;
    } cases[] = {
        {BitmapFile(16384, 4096, 1, kPalette, std::string(2048 * 4096 - 1, '\0') + "\1"), 1, {{16383, 0}}, {{0, 4095}}},
        {BitmapFile(16384, 4096, 8, kPalette, runs, 1), 8, {{1, 4095}, {5, 4093}, {9, 9}}, {{2, 4095}, {4, 4093}}},
    };
    for (const auto& c : cases) {
        const UniqueDc dc(CreateCompatibleDC(nullptr));
        const GuardBlock block(c.file);
        const UniqueBitmap bitmap(BitmapFromDibFile(block.View()));
        BITMAP shape = {};
        ASSERT_TRUE(GetObjectA(bitmap.get(), sizeof(shape), &shape));
        EXPECT_EQ(shape.bmBitsPixel, c.bits);
        const Selection selection(dc.get(), bitmap.get());
        for (const POINT& at : c.dark) EXPECT_EQ(GetPixel(dc.get(), at.x, at.y), 0u) << at.x << " " << at.y;
        for (const POINT& at : c.light) EXPECT_EQ(GetPixel(dc.get(), at.x, at.y), 0xFFFFFFu) << at.x << " " << at.y;
    }
}

TEST(Dib, WhatDoesNotFitGivesNothing) {
    const HandleCounts before = CountHandles();
    for (const auto& file : {kTrueColor, kIndexed})
        for (std::size_t size = 0; size < file.size(); ++size) {
            // Before a guard page, where GDI may pass over a fault, and with readable bytes behind it.
            const ByteView cut = {reinterpret_cast<const std::uint8_t*>(file.data()), size};
            EXPECT_EQ(Shown(file.substr(0, size)), "") << size;
            EXPECT_EQ(TakePicture(BitmapFromDibFile(cut)), "") << size;
        }
    const std::tuple<const char*, std::size_t, std::uint32_t> cases[] = {
        // clang-format off
        {"pixels behind the end", 10, 0xFFFFFFF0}, {"header size", 14, 0xFFFFFFFF}, {"header size", 14, 3},
        {"width", 18, 0x7FFFFFFF}, {"width", 18, 0x80000000}, {"width", 18, 0}, {"height", 22, 0x7FFFFFFF},
        {"height", 22, 0x80000000}, {"height", 22, 0}, {"height, row size times it wraps", 22, 0x10000001},
        {"bits a pixel", 26, 0x00FF0001}, {"colours", 46, 0x40000001},
        // clang-format on
    };
    for (const auto& [what, offset, value] : cases) {
        std::string file = kIndexed;
        file.replace(offset, 4, reinterpret_cast<const char*>(&value), 4);
        EXPECT_EQ(Shown(file), "") << what << " " << value;
    }
    EXPECT_EQ(Shown(BitmapFile(16384, 4097, 8, kPalette, std::string(2, '\0'), 1)), "") << "too many pixels";
    for (std::uint32_t seed = 0; seed < 500; ++seed) Shown(WithFlippedBytes(seed % 2 ? kTrueColor : kIndexed, seed));
    EXPECT_EQ(CountHandles().gdi, before.gdi);
}
