#include "kit/dib.h"

#include <gtest/gtest.h>

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
    const std::string expected = Picture("...#", "#...");
    for (const std::string& file :
         {kTrueColor, kIndexed, BitmapFile(4, 2, 8, kPalette + std::string(1600, '\0'), kPixels),  // too many colours
          BitmapFile(4, -2, 8, kPalette, std::string("\0\0\0\1\1\0\0\0", 8)),                      // top down
          BitmapFile(4, 2, 1, kPalette, std::string("\x80\0\0\0\x10\0\0\0", 8))})
        EXPECT_EQ(Shown(file), expected) << file.size();
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
    const struct {
        const char* what;
        std::size_t offset;
        std::uint32_t value;
    } cases[] = {
        // clang-format off
        {"pixels behind the end", 10, 0xFFFFFFF0}, {"header size", 14, 0xFFFFFFFF}, {"header size", 14, 3},
        {"width", 18, 0x7FFFFFFF}, {"width", 18, 0x80000000}, {"width", 18, 0}, {"height", 22, 0x7FFFFFFF},
        {"height", 22, 0x80000000}, {"height", 22, 0}, {"height, row size times it wraps", 22, 0x10000001},
        {"bits a pixel", 26, 0x00FF0001}, {"colours", 46, 0x40000001},
        // clang-format on
    };
    for (const auto& c : cases) {
        std::string file = kIndexed;
        file.replace(c.offset, 4, reinterpret_cast<const char*>(&c.value), 4);
        EXPECT_EQ(Shown(file), "") << c.what << " " << c.value;
    }
    for (std::uint32_t seed = 0; seed < 500; ++seed) Shown(WithFlippedBytes(seed % 2 ? kTrueColor : kIndexed, seed));
    EXPECT_EQ(CountHandles().gdi, before.gdi);
}
