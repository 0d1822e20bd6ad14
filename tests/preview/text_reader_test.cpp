#include "preview/text_reader.h"

#include <gtest/gtest.h>

#include "support/drawings.h"

static std::string Shown(const std::string& text, DWORD mode = 0) { return Drawn(ReadTextDrawing, text, 80, 40, mode); }

// On a sheet of 80 x 40 units, one pixel each.
static std::string Lines(const std::string& lines, DWORD mode = 0) {
    return Shown("AR 0,0,80,40\n" + lines + "\n", mode);
}

static const std::string kGl = "GL 1,2,2.7,70,30,0";
static const Stroke kDrawn = LineStroke(0, 2, 2.7, 70, 30);

TEST(TextReader, Lines) {
    const auto arc = [](std::uint32_t marks) { return ArcStroke(0, 40, 20, 10, 30, 300, marks); };
    const struct {
        const char* what;
        std::string lines;
        std::vector<Stroke> strokes;
    } cases[] = {
        // clang-format off
        {"points", "GP 1,3,2.7,0\nGP 7 79 39", {PointStroke(3, 2.7), PointStroke(79, 39)}}, {"line", kGl, {kDrawn}}, {"arc", "GA 1,40,20,10,30,300,0", {arc(0)}},
        // numbers and what stands between them
        {"blanks", "GL 1 2 2.7 70 30 0", {kDrawn}}, {"any separator", "GL 1;2/2.7x70|30-0", {kDrawn}},
        {"one separator and blanks", "GL  1,  2,  2.7,  70,  30,  0", {kDrawn}},
        {"two separators", "GL 1,,2,2.7,70,30,0", {}}, {"signs and exponents", "GL -1,+2,27e-1,7.E1,+.3E+2,0", {kDrawn}},
        {"more than is needed", kGl + ",99,'x'", {kDrawn}}, {"no attribute word", "GL 1,2,2.7,70,30", {kDrawn}},
        {"missing numbers", "GL 1,2,2.7,70\nGL 1,2,2.7,70,\nGL ,2,2.7,70,30,0\nGL 1,2,x,70,30,0\nGL\nGL \nGA 1,40,20,10,30\nGP 1,2", {}},
        {"numbers do not come from the next line", "GL 1,2,2.7\n,70,30,0", {}},
        // keys
        {"a blank belongs to a key", "GL1,2,2.7,70,30,0\nGL,1,2,2.7,70,30,0\nGLX 1,2,2.7,70,30,0", {}},
        {"small letters", "gl 1,2,2.7,70,30,0", {}}, {"not at the start", " " + kGl + "\nx" + kGl, {}},
        {"remarks", ";" + kGl + "\n; AR 0,0,9,9\n" + kGl, {kDrawn}}, {"unknown keys", "GX 1,2\n\x1a\nEND\n" + kGl, {kDrawn}},
        {"line ends and empty lines", "\r\n\r\n\t" + kGl + "\r\n\n", {kDrawn}},
        {"a second byte is no line end", "\x83\n" + kGl + "\nGA 1,40,20,10,30,300,0", {arc(0)}},
        // attribute words: pen in bits 0 to 3, marks in bits 4, 5 and 7, 8; arrowhead and dot change places
        {"pens", "GL 0,0,9,80,9,2\nGL 0,0,19,80,19,5\nGL 0,0,29,80,29,E46", {LineStroke(2, 0, 9, 80, 9), LineStroke(5, 0, 19, 80, 19), LineStroke(6, 0, 29, 80, 29)}},
        {"1 at the start", "GL 1,2,2.7,70,30,10", {LineStroke(0, 2, 2.7, 70, 30, EndMarkWord(2, 0))}},
        {"2 at the start, 1 at the end", "GL 1,2,2.7,70,30,A0", {LineStroke(0, 2, 2.7, 70, 30, EndMarkWord(1, 2))}},
        {"2 at the end", "GL 1,2,2.7,70,30,0x100", {LineStroke(0, 2, 2.7, 70, 30, EndMarkWord(0, 1))}},
        {"3 and 3", "GL 1,2,2.7,70,30,1b0", {kDrawn}}, {"no end marks are left behind", "GL 1,2,2.7,70,30,90\nGL 1,2,2.7,70,2.7,0",
         {LineStroke(0, 2, 2.7, 70, 30, EndMarkWord(2, 2)), LineStroke(0, 2, 2.7, 70, 2.7)}},
        {"an arc's", "GA 1,40,20,10,30,300,a0", {arc(EndMarkWord(1, 2))}},
        // the area
        {"the last one counts", "AR 0,0,8,4\nAR 0,0,80,40\n" + kGl, {kDrawn}},
        {"incomplete ones do not", "AR 0,0,8\nAR 0,0,8,\nARX 0,0,8,4\nAR,0,0,8,4\n" + kGl, {kDrawn}},
        // clang-format on
    };
    for (const auto& c : cases) EXPECT_EQ(Lines(c.lines), Rendered(80, 40, c.strokes)) << c.what;
    EXPECT_EQ(Shown("AR 100 50 180 90\nGL 1,102,52.7,170,80,0\n"), Rendered(80, 40, {kDrawn})) << "a sheet elsewhere";
    for (const std::string& text : {kGl + "\n", kGl + "\nAR 0,0,80,40\n", "AR 0,0,80\n" + kGl + "\n", std::string("\n"),
                                    std::string("x"), std::string("FIGRNAME Plate A\n")})
        EXPECT_EQ(Shown(text), Rendered(80, 40, {})) << "no area yet: " << text;
    EXPECT_EQ(Shown(""), "");
}

TEST(TextReader, Texts) {
    // Full-width characters 10 wide: a cell of 10 / 2 + 1 for each of four bytes, 24 long.
    const auto text = [](const std::string& string, double angle = 0) {
        return TextStroke(20, 18, 8, 5, 1, angle, string);
    };
    const auto frame = [](double length, double angle = 0) {
        return FrameStroke(20, 10, 20 + length, 18, 20, 10, angle);
    };
    const std::string start = "GT 20,10,10,8,1,0,0,", long255(255, 'i');
    const struct {
        const char* what;
        std::string lines;
        std::vector<Stroke> texts, frames;
    } cases[] = {
        // clang-format off
        {"text", start + "0,'abcd'", {text("abcd")}, {frame(24)}},
        {"no attribute word, blanks", "GT 20 10 10 8 1 0 0   'abcd'", {text("abcd")}, {frame(24)}},
        {"up to the next apostrophe", start + "0 'ab'cd'", {text("ab")}, {frame(12)}},
        {"two-byte characters count twice", start + "0,'\x83\x5c\x94\x5c'", {text("\x83\x5c\x94\x5c")}, {frame(24)}},
        {"empty", start + "0,''", {}, {frame(0)}},
        {"no apostrophe, or one", start + "0,abcd\n" + start + "0,'abcd\n" + start + "0,abcd'", {}, {}},
        {"a number missing", "GT 20,10,10,8,1,0,'abcd'\nGT 20,10,10,8,1,'abcd'", {}, {}},
        {"turned", "GT 20,10,10,8,1,90,0,0,'abcd'", {TextStroke(12, 10, 8, 5, 1, 90, "abcd")}, {frame(24, 90)}},
        {"at most 255 bytes", "GT 20,10,.3,8,0,0,0,0,'" + long255 + "i'", {}, {FrameStroke(20, 10, 20 + 255 * .15, 18, 20, 10)}},
        // clang-format on
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Lines(c.lines), Rendered(80, 40, c.texts)) << c.what;
        EXPECT_EQ(Lines(c.lines, 1), Rendered(80, 40, c.frames)) << c.what << ", frames";
    }
}

TEST(TextReader, Titles) {
    const std::string label = GetACP() == 932 ? "[\x8d\xec\x90\xac\x8e\xd2]" : "[Designer]";
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {"DESIGNER d\nFIGRNAME Plate A\nAR 0,0,1,1\nFIGRNUMB  7 \n", {"d", "Plate A", " 7 "}},  // one label for all
        {"FIGRNAME\nFIGRNAMEX\nfigrname x\n;FIGRNAME x\n FIGRNAME x\nDESIGNER\n", {}},
        {"FIGRNAME \nFIGRNUMB " + std::string(40, 'x') + "\nDESIGNER y\n", {"", std::string(40, 'x'), "y"}},
    };
    for (const auto& [text, titles] : cases)
        for (std::size_t size = 0; size < 80; ++size) {
            std::string shown;  // a block is begun when there is room for 4 bytes, and cut where the room ends
            for (const std::string& title : titles)
                if (size - shown.size() >= 4)
                    shown = (shown + label + "\r\r\n" + title + "\r\r\n\r\r\n").substr(0, size - 1);
            EXPECT_EQ(CommentOf(ReadTextDrawing, text, size, true), shown) << text << size;
        }
}
