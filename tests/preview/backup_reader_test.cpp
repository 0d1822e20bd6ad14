#include "preview/reader.h"

#include <gtest/gtest.h>

#include "support/drawings.h"

static std::string Shown(const std::string& file) { return Drawn(ReadBackupDrawing, file, 40, 30); }

// On a sheet of 40 x 30 units, one pixel each.
static std::string Elements(const std::string& records) { return Shown(BackupFile(40, 30, records)); }

TEST(BackupReader, Elements) {
    const std::string line = LineRecord(2, 2.7, 30, 20);
    const auto head = [&](std::size_t at, const char* bytes) { return Put(line, {{at, {bytes, at == 7 ? 1u : 2u}}}); };
    const auto text = [](unsigned horizontal, unsigned vertical, float angle = 0) {
        return CountedTextRecord({10, 15, 3, 2, .5, angle}, Justified(horizontal, vertical), 5);
    };
    const Stroke drawn = LineStroke(0, 2, 2.7, 30, 20);
    const struct {
        const char* what;
        std::string records;
        std::vector<Stroke> strokes;
    } cases[] = {
        // clang-format off
        {"points", PointRecord(3, 2.7) + PointRecord(39.4, 29), {PointStroke(3, 2.7), PointStroke(39.4, 29)}},
        {"pens", LineRecord(0, 5, 40, 5, 0x25) + LineRecord(0, 9, 40, 9, 0xFF6F) + ArcRecord(20, 15, 12, 10, 200, 0x30),
         {LineStroke(2, 0, 5, 40, 5), LineStroke(6, 0, 9, 40, 9), ArcStroke(3, 20, 15, 12, 10, 200)}},
        {"flags that do not hide", head(0, "\1\0") + head(0, "\xFF\x3F"), {drawn}},
        {"flags that hide", head(0, "\0\x40") + head(0, "\0\x80"), {}},
        {"every layer is shown", head(7, "\xFF"), {drawn}},
        {"the kind is in four bits", head(4, "\xF2\xFF"), {drawn}},
        {"other kinds", head(4, "\0\0") + head(4, "\3\0") + head(4, "\5\0") + head(4, "\x10\0") + ArcRecord(9, 9, 4, 0, 360),
         {ArcStroke(0, 9, 9, 4, 0, 360)}},
        // a frame of 5 x (2 + 0.5) = 12.5 by 3 at (10, 15)
        {"middle, top, turned", text(1, 2, 60), {FrameStroke(3.75, 12, 16.25, 15, 10, 15, 60)}},
        // a justification that is none keeps what the last element left on its axis, whatever its kind
        {"a line's x", line + text(3, 0), {drawn, FrameStroke(2, 15, 30, 18, 10, 15)}},
        {"a line's y", line + text(0, 3), {drawn, FrameStroke(10, 2.7, 22.5, 20, 10, 15)}},
        // clang-format on
    };
    for (const auto& c : cases) EXPECT_EQ(Elements(c.records), Rendered(40, 30, c.strokes)) << c.what;
    EXPECT_EQ(Shown(Put(BackupFile(0, 0, LineRecord(102, 52.7, 130, 70)),
                        {{410, Raw(100.0) + Raw(50.0) + Raw(140.0) + Raw(80.0)}})),
              Rendered(40, 30, {drawn}))
        << "a sheet elsewhere";
}

// Lines have no end marks of their own: the word holds the low half of what the last arc's end angle left there.
TEST(BackupReader, EndMarksOfLines) {
    Slot end;
    end.Set(90);
    end.SetEndMarks(EndMarkWord(2, 1));
    const std::string line = LineRecord(5, 5, 35, 25, 0x1A00);
    EXPECT_EQ(Elements(ArcRecord(20, 15, 8, 0, end.AsDouble()) + line),
              Rendered(40, 30, {ArcStroke(0, 20, 15, 8, 0, 90), LineStroke(0, 5, 5, 35, 25, EndMarkWord(2, 1))}));
}

TEST(BackupReader, WhatIsNoDrawing) {
    const std::string one = BackupFile(40, 30, LineRecord(2, 2.7, 30, 20));
    const auto counting = [&](std::uint32_t count) { return Put(one, {{442, Raw(count)}}); };
    for (const std::string& file : {one, one + "x", BackupFile(40, 30, "")}) EXPECT_NE(Shown(file), "") << file.size();
    for (const std::string& file :
         {std::string(), one.substr(0, 446 + 63), BackupFile(40, 30, "").substr(0, 445), Put(one, {{22, "3"}}),
          counting(2), counting(0x04000001)})  // which wraps to 64 bytes
        EXPECT_EQ(Shown(file), "") << file.size();
}
