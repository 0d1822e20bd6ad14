#include "kit/sjis.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/guard_block.h"

using Lines = std::vector<std::string>;

static Lines LinesOf(const std::string& text) {
    const GuardBlock block(text);
    LineWalk walk = {block.data, block.data + block.size};
    Lines lines;
    ByteView line;
    while (TakeLine(&walk, &line) && lines.size() < 10)
        lines.emplace_back(reinterpret_cast<const char*>(line.data), line.size);
    return lines;
}

// What ends a line or only looks like it, behind any number of plain characters.
TEST(Sjis, TakeLineAtEveryDistance) {
    for (std::size_t count = 0; count < 70; ++count) {
        const std::string plain(count, 'a'), tail(33, 'b');
        EXPECT_EQ(LinesOf(plain + "\n" + tail), (Lines{plain, tail})) << count;
        EXPECT_EQ(LinesOf(plain + "\xe0\n" + tail), Lines{plain + "\xe0\n" + tail}) << count;
        EXPECT_EQ(LinesOf(plain + "\xb1\r" + tail + "\r"), (Lines{plain + "\xb1", tail})) << count;
        EXPECT_EQ(LinesOf(plain + std::string(1, 0) + tail), count ? Lines{plain} : Lines{}) << count;
        EXPECT_EQ(LinesOf(plain + std::string("\r\n\0b", 4) + tail), Lines{plain}) << count;
        EXPECT_EQ(LinesOf("a\n\r" + std::string(count, '\1') + "b\n" + tail), (Lines{"a", "b", tail})) << count;
        EXPECT_EQ(LinesOf(plain + "b\x9f"), Lines{plain + "b\x9f"}) << count;
        EXPECT_EQ(LinesOf("\r\n" + plain + "\xfc\x0d\xfd\x0d\x80"), (Lines{"", plain + "\xfc\x0d\xfd", "\x80"}))
            << count;
    }
}
