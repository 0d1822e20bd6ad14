#include "preview/formats/dxf.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "support/cases.h"
#include "support/drawings.h"
#include "support/samples.h"

static std::string Shown(const std::string& dxf) { return PlotOf(DecodeDxf, dxf, 100, 60, true); }
static std::string ShownText(const std::string& text, const std::string& width = ".2") {
    return Shown(DxfDrawing(100, 60, "0 TEXT|40 8|10 9.2|20 9.2|41 " + width + "|1 " + text));
}
static bool IsBlank(const std::string& plot) { return plot.find_first_not_of(".\n") == std::string::npos; }

static const std::string kLower = "0 LINE|10 2|20 2.7|11 9|21 2.7";

// Entities on a sheet of 100 x 60, or a whole file, and the entities that must look the same.
TEST(DecodeDxf, Likenesses) {
    for (TextCase& c : TextCases("preview/dxf.txt")) {
        std::replace(c.given.begin(), c.given.end(), '\n', '|');
        const bool isFile = c.name.rfind("file: ", 0) == 0;
        const std::string expected = c.expected.empty() ? "0 POINT" : c.expected;
        EXPECT_EQ(Shown(isFile ? Dxf(c.given) + "\n" : DxfDrawing(100, 60, c.given)),
                  Shown(DxfDrawing(100, 60, expected)))
            << c.name;
    }
    EXPECT_EQ(Shown(DxfDrawing(100, 60, kLower)), PlotOf({LineStroke(0, 2, 2.7, 9, 2.7)}, 100, 60));
}

TEST(DecodeDxf, FilesAndLengths) {
    const std::string a3 = "0 SECTION|2 ENTITIES|0 LINE|10 52.5|20 113.3|11 236.25|21 113.3|0 X";
    EXPECT_EQ(Shown(Dxf(a3)), Shown(Dxf("9 $EXTMIN|10 0|20 0|9 $EXTMAX|10 420|20 297|" + a3))) << "the default sheet";
    EXPECT_TRUE(IsBlank(Shown("0\nSECTION\n2\nENTITIES\n  0\nLINE\n10\n2\n20\n2.7\n11\n9\n21\n2.7\n  0\n")))
        << "columns";
    std::string remarks = DxfDrawing(100, 60, kLower);
    remarks.insert(remarks.find(" 10\r\n2\r\n") + 5, "; a remark\n\n\n");
    EXPECT_EQ(Shown(remarks), Shown(DxfDrawing(100, 60, kLower))) << "remarks between the lines";
    EXPECT_EQ(ShownText("%\x83\x5c%"), ShownText("abcd")) << "a lone % is one cell, a two-byte character two";
    EXPECT_EQ(ShownText(std::string(500, 'a'), ".01"), ShownText(std::string(127, 'a'), ".01"))
        << "at most 127 characters";
    EXPECT_NE(ShownText("abcde"), ShownText("abcd"));
}

TEST(DecodeDxf, Comment) {
    const std::tuple<const char*, std::string, std::size_t, std::string> cases[] = {
        // clang-format off
        {"every line with a soft break", "one\r\n;two\n\n three\n", 100, "one\r\r\n;two\r\r\n three\r\r\n"},
        {"later, shorter lines still fit", "0123456789\nabc\n01234567890123456789\n", 10, "abc\r\r\n"},
        {"room for the last byte", "abc\ndef\n", 14, "abc\r\r\ndef\r\r\n"},
        {"one byte less", "abc\ndef\n", 13, "abc\r\r\n"}, {"none", "a\n", 1, ""},
        {"up to the end of the drawing", "a\nEOF\nb\n", 100, "a\r\r\nEOF\r\r\n"},
        // clang-format on
    };
    for (const auto& [what, text, size, comment] : cases)
        EXPECT_EQ(CommentOf(DecodeDxf, text, size, true), comment) << what;
}
