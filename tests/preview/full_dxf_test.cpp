// The full DXF decoder: a drawing of one kind must look like one of lines, points and circles.
#include "preview/formats/full_dxf.h"

#include <gtest/gtest.h>

#include "support/drawings.h"
#include "support/guard_block.h"
#include "support/plot.h"
#include "support/samples.h"

namespace {

// "10 5|20 7": a pair of lines each, codes as they stand.
std::string Pairs(const std::string& text) {
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('|', at), text.size()), blank = std::min(text.find(' ', at), end);
        out += text.substr(at, blank - at) + "\n" + (blank < end ? text.substr(blank + 1, end - blank - 1) : "") + "\n";
        at = end + 1;
    }
    return out;
}

// The same in binary form: doubles, 16-bit numbers and strings, which is all that the tests' codes need.
std::string Binary(const std::string& text, bool wideCodes) {
    std::string out("AutoCAD Binary DXF\r\n\x1A\0", 22);
    const auto put = [&](const auto& value) { out.append(reinterpret_cast<const char*>(&value), sizeof(value)); };
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('|', at), text.size()), blank = std::min(text.find(' ', at), end);
        const int code = std::stoi(text.substr(at, blank - at));
        const std::string value = blank < end ? text.substr(blank + 1, end - blank - 1) : "";
        if (wideCodes) put(static_cast<std::uint16_t>(code));
        else put(static_cast<std::uint8_t>(code));
        if (code >= 10 && code < 60) put(std::stod(value));
        else if (code >= 60 && code < 80) put(static_cast<std::int16_t>(std::stoi(value)));
        else out += value + '\0';
        at = end + 1;
    }
    return out;
}

// Two points that hold the extents, and what the rows refer to: layers, line types, blocks.
const std::string kCorners = "0 POINT|10 0|20 0|0 POINT|10 62|20 30|";
const std::string kHead =
    "0 SECTION|2 HEADER|9 $ACADVER|1 AC1015|0 ENDSEC|0 SECTION|2 TABLES|0 LAYER|2 dashes|6 dashed|62 7|70 0|"
    "0 LAYER|2 OFF|62 -7|0 LAYER|2 Frozen|70 1|0 LTYPE|2 Dashed|0 LTYPE|2 own|49 3|49 -1|49 0|49 -1|"
    "0 STYLE|2 wide|41 2|0 DIMSTYLE|2 OWN|40 2|41 3|42 0|44 0|0 ENDSEC|0 SECTION|2 BLOCKS|0 BLOCK|2 B|10 1|20 1|0 "
    "LINE|8 0|6 BYBLOCK|10 1|20 1|11 7|21 1|"
    "0 LINE|10 1|20 1|11 1|21 3|0 ATTDEF|10 1|20 1|40 2|2 TAG|0 ENDBLK|0 BLOCK|2 TWICE|0 INSERT|2 B|10 0|20 0|"
    "0 INSERT|2 b|10 10|20 0|0 ENDBLK|0 BLOCK|2 RING|0 LINE|10 0|20 0|11 4|21 0|0 INSERT|2 OTHER|0 ENDBLK|"
    "0 BLOCK|2 OTHER|0 INSERT|2 RING|10 9|20 9|0 ENDBLK|0 BLOCK|2 FAR|70 4|1 other.dxf|0 LINE|10 0|20 0|11 9|21 9|0 "
    "ENDBLK|"
    "0 BLOCK|2 MIXED|0 LINE|8 0|10 0|20 0|11 4|21 0|0 LINE|8 X|10 0|20 2|11 4|21 2|0 ENDBLK|"
    "0 BLOCK|2 HIDES|0 INSERT|2 B|60 1|0 ENDBLK|0 ENDSEC|"
    "0 SECTION|2 ENTITIES|";

std::string Drawing(const std::string& entities) { return kHead + kCorners + entities + "|0 ENDSEC|0 EOF"; }

std::string Shown(const std::string& entities) {
    return PlotOf(DecodeFullDxf, Pairs(Drawing(entities)), 64, 32, false);
}

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

// Lines leave their last pixel out and arcs are drawn in two ways: the ends of strokes may differ.
bool AreAlike(const std::string& a, const std::string& b) {
    constexpr int kEnds = 6;
    if (a.size() != b.size()) return false;
    int differences = 0;
    for (std::size_t i = 0; i < a.size(); ++i) differences += a[i] != b[i] ? 1 : 0;
    return differences <= kEnds;
}

struct Likeness {
    const char* what;
    std::string entities, like;
};
const std::string kTriangle = Lines("4,4,14,4 14,4,14,10 14,10,4,4");
const std::string kHalf = "0 LWPOLYLINE|10 30|20 10|42 1|10 40|20 10";

}  // namespace

TEST(FullDxf, KindsLookLikeTheirLines) {
    const Likeness rows[] = {
        {"LWPOLYLINE", "0 LWPOLYLINE|90 999999|70 1|10 4|20 4|10 14|20 4|10 14|20 10", kTriangle},
        {"POLYLINE", "0 POLYLINE|70 1|0 VERTEX|10 4|20 4|0 VERTEX|10 14|20 4|0 VERTEX|10 14|20 10|0 SEQEND", kTriangle},
        {"frame points",
         "0 POLYLINE|70 5|0 VERTEX|10 4|20 4|0 VERTEX|70 16|10 9|20 9|0 VERTEX|10 14|20 4|0 VERTEX|10 14|20 10",
         kTriangle},
        {"3D", "0 POLYLINE|70 9|0 VERTEX|10 4|20 4|30 9|0 VERTEX|10 14|20 4|0 VERTEX|10 14|20 10", kTriangle},
        {"faces",
         "0 POLYLINE|70 64|0 VERTEX|70 192|10 4|20 4|0 VERTEX|70 192|10 14|20 4|0 VERTEX|70 192|10 14|20 10|"
         "0 VERTEX|70 128|71 1|72 -2|73 3|0 VERTEX|70 128|71 1|72 9|73 99",
         Lines("4,4,14,4 14,10,4,4")},
        {"bulge of VERTEX", "0 POLYLINE|0 VERTEX|10 30|20 10|42 1|0 VERTEX|10 40|20 10", kHalf},
        {"bulge, clockwise", "0 LWPOLYLINE|10 40|20 10|42 -1|10 30|20 10", kHalf},
        {"SPLINE of degree 1", "0 SPLINE|71 1|10 4|20 4|10 14|20 4|10 14|20 10|10 4|20 4", kTriangle},
        {"SPLINE, knots missing", "0 SPLINE|71 2|10 4|20 4|10 14|20 4|10 14|20 10",
         "0 SPLINE|71 2|40 0|40 0|40 0|40 1|40 1|40 1|10 4|20 4|10 14|20 4|10 14|20 10"},
        {"SPLINE by two fit points", "0 SPLINE|11 4|21 4|11 14|21 4", Lines("4,4,14,4")},
        {"ELLIPSE", "0 ELLIPSE|10 20|20 15|11 8|21 0|40 1|41 0|42 6.283185307", "0 CIRCLE|10 20|20 15|40 8"},
        {"ELLIPSE, part", "0 ELLIPSE|10 20|20 15|11 0|21 8|40 1|41 0|42 1.570796327",
         "0 ARC|10 20|20 15|40 8|50 90|51 180"},
        {"ARC beyond 360", "0 ARC|10 20|20 15|40 8|50 450|51 540", "0 ARC|10 20|20 15|40 8|50 90|51 180"},
        {"SOLID", "0 SOLID|10 4|20 4|11 20|21 4|12 4|22 12|13 20|23 12",
         "0 HATCH|70 1|91 1|92 3|10 4|20 4|10 20|20 4|10 20|20 12|10 4|20 12|75 0|98 1|10 50|20 20"},
        {"HATCH of edges",
         "0 HATCH|70 1|92 1|93 4|72 1|10 4|20 4|11 20|21 4|72 1|10 20|20 12|11 20|21 4|72 1|10 20|20 12|11 4|21 12|75 "
         "0",
         "0 HATCH|70 1|92 3|10 4|20 4|10 20|20 4|10 20|20 12|10 4|20 12|75 0"},
        {"HATCH, inner ones ignored",
         "0 HATCH|70 1|92 3|10 4|20 4|10 20|20 4|10 20|20 12|92 2|10 6|20 5|10 9|20 5|10 9|20 6|75 2",
         "0 HATCH|70 1|92 3|10 4|20 4|10 20|20 4|10 20|20 12|75 0"},
        {"pattern", "0 HATCH|70 0|92 3|10 4|20 4|10 20|20 4|10 20|20 12|10 4|20 12|75 0|53 0|43 0|44 5|45 0|46 4",
         Lines("4,5,20,5 4,9,20,9")},
        {"dense pattern", "0 HATCH|70 0|92 3|10 4|20 4|10 20|20 4|10 20|20 12|75 0|53 0|43 0|44 5|45 0|46 1e-9",
         "0 HATCH|70 1|92 3|10 4|20 4|10 20|20 4|10 20|20 12|75 0"},
        {"no pattern", "0 HATCH|70 0|92 3|10 4|20 4|10 14|20 4|10 14|20 10|75 0", kTriangle},
        {"3DFACE", "0 3DFACE|10 4|20 4|30 7|11 20|21 4|12 20|22 12|13 4|23 12|70 2",
         Lines("20,12,4,12 4,12,4,4 4,4,20,4")},
        {"MESH",
         "0 MESH|92 3|10 4|20 4|30 0|10 14|20 4|30 0|10 14|20 10|30 0|93 4|90 3|90 0|90 1|90 2|90 3|90 0|90 1|90 77",
         kTriangle + "|" + Lines("4,4,14,4")},
        {"LEADER", "9 $DIMASZ|40 1|0 LEADER|3 own|10 4|20 4|10 14|20 4|10 14|20 10",
         "0 LINE|10 4|20 4|11 14|21 4|0 LINE|10 14|20 4|11 14|21 10|0 SOLID|10 4|20 4|11 10|21 3|12 10|22 5"},
        {"DIMENSION without a block", "0 DIMENSION|3 own|70 0|1  |10 4|20 10|13 4|23 4|14 14|24 4",
         Lines("4,4,4,10 14,4,14,10 4,10,14,10")},
        {"a second section",
         "0 LINE|10 4|20 4|11 14|21 4|0 ENDSEC|0 SECTION|2 ENTITIES|" + Lines("14,4,14,10 14,10,4,4"), kTriangle},
        {"what passes by", "0 WIPEOUT|10 4|20 4|0 VIEWPORT|10 9|20 9|40 5|0 ACAD_PROXY_ENTITY|0 NEW|10 3",
         "999 nothing"},
    };
    for (const auto& row : rows)
        EXPECT_TRUE(AreAlike(Shown(row.entities), Shown(row.like))) << row.what << "\n"
                                                                    << Shown(row.entities) << Shown(row.like);
}

TEST(FullDxf, InsertsLayersAndAxes) {
    const Likeness rows[] = {
        {"base point", "0 INSERT|2 b|10 10|20 10", Lines("10,10,16,10 10,10,10,12")},
        {"turned, mirrored, scaled", "0 INSERT|2 B|10 10|20 10|41 -1|42 2|50 90", Lines("10,10,10,4 10,10,6,10")},
        {"z does not flip", "0 INSERT|2 B|10 10|20 10|43 -1", Lines("10,10,16,10 10,10,10,12")},
        {"grid, not scaled", "0 INSERT|2 B|10 4|20 4|41 .5|42 .5|70 2|71 2|44 9|45 7",
         Lines("4,4,7,4 4,4,4,5 13,4,16,4 13,4,13,5 4,11,7,11 4,11,4,12 13,11,16,11 13,11,13,12")},
        {"a count of 0, a grid without spacing", "0 INSERT|2 B|10 4|20 4|70 0|71 30000", Lines("4,4,10,4 4,4,4,6")},
        {"nested", "0 INSERT|2 TWICE|10 4|20 4", Lines("4,4,10,4 4,4,4,6 14,4,20,4 14,4,14,6")},
        {"a ring is cut", "0 INSERT|2 RING|10 4|20 4", Lines("4,4,8,4")},
        {"a hidden insert in a block, attribute", "0 INSERT|2 HIDES|0 ATTRIB|40 3|1 a", "0 TEXT|40 3|1 a"},
        {"another file's block, none", "0 INSERT|2 FAR|10 4|20 4|0 INSERT|2 NONE|10 4|20 4", "999 nothing"},
        {"frozen hides all", "0 INSERT|2 MIXED|8 FROZEN|10 4|20 4", "999 nothing"},
        {"off hides what is on layer 0", "0 INSERT|2 MIXED|8 off|10 4|20 4", Lines("4,6,8,6")},
        {"hidden", "0 LINE|8 off|10 4|11 9|0 LINE|8 frozen|10 4|11 9|0 LINE|60 1|10 4|11 9|0 LINE|67 1|10 4|11 9",
         "999 nothing"},
        {"a line type that no table has", "0 LINE|6 DASHED2|10 4|20 4|11 44|21 4",
         "0 LINE|8 dashes|10 4|20 4|11 44|21 4"},
        {"BYLAYER, BYBLOCK", "0 INSERT|2 B|6 own|8 dashes|10 4|20 4",
         "0 LINE|6 own|10 4|20 4|11 10|21 4|0 LINE|8 dashes|10 4|20 4|11 4|21 6"},
        {"circle from below", "0 CIRCLE|10 -20|20 15|40 8|230 -1", "0 CIRCLE|10 20|20 15|40 8"},
        {"arc from below", "0 ARC|10 -20|20 15|40 8|50 0|51 90|210 0|220 0|230 -1",
         "0 ARC|10 20|20 15|40 8|50 90|51 180"},
        {"insert from below", "0 INSERT|2 B|10 -10|20 10|230 -1", Lines("10,10,4,10 10,10,10,12")},
        {"lines have no axes", "0 LINE|10 4|20 4|11 14|21 4|230 -1", Lines("4,4,14,4")},
        {"circle from the side", "0 CIRCLE|10 15|20 0|30 20|40 8|210 1|220 0|230 0", "0 LINE|10 20|20 7|11 20|21 23"},
    };
    for (const auto& row : rows)
        EXPECT_TRUE(AreAlike(Shown(row.entities), Shown(row.like))) << row.what << "\n"
                                                                    << Shown(row.entities) << Shown(row.like);
}

TEST(FullDxf, Texts) {
    const auto texts = [](const std::string& entities) {
        const std::string plot = Shown(entities);
        return plot.size() > 65 * 32 ? plot.substr(65 * 32) : "";
    };
    const struct {
        std::string entities, texts;
    } cases[] = {
        {"0 TEXT|10 20|20 15|40 3|41 .5|50 30|51 10|1 %%c5%%D%%p1 100%%% %%065%%uX",
         "21,17 left base 3 x 0.5 (0) 30 10 under <00d8>5<00b0><00b1>1 100% AX\n"},
        {"0 TEXT|10 1|20 1|11 20|21 15|40 3|72 2|73 3|71 6|1 a", "21,17 right top 3 x 1 (0) 0 0 backward down a\n"},
        {"0 TEXT|10 1|20 1|11 20|21 15|40 3|72 4|73 3|1 a", "21,17 middle middle 3 x 1 (0) 0 0 a\n"},
        {"0 TEXT|10 20|20 15|11 24|21 18|40 3|72 5|1 a", "21,17 left base 3 x 1 (5) 36.87 0 a\n"},
        {"0 TEXT|10 20|20 15|40 3|1 \\U+3042\\M+182a0\\U+zz", "21,17 left base 3 x 1 (0) 0 0 <3042><3042>\\U+zz\n"},
        {"0 TEXT|10 -20|20 15|40 3|1 a|230 -1", "21,17 left base 3 x 1 (0) 180 0 down a\n"},
        {"0 ATTRIB|10 1|20 1|11 20|21 15|40 3|72 1|74 2|73 9|1 a|0 ATTRIB|70 1|40 2|1 b|0 ATTDEF|10 20|20 15|40 3|2 c",
         "21,17 middle middle 3 x 1 (0) 0 0 a\n21,17 left base 3 x 1 (0) 0 0 c\n"},
        {"0 INSERT|2 B|8 frozen|0 ATTRIB|40 3|1 a", ""},
        {"0 MTEXT|10 20|20 15|40 3|71 1|7 wide|3 {\\fArial;one}\\P|1 \\C1;two\\~\\{\\\\",
         "21,20 left base 3 x 2 (0) 0 0 one\n21,25 left base 3 x 2 (0) 0 0 two<00a0>{\\\n"},
        {"0 MTEXT|10 20|20 15|40 3|71 1|1 \\H1xa\\C1b\\Nc^Id\\P\\T\\f|101 Embedded Object|71 1|72 2|44 12|45 2|41 4",
         "21,20 left base 3 x 1 (0) 0 0 ab\n35,20 left base 3 x 1 (0) 0 0 c    d\n35,25 left base 3 x 1 (0) 0 0 "
         "\\T\\f\n"},
        {"0 MTEXT|10 20|20 15|40 3|71 9|41 20|50 90|11 1|21 0|1 wrapped words",
         "21,11 right base 3 x 1 (0) 0 0 wrapped\n"
         "21,16 right base 3 x 1 (0) 0 0 words\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(texts(c.entities), c.texts) << c.entities;
}

// A drawing of every kind: most of them in blocks that stand in a grid from the lower left corner.
TEST(FullDxf, EveryKind) {
    const char* const kinds[] = {
        "0 POINT|10 4|20 3",
        "0 LINE|6 dashed|11 9|21 6",
        "0 ARC|10 4|20 1|40 4|50 20|51 160",
        "0 CIRCLE|8 dashes|10 4|20 3|40 3",
        "0 ELLIPSE|10 4|20 3|11 4|21 1|40 .5|41 0|42 4",
        "0 LWPOLYLINE|70 1|10 2|20 0|10 6|20 0|42 1|10 6|20 6|10 2|20 6|42 -.5",
        "0 POLYLINE|0 VERTEX|10 0|20 3|42 -1|0 VERTEX|10 4|20 3|42 1|0 VERTEX|10 8|20 3|0 SEQEND",
        "0 SPLINE|71 3|10 0|20 0|10 0|20 9|10 8|20 -3|10 8|20 6",
        "0 HELIX|71 2|10 0|20 0|10 4|20 12|10 8|20 0",
        "0 SOLID|10 0|20 0|11 8|21 0|12 0|22 6|13 8|23 6",
        "0 TRACE|10 0|20 0|11 8|21 0|12 4|22 6",
        "0 3DFACE|10 0|20 0|11 8|21 0|12 8|22 6|13 0|23 6|70 1",
        "0 3DLINE|10 0|20 6|11 8|21 0|31 9",
        "0 MLINE|11 0|21 2|13 0|23 1|74 1|41 2|74 1|41 -1|11 8|21 2|13 0|23 1|74 1|41 2|74 1|41 -1",
        "0 LEADER|10 0|20 6|10 6|20 0|10 9|20 0",
        "0 HATCH|70 1|92 3|10 0|20 0|10 9|20 0|10 9|20 6|10 0|20 6|92 2|10 3|20 2|10 6|20 2|10 6|20 4|10 3|20 4|75 0",
        "0 HATCH|70 0|92 3|10 0|20 0|10 9|20 0|10 9|20 6|10 0|20 6|75 0|53 45|43 0|44 0|45 -2|46 2",
        "0 MPOLYGON|70 0|71 1|92 3|10 0|20 0|10 8|20 0|10 4|20 6|75 0",
        "0 IMAGE|10 2|20 0|11 1|21 .5|12 -.5|22 1|13 6|23 4",
        "0 OLEFRAME|10 0|20 6|11 4|21 3",
        "0 OLE2FRAME|10 0|20 6|11 8|21 0",
        "0 MESH|92 3|10 0|20 0|30 0|10 8|20 0|30 5|10 4|20 6|30 0|93 4|90 3|90 0|90 1|90 2",
        "0 POLYLINE|70 16|71 2|72 2|0 VERTEX|0 VERTEX|10 8|0 VERTEX|20 6|0 VERTEX|10 6|20 6",
        "0 POLYLINE|70 64|0 VERTEX|70 192|0 VERTEX|70 192|10 8|0 VERTEX|70 192|20 6|0 VERTEX|70 128|71 1|72 -2|73 3",
        "0 INSERT|2 B|10 8|20 0|41 -1|50 0|71 3|45 2|6 own",
        "0 DIMENSION|2 B",
        "0 ARC_DIMENSION|2 TWICE",
        "0 LARGE_RADIAL_DIMENSION|2 MIXED",
        "0 ACAD_TABLE|2 B|10 2|20 2|11 0|21 1",
        "0 MULTILEADER|300 C|12 5|22 4|41 3|290 1|304 m|302 L|10 4|20 3|11 1|40 4|304 L|10 0|20 0|305 }|303 }|301 }",
        "0 MLEADER|300 C|302 L|10 8|20 6|304 L|10 0|20 3|305 }|303 }|301 }",
        "0 TEXT|10 0|20 2|40 3|1 text",
        "0 MTEXT|10 0|20 6|40 3|41 6|1 two lines",
        "0 ATTRIB|10 0|20 2|40 3|1 value",
    };
    std::string blocks = "0 SECTION|2 BLOCKS|", entities;
    int count = 0;
    for (const char* kind : kinds) {
        const std::string name = "KIND" + std::to_string(count);
        blocks += "0 BLOCK|2 " + name + "|" + kind + "|0 ENDBLK|";
        entities += "0 INSERT|2 " + name + "|10 " + std::to_string(11 * (count % 9)) + "|20 " +
                    std::to_string(9 * (count / 9)) + "|";
        ++count;
    }
    entities += "0 XLINE|10 75|20 9|11 0|21 1|0 RAY|10 88|20 34|11 1|21 -1|0 ATTDEF|10 79|20 29|40 3|2 TAG";
    const std::string picture = PlotOf(DecodeFullDxf, Pairs(blocks + "0 ENDSEC|" + kHead + entities), 108, 37, false);
    EXPECT_EQ(picture, KeptPicture("full dxf")) << "[full dxf]\n" << picture;
}

// However a file is written, it shows the same.
TEST(FullDxf, Forms) {
    const std::string drawing = Drawing(kTriangle + "|0 TEXT|10 20|20 15|40 3|1 a");
    const std::string expected = PlotOf(DecodeFullDxf, Pairs(drawing), 64, 32, false);
    const auto with = [](std::string text, const std::string& end) {
        for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += end.size())
            text.replace(at, 1, end);
        return text;
    };
    const std::string plain = Pairs(drawing), entities = Pairs(kCorners + kTriangle + "|0 TEXT|10 20|20 15|40 3|1 a");
    const std::string files[] = {
        with(plain, "\r\n"),    with(plain, "\r\r\n"), with(plain, "\r"), "\xEF\xBB\xBF" + plain,
        Binary(drawing, false), Binary(drawing, true), entities,          entities.substr(0, entities.size() - 1),
        "garbage\n" + plain};
    for (const std::string& file : files)
        EXPECT_EQ(PlotOf(DecodeFullDxf, file, 64, 32, false), expected) << file.substr(0, 40);
    for (const char* none : {"\n", "text\nwithout pairs\n", "999\nremark\n"})
        EXPECT_EQ(PlotOf(DecodeFullDxf, none, 64, 32, false), "") << none;
}

// One element far away is left out of the extents, however the header has them; two views of a drawing are not.
TEST(FullDxf, Strays) {
    EXPECT_EQ(Shown(kTriangle + "|0 CIRCLE|10 1e7|20 -1e7|40 5|0 POINT|10 1e20|20 0"), Shown(kTriangle));
    EXPECT_NE(Shown(kTriangle + "|0 CIRCLE|10 400|20 9|40 5"), Shown(kTriangle));
    EXPECT_EQ(Shown("0 INSERT|2 B|8 off|0 INSERT|2 B|10 90|20 9"), Shown("0 INSERT|2 B|10 90|20 9"))
        << "a block that was hidden where it stood first";
    EXPECT_EQ(PlotOf(DecodeFullDxf, Pairs("0 SECTION|2 ENTITIES|0 LINE|67 1|10 0|20 0|11 8|21 4"), 16, 8, false),
              PlotOf(DecodeFullDxf, Pairs("0 LINE|10 0|20 0|11 8|21 4"), 16, 8, false))
        << "the paper space, where the model space is empty";
}

// What multiplies without end leaves something for the rest, and takes no more time than its bound allows.
TEST(FullDxf, Bounds) {
    std::string blocks = "0 SECTION|2 BLOCKS|0 BLOCK|2 B0|0 LINE|10 1|20 1|11 2|21 2|0 ENDBLK";
    for (int i = 1; i < 30; ++i) {
        blocks += "|0 BLOCK|2 B" + std::to_string(i);
        for (int k = 0; k < 10; ++k) blocks += "|0 INSERT|2 B" + std::to_string(i - 1);
        blocks += "|0 ENDBLK";
    }
    blocks += "|0 ENDSEC|0 SECTION|2 ENTITIES|" + kCorners;
    const std::string line = Lines("30,5,50,9"), inside = Lines("1,1,2,2");
    const auto shown = [](const std::string& text) { return PlotOf(DecodeFullDxf, Pairs(text), 64, 32, false); };
    const std::string expected = shown(blocks + inside + "|" + line);
    EXPECT_EQ(shown(blocks + "0 INSERT|2 B29|0 INSERT|2 B28|" + line), expected);
    EXPECT_EQ(shown(blocks + "0 INSERT|2 B0|70 1000000000|71 1000000000|44 1e-12|45 1e-12|" + line), expected);
    for (const char* hostile : {"0 SPLINE|71 1000000000|74 0|10 1|20 1|10 2|20 2",
                                "0 LWPOLYLINE|42 1e300|10 1|20 1|42 nan|10 2|20 2|10 1e999|20 1",
                                "0 LINE|10 1|20 1|11 2|21 2|0 POLYLINE|70 16|71 2000000000|72 -2000000000|0 "
                                "POLYLINE|70 64|0 VERTEX|70 128|71 -2147483648"})
        EXPECT_EQ(shown(blocks + hostile + "|" + line), expected) << hostile;
}

TEST(FullDxf, Comment) {
    const std::string file = Pairs("999 a remark|999 another|" + kHead + kCorners + kTriangle + "|0 ATTRIB|1 x|0 NEW");
    char text[512] = {};
    Comment comment;
    comment.end = text;
    comment.room = sizeof(text);
    comment.label = [](unsigned id, char* out, std::size_t size) { std::snprintf(out, size, "<%u>", id); };
    const GuardBlock block(file);
    EXPECT_TRUE(DecodeFullDxf(block.View(), &comment, nullptr));
    EXPECT_STREQ(text,
                 "a remark\r\r\nanother\r\r\n<51> DXF AC1015 (2000)\r\r\n<53> 62 x 30\r\r\n<54> 6\r\r\n<55> "
                 "3\r\r\n<56> 7\r\r\n");
}
