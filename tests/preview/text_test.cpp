#include "preview/formats/text.h"

#include <gtest/gtest.h>

#include "support/cases.h"
#include "support/drawings.h"

// On a sheet of 80 x 40 units, one pixel each.
static std::string Shown(const std::string& lines, bool frames = false) {
    return PlotOf(DecodeTextDrawing, "AR 0,0,80,40\n" + lines + "\n", 80, 40, frames);
}

TEST(DecodeTextDrawing, Likenesses) {
    for (const TextCase& c : TextCases("preview/text.txt")) {
        for (const bool frames : {false, true}) EXPECT_EQ(Shown(c.given, frames), Shown(c.expected, frames)) << c.name;
    }
    const std::string line = "GL 1,2,2.7,70,30,0";
    EXPECT_EQ(Shown(line), PlotOf({LineStroke(0, 2, 2.7, 70, 30)}, 80, 40));
    EXPECT_EQ(PlotOf(DecodeTextDrawing, line + "\nAR 0,0,80,40\n", 80, 40, false), Shown("")) << "no area yet";
}

TEST(DecodeTextDrawing, Texts) {
    // Full-width characters 10 wide: a cell of 10 / 2 + 1 for each of four bytes, 24 long.
    const auto frame = [](double length) { return PlotOf({FrameStroke(20, 10, 20 + length, 18, 20, 10)}, 80, 40); };
    const std::string start = "GT 20,10,10,8,1,0,0,0,", wide = "\x83\x5c\x94\x5c";
    EXPECT_EQ(Shown(start + "'" + wide + "'"), PlotOf({TextStrokeOf(20, 18, 8, 5, 1, 0, wide)}, 80, 40));
    for (const std::string& four : {wide, std::string("abcd")})
        EXPECT_EQ(Shown(start + "'" + four + "'", true), frame(24));
    EXPECT_EQ(Shown("GT 20,10,.3961,8,0,0,0,0,'" + std::string(256, 'i') + "'", true), frame(255 * .3961 / 2))
        << "255 bytes";
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
