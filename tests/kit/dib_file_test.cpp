#include "kit/dib_file.h"

#include <gtest/gtest.h>

#include <tuple>

#include "support/guard_block.h"
#include "support/samples.h"

// The rows of a picture of runs, top row first, a digit for each index.
static std::string RowsOf(int width, int height, int bits, const std::string& runs) {
    const GuardBlock file(BitmapFile(width, height, bits, "RGB_0000RGB_RGB_", runs, bits == 8 ? 1 : 2));
    Dib dib = {};
    if (!ReadDib(file.View(), &dib)) return "unread";
    const DibRuns taken = TakeRuns(&dib);
    const GuardBlock rows(dib.header.imageSize);
    WriteRuns(taken, dib.header, rows.data);
    std::string text;
    for (int y = height; y-- > 0; text += '\n')
        for (int x = 0; x < width; ++x)
            text += static_cast<char>('0' + rows.data[y * (dib.header.imageSize / height) + x]);
    return text;
}

// The darkest colour, here 1 or the black one that is added as 4, changes places with 0.
TEST(DibFile, RunsBecomePixels) {
    const std::tuple<int, std::string, std::string> cases[] = {
        // clang-format off
        {8, "\2\3\1\2", "000000\n332000\n"},
        {8, std::string("\x9\2\1\3\0\0\1\2", 8), "200000\n222222\n"},            // no run leaves its row
        {8, std::string("\0\2\4\0\1\2\0\2\xff\1\1\3", 12), "000000\n000020\n"},  // nor a step the picture
        {8, std::string("\0\3\3\2\3\xff\1\2\0\1\1\2", 12), "000000\n323200\n"},  // one by one, and the end
        {4, std::string("\5\x23\0\0\0\3\x32\x0F", 8), "324000\n232320\n"},
        {8, std::string("\1\2\0\2\1", 5), "000000\n200000\n"}, {8, std::string("\0\5\2\2", 4), "000000\n000000\n"},
        {8, std::string("\0\0\0\0\0\0\3\3", 8), "000000\n000000\n"},
        // clang-format on
    };
    for (const auto& [bits, runs, rows] : cases)
        EXPECT_EQ(RowsOf(6, 2, bits, runs), rows) << testing::PrintToString(runs);
}
