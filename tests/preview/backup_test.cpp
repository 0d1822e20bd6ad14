#include "preview/formats/backup.h"

#include <gtest/gtest.h>

#include "support/drawings.h"

static std::string Shown(const std::string& file) { return PlotOf(DecodeBackup, file, 40, 30, false); }

TEST(DecodeBackup, SheetElsewhere) {
    EXPECT_EQ(Shown(Put(BackupFile(0, 0, LineRecord(102, 52.7, 130, 70)),
                        {{410, Raw(100.0) + Raw(50.0) + Raw(140.0) + Raw(80.0)}})),
              PlotOf({LineStroke(0, 2, 2.7, 30, 20)}, 40, 30));
}

// Lines have no end marks of their own: the word holds the low half of what the last arc's end angle left there.
TEST(DecodeBackup, EndMarksOfLines) {
    Slot end;
    end.Set(90);
    end.SetEndMarks(EndMarkWord(2, 1));
    const std::string line = LineRecord(5, 5, 35, 25, 0x1A00);
    EXPECT_EQ(Shown(BackupFile(40, 30, ArcRecord(20, 15, 8, 0, end.AsDouble()) + line)),
              PlotOf({ArcStroke(0, 20, 15, 8, 0, 90), LineStroke(0, 5, 5, 35, 25, EndMarkWord(2, 1))}, 40, 30));
}

TEST(DecodeBackup, WhatIsNoDrawing) {
    const std::string one = BackupFile(40, 30, LineRecord(2, 2.7, 30, 20));
    const auto counting = [&](std::uint32_t count) { return Put(one, {{442, Raw(count)}}); };
    for (const std::string& file : {one, one + "x", BackupFile(40, 30, "")}) EXPECT_NE(Shown(file), "") << file.size();
    for (const std::string& file :
         {std::string(), one.substr(0, 446 + 63), BackupFile(40, 30, "").substr(0, 445), Put(one, {{22, "3"}}),
          counting(2), counting(0x04000001)})  // which wraps to 64 bytes
        EXPECT_EQ(Shown(file), "") << file.size();
}
