#include "preview/formats/text.h"

#include <gtest/gtest.h>

#include "support/drawings.h"

static std::string Shown(const std::string& text, bool frames = false) {
    return PlotOf(DecodeTextDrawing, text, 80, 40, frames);
}

// On a sheet of 80 x 40 units, one pixel each.
static std::string Lines(const std::string& lines, bool frames = false) {
    return Shown("AR 0,0,80,40\n" + lines + "\n", frames);
}

static const std::string kGl = "GL 1,2,2.7,70,30,0";
static const Stroke kDrawn = LineStroke(0, 2, 2.7, 70, 30);

TEST(DecodeTextDrawing, Lines) {
    const struct {
        const char* what;
        std::string lines;
        std::vector<Stroke> strokes;
    } cases[] = {
        // clang-format off
        // numbers and what stands between them
        {"any separator", "GL 1;2/2.7x70|30-0", {kDrawn}}, {"two separators", "GL 1,,2,2.7,70,30,0", {}},
        {"one separator and blanks", "GL  -1,  2,  2.7,  70,  30,  0", {kDrawn}},
        {"more than is needed", kGl + ",99,'x'", {kDrawn}}, {"no attribute word", "GL 1,2,2.7,70,30", {kDrawn}},
        {"missing numbers", "GL 1,2,2.7,70\nGL ,2,2.7,70,30,0\nGL 1,2,x,70,30,0\nGL\nGA 1,40,20,10,30\nGP 1,2", {}},
        {"numbers do not come from the next line", "GL 1,2,2.7\n,70,30,0", {}},
        // keys
        {"a blank belongs to a key", "GL1,2,2.7,70,30,0\nGL,1,2,2.7,70,30,0", {}},
        {"small letters", "gl 1,2,2.7,70,30,0", {}}, {"not at the start", " " + kGl + "\nx" + kGl, {}},
        {"remarks and unknown keys", ";" + kGl + "\n; AR 0,0,9,9\nGX 1,2\n\x1a\nEND\n" + kGl, {kDrawn}},
        {"no end marks are left behind", "GL 1,2,2.7,70,30,90\nGL 1,2,2.7,70,2.7,0",
         {LineStroke(0, 2, 2.7, 70, 30, EndMarkWord(2, 2)), LineStroke(0, 2, 2.7, 70, 2.7)}},
        // the area
        {"the last one counts", "AR 0,0,8,4\nAR 0,0,80,40\n" + kGl, {kDrawn}},
        {"it wipes nothing", "GP 1,60,2.7,0\nAR 0,0,80,40\n" + kGl, {PointStroke(60, 2.7), kDrawn}},
        {"incomplete ones do not", "AR 0,0,8\n" + kGl, {kDrawn}},
        // clang-format on
    };
    for (const auto& c : cases) EXPECT_EQ(Lines(c.lines), PlotOf(c.strokes, 80, 40)) << c.what;
    EXPECT_EQ(Shown("AR 100 50 180 90\nGL 1,102,52.7,170,80,0\n"), PlotOf({kDrawn}, 80, 40)) << "a sheet elsewhere";
    EXPECT_EQ(Shown(kGl + "\nAR 0,0,80,40\n"), PlotOf({}, 80, 40)) << "no area yet";
}

TEST(DecodeTextDrawing, Texts) {
    // Full-width characters 10 wide: a cell of 10 / 2 + 1 for each of four bytes, 24 long.
    const auto text = [](const std::string& string) { return TextStrokeOf(20, 18, 8, 5, 1, 0, string); };
    const auto frame = [](double length) { return FrameStroke(20, 10, 20 + length, 18, 20, 10); };
    const std::string start = "GT 20,10,10,8,1,0,0,", long255(255, 'i');
    const struct {
        const char* what;
        std::string lines;
        std::vector<Stroke> texts, frames;
    } cases[] = {
        // clang-format off
        {"no attribute word, blanks", "GT 20 10 10 8 1 0 0   'abcd'", {text("abcd")}, {frame(24)}},
        {"up to the next apostrophe", start + "0 'ab'cd'", {text("ab")}, {frame(12)}},
        {"two-byte characters count twice", start + "0,'\x83\x5c\x94\x5c'", {text("\x83\x5c\x94\x5c")}, {frame(24)}},
        {"no apostrophe, or one", start + "0,abcd\n" + start + "0,'abcd", {}, {}},
        {"a number missing", "GT 20,10,10,8,1,0,'abcd'", {}, {}},
        {"at most 255 bytes", "GT 20,10,.3,8,0,0,0,0,'" + long255 + "i'", {}, {FrameStroke(20, 10, 20 + 255 * .15, 18, 20, 10)}},
        // clang-format on
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Lines(c.lines), PlotOf(c.texts, 80, 40)) << c.what;
        EXPECT_EQ(Lines(c.lines, true), PlotOf(c.frames, 80, 40)) << c.what << ", frames";
    }
}

TEST(DecodeTextDrawing, Titles) {
    const std::string label = "<37>";
    const std::string none = "FIGRNAME\nFIGRNAMEX\nfigrname x\n;FIGRNAME x\n FIGRNAME x\n";
    const std::string text = none + "DESIGNER d\nFIGRNAME Plate A\nAR 0,0,1,1\nFIGRNUMB  7 \n";
    for (std::size_t size = 0; size < 80; ++size) {
        std::string shown;  // a block is begun when there is room for 4 bytes, and cut where the room ends
        for (const std::string title : {"d", "Plate A", " 7 "})  // one label for all
            if (size - shown.size() >= 4)
                shown = (shown + label + "\r\r\n" + title + "\r\r\n\r\r\n").substr(0, size - 1);
        EXPECT_EQ(CommentOf(DecodeTextDrawing, text, size, true), shown) << size;
    }
}
