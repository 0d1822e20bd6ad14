// The full DXF decoder: a drawing of one kind must look like one of lines, points and circles.
#include "preview/formats/full_dxf.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "support/cases.h"
#include "support/checked_canvas.h"
#include "support/drawings.h"
#include "support/guard_block.h"
#include "support/plot.h"
#include "support/samples.h"

namespace {

// Text form of "10 5|20 7"; ends of lines part pairs too.
std::string Pairs(std::string text) {
    std::replace(text.begin(), text.end(), '\n', '|');
    return Dxf(text);
}

// The same in binary form: doubles, 16-bit numbers and strings, which is all that the tests' codes need.
std::string Binary(const std::string& text, bool wideCodes) {
    std::string out("AutoCAD Binary DXF\r\n\x1A\0", 22);
    const auto put = [&](const auto& value) { out.append(reinterpret_cast<const char*>(&value), sizeof(value)); };
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find_first_of("|\n", at), text.size()),
                          blank = std::min(text.find(' ', at), end);
        const int code = std::stoi(text.substr(at, blank - at));
        const std::string value = blank < end ? text.substr(blank + 1, end - blank - 1) : "";
        if (!wideCodes) put(static_cast<std::uint8_t>(std::min(code, 255)));
        if (wideCodes || code >= 255) put(static_cast<std::uint16_t>(code));
        if (code >= 10 && code < 60) put(std::stod(value));
        else if (code >= 60 && code < 80) put(static_cast<std::int16_t>(std::stoi(value)));
        else out += value + '\0';
        at = end + 1;
    }
    return out;
}

// Two points that hold the extents, and a corner of them.
const std::string kCorners = "0 POINT|10 0|20 0|0 POINT|10 60|20 28|";

// A line each for "x1,y1,x2,y2 ...".
std::string Lines(const std::string& numbers) {
    std::string out;
    const char* const codes[] = {"|10 ", "|20 ", "|11 ", "|21 "};
    int count = 0;
    for (std::size_t at = 0; at < numbers.size(); ++count) {
        const std::size_t end = std::min(numbers.find_first_of(", ", at), numbers.size());
        if (count % 4 == 0) out += out.empty() ? "0 LINE" : "|0 LINE";
        out += codes[count % 4] + numbers.substr(at, end - at);
        at = end + 1;
    }
    return out;
}

constexpr char kCases[] = "preview/full_dxf.txt";

// Entities as the cases have them, behind the tables and blocks that they refer to.
std::string Drawing(const std::string& entities) {
    const bool isLines = entities.rfind("lines ", 0) == 0;
    return TextBlock(kCases, "tables and blocks") + "|" + kCorners + (isLines ? Lines(entities.substr(6)) : entities) +
           "|0 ENDSEC|0 EOF";
}

std::string Shown(const std::string& pairs) { return PlotOf(DecodeFullDxf, Pairs(pairs), 64, 32, false); }

// Lines leave their last pixel out and arcs are drawn in two ways: the ends of strokes may differ.
bool AreAlike(const std::string& a, const std::string& b) {
    constexpr int kEnds = 2;
    if (a.size() != b.size()) return false;
    int differences = 0;
    for (std::size_t i = 0; i < a.size(); ++i) differences += a[i] != b[i] ? 1 : 0;
    return differences <= kEnds;
}

const std::string kTriangle = Lines("4,4,14,4 14,4,14,10 14,10,4,4");

}  // namespace

TEST(FullDxf, KindsLookLikeTheirLines) {
    for (const TextCase& c : TextCases(kCases)) {
        const bool areFiles = c.name.rfind("file: ", 0) == 0;
        const std::string shown = Shown(areFiles ? c.given : Drawing(c.given)),
                          expected = Shown(areFiles ? c.expected : Drawing(c.expected));
        EXPECT_TRUE(AreAlike(shown, expected)) << c.name << "\n" << shown << expected;
    }
    EXPECT_NE(Shown(Drawing(kTriangle + "|0 CIRCLE|10 400|20 9|40 5")), Shown(Drawing(kTriangle))) << "two views";
}

TEST(FullDxf, Texts) {
    for (const TextCase& c : TextCases("preview/full_dxf_texts.txt")) {
        const std::string texts = Shown(Drawing(c.given)).substr(std::size_t{65} * 32);
        EXPECT_EQ(texts, c.expected + (c.expected.empty() ? "" : "\n")) << c.name;
    }
}

// A drawing of every kind: most of them in blocks that stand in a grid from the lower left corner.
TEST(FullDxf, EveryKind) {
    std::string blocks = "0 SECTION|2 BLOCKS|", entities;
    std::istringstream kinds(TextBlock(kCases, "every kind"));
    int count = 0;
    for (std::string kind; std::getline(kinds, kind); ++count) {
        const std::string name = "KIND" + std::to_string(count);
        blocks += "0 BLOCK|2 " + name + "|" + kind + "|0 ENDBLK|";
        entities += "|0 INSERT|2 " + name + "|10 " + std::to_string(11 * (count % 9)) + "|20 " +
                    std::to_string(9 * (count / 9));
    }
    entities += "|0 XLINE|10 75|20 9|11 0|21 1|0 RAY|10 88|20 34|11 1|21 -1|0 ATTDEF|10 79|20 29|40 3|2 TAG";
    const std::string file = blocks + "0 ENDSEC|" + TextBlock(kCases, "tables and blocks") + entities;
    const std::string picture = PlotOf(DecodeFullDxf, Pairs(file), 108, 37, false);
    EXPECT_EQ(picture, KeptPicture("full dxf")) << "[full dxf]\n" << picture;
}

// However a file is written, it shows the same.
TEST(FullDxf, Forms) {
    const std::string drawing = Drawing(kTriangle + "|0 TEXT|10 20|20 15|40 3|1 a|1000 x");
    const std::string expected = Shown(drawing);
    const auto with = [](std::string text, const std::string& end) {
        for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos; at += end.size())
            text.replace(at, 2, end);
        return text;
    };
    const std::string plain = Pairs(drawing), entities = Pairs(kCorners + kTriangle + "|0 TEXT|10 20|20 15|40 3|1 a");
    const std::string files[] = {
        with(plain, "\n"),      with(plain, "\r\r\n"), with(plain, "\r"), "\xEF\xBB\xBF" + plain,
        Binary(drawing, false), Binary(drawing, true), entities,          entities.substr(0, entities.size() - 2),
        "garbage\n" + plain};
    for (const std::string& file : files)
        EXPECT_EQ(PlotOf(DecodeFullDxf, file, 64, 32, false), expected) << file.substr(0, 40);
    const std::string binary = Binary(drawing, true);
    for (std::size_t size = 0; size < binary.size(); size += 7)
        PlotOf(DecodeFullDxf, binary.substr(0, size), 64, 32, false);
    for (const char* none : {"\n", "text\nwithout pairs\n", "999\nremark\n"})
        EXPECT_EQ(PlotOf(DecodeFullDxf, none, 64, 32, false), "") << none;
}

TEST(FullDxf, SecondBytesAreNoBackslashes) {
    const std::string page = "0 SECTION|2 HEADER|9 $DWGCODEPAGE|3 ansi_932|0 ENDSEC|0 SECTION|2 ENTITIES|" + kCorners,
                      text = page + "0 TEXT|10 20|20 15|40 3|1 ";
    EXPECT_EQ(Shown(text + "\x83\x5cM+182a0"), Shown(text + "\\U+30BDM+182a0"));
}

// Nothing more is drawn, in whatever entity that was.
TEST(FullDxf, Cancelled) {
    const GuardBlock file(Pairs(Drawing("0 HATCH|70 0|92 3|10 4|20 4|10 20|20 4|10 20|20 12|75 0|53 0|46 1")));
    for (std::uint32_t draws = 0; draws < 6; ++draws) {
        Comment none;
        CheckedCanvas canvas;
        canvas.drawsLeft = draws;
        EXPECT_FALSE(DecodeFullDxf(file.View(), &none, &canvas)) << draws;
    }
}

TEST(FullDxf, Comment) {
    const std::string file =
        Pairs("999 a remark|999 another|" + Drawing(kTriangle + "|0 ATTRIB|1 x|0 NEW|0 POINT|10 0|20 -5"));
    char text[512] = {};
    Comment comment;
    comment.end = text;
    comment.room = sizeof(text);
    comment.label = [](unsigned id, char* out, std::size_t size) { std::snprintf(out, size, "<%u>", id); };
    const GuardBlock block(file);
    EXPECT_TRUE(DecodeFullDxf(block.View(), &comment, nullptr));
    EXPECT_STREQ(text,
                 "a remark\r\r\nanother\r\r\n<50> A title\r\r\n<51> DXF AC1015 (2000)\r\r\n<52> in\r\r\n"
                 "<53> 60 x 33\r\r\n<54> 7\r\r\n<55> 3\r\r\n<56> 7\r\r\n");
}
