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

TEST(Sjis, TakeLine) {
    const std::pair<std::string, Lines> cases[] = {
        // clang-format off
        {"one\r\ntwo\nthree\rfour", {"one", "two", "three", "four"}},
        {"one\n\n\r\n\t\x1f\x01two\n", {"one", "two"}},              // blank lines and control bytes vanish
        {"\r\none\n", {"", "one"}},                                  // but not before the first line
        {std::string("one\0two\n", 8), {"one"}},                     // a zero ends the text
        {"\xfc\x0d\xfd\x0d\x80\n", {"\xfc\x0d\xfd", "\x80"}},        // the edges of the lead bytes
        // clang-format on
    };
    for (const auto& [text, lines] : cases) EXPECT_EQ(LinesOf(text), lines) << testing::PrintToString(text);
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
    }
}
