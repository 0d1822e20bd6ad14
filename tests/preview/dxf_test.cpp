#include "preview/formats/dxf.h"

#include <gtest/gtest.h>

#include "support/drawings.h"
#include "support/samples.h"

static std::string Shown(const std::string& dxf, int width = 16, int height = 8, bool frames = false) {
    return PlotOf(DecodeDxf, dxf, width, height, frames);
}
static bool IsBlank(const std::string& plot) { return plot.find_first_not_of(".\n") == std::string::npos; }

static const std::string kLower = "0 LINE|10 2|20 2.7|11 9|21 2.7";
static const std::string kUpper = "0 LINE|10 3|20 5.7|11 12|21 5.7";
static const std::string kWide = "0 LINE|10 0|20 2.7|11 100|21 2.7|6 ";  // a line type follows
static const Stroke kLowerLine = LineStroke(0, 2, 2.7, 9, 2.7), kUpperLine = LineStroke(0, 3, 5.7, 12, 5.7);

TEST(DecodeDxf, Entities) {
    const struct {
        const char* what;
        std::string entities;
        std::vector<Stroke> strokes;
    } cases[] = {
        // clang-format off
        {"what lacks a group is dropped",
         "0 LINE|10 2|20 2.7|11 9|0 POINT|10 3|0 ARC|10 8|20 4|40 3|50 0|0 TEXT|10 1|20 1|40 5|" + kLower,
         {kLowerLine}},
        {"slots of a dropped item do not count", "0 LINE|10 2|20 2.7|0 LINE|11 9|21 2.7|0 POINT", {}},
        {"unknown entities", "0 INSERT|10 1|20 1|11 5|21 5|" + kLower + "|0 SPLINE|10 1|20 1", {kLowerLine}},
        {"what is no number is 0", "0 POINT|10 abc|20 2.7", {PointStroke(0, 2.7)}},
        {"a value that begins like a keyword is one", kLower + "|1 EOFX|" + kUpper, {}},
        {"the end of the section", kLower + "|0 ENDSEC|" + kUpper, {kLowerLine}},
        // clang-format on
    };
    for (const auto& c : cases) EXPECT_EQ(Shown(DxfDrawing(16, 8, c.entities)), PlotOf(c.strokes, 16, 8)) << c.what;
}

TEST(DecodeDxf, SameDrawings) {
    const auto wide = [](const std::string& e) { return Shown(DxfDrawing(100, 8, e), 100, 8); };
    const std::string circle = "0 CIRCLE|10 8|20 4.2|40 3";
    const struct {
        const char* what;
        std::string a, b;
    } cases[] = {
        // clang-format off
        {"a negative radius", circle, "0 CIRCLE|10 8|20 4.2|40 -3"},
        {"a circle without its x takes what stands there", circle, "0 INSERT|10 8|0 CIRCLE|20 4.2|40 3"},
        {"line types by the beginning of the name", kWide + "CENTER", kWide + "CENTERX2"},
        {"the line type ends with its entity", kWide + "DOT|" + kUpper, kUpper + "|" + kWide + "DOT"},
        // clang-format on
    };
    for (const auto& c : cases) {
        EXPECT_EQ(wide(c.a), wide(c.b)) << c.what;
        EXPECT_FALSE(IsBlank(wide(c.a))) << c.what;
    }
}

TEST(DecodeDxf, SectionsAndExtents) {
    const std::string extents = "9 $EXTMIN|10 0|20 0|9 $EXTMAX|10 16|20 8|", open = "0 SECTION|2 ENTITIES|";
    const std::pair<const char*, std::string> cases[] = {
        // clang-format off
        {"before the entities nothing is drawn", extents + kUpper + "|0 ENDSEC|" + open + kLower + "|0 EOF"},
        {"no end is an end", extents + open + kLower + "|0 X"},
        {"the first complete pair counts",
         extents + "9 $EXTMIN|10 4|20 4|9 $EXTMAX|10 99|20 99|" + open + kLower + "|0 X"},
        {"an incomplete maximum", "9 $EXTMAX|10 99|" + extents + open + kLower + "|0 X"},
        {"a maximum alone begins at 0", "9 $EXTMAX|10 16|20 8|" + open + kLower + "|0 X"},
        {"among the entities they wipe what stood there",
         open + "0 LINE|10 9|20 250|11 400|21 9|" + extents + kLower + "|0 X"},
        // clang-format on
    };
    const std::string line = PlotOf({kLowerLine}, 16, 8);
    for (const auto& [what, pairs] : cases) EXPECT_EQ(Shown(Dxf(pairs) + "\n"), line) << what;
    const std::string a3 = open + "0 LINE|10 52.5|20 113.3|11 236.25|21 113.3|0 X";
    EXPECT_EQ(Shown(Dxf(a3)), Shown(Dxf("9 $EXTMIN|10 0|20 0|9 $EXTMAX|10 420|20 297|" + a3))) << "the default sheet";
    EXPECT_TRUE(IsBlank(Shown("0\nSECTION\n2\nENTITIES\n  0\nLINE\n10\n2\n20\n2.7\n11\n9\n21\n2.7\n  0\n")))
        << "columns";
    std::string text = DxfDrawing(16, 8, kLower);
    text.insert(text.find(" 10\r\n2\r\n") + 5, "; a remark\n\n\n");
    EXPECT_EQ(Shown(text), line) << "remarks between the lines";
}

// Texts, drawn alike when they must begin at the same place.
TEST(DecodeDxf, TextLengths) {
    const auto text = [](const std::string& groups, const std::string& string = "abcd") {
        return "0 TEXT|40 8|1 " + string + "|" + groups + "|";
    };
    const auto shown = [](const std::string& entities, bool frames) {
        return Shown(DxfDrawing(80, 60, entities + "0 X"), 80, 60, frames);
    };
    const struct {
        const char* what;
        std::string a, b;
        bool frames;
    } cases[] = {
        // clang-format off
        {"%%d is one cell", text("10 9.2|20 9.2", "%%dabc"), text("10 9.2|20 9.2"), true},
        {"%%065 is one", text("10 9.2|20 9.2", "abc%%065"), text("10 9.2|20 9.2"), true},
        {"a lone % is one, a two-byte character two", text("10 9.2|20 9.2", "%\x83\x5c%"), text("10 9.2|20 9.2"), true},
        {"cut off control codes", text("10 9.2|20 9.2", "abc%%"), text("10 9.2|20 9.2", "abcde"), true},
        {"at most 127 characters", text("10 9.2|20 9.2|41 .01", std::string(500, 'a')),
         text("10 9.2|20 9.2|41 .01", std::string(127, 'a')), true},
        // clang-format on
    };
    for (const auto& c : cases) {
        EXPECT_EQ(shown(c.a, c.frames), shown(c.b, c.frames)) << c.what;
        EXPECT_FALSE(IsBlank(shown(c.a, c.frames))) << c.what;
    }
    EXPECT_NE(shown(text("10 9.2|20 9.2", "abcde"), 1), shown(text("10 9.2|20 9.2"), 1));
}

TEST(DecodeDxf, Comment) {
    const struct {
        const char* what;
        std::string text;
        std::size_t size;
        std::string comment;
    } cases[] = {
        // clang-format off
        {"every line with a soft break", "one\r\n;two\n\n three\n", 100, "one\r\r\n;two\r\r\n three\r\r\n"},
        {"later, shorter lines still fit", "0123456789\nabc\n01234567890123456789\n", 10, "abc\r\r\n"},
        {"room for the last byte", "abc\ndef\n", 14, "abc\r\r\ndef\r\r\n"},
        {"one byte less", "abc\ndef\n", 13, "abc\r\r\n"}, {"none", "a\n", 1, ""},
        {"up to the end of the drawing", "a\nEOF\nb\n", 100, "a\r\r\nEOF\r\r\n"},
        // clang-format on
    };
    for (const auto& c : cases) EXPECT_EQ(CommentOf(DecodeDxf, c.text, c.size, true), c.comment) << c.what;
}
