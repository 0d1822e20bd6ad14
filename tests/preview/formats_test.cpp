// One drawing that holds every element, in every format, kept as pictures in both modes and two sizes.
#include <gtest/gtest.h>

#include "preview/formats/backup.h"
#include "preview/formats/dxf.h"
#include "preview/formats/native.h"
#include "preview/formats/text.h"
#include "support/drawings.h"
#include "support/samples.h"

namespace {

constexpr int kWidth = 96, kHeight = 48;  // of the sheet

struct Shape {
    enum { kPointShape = 1, kLineShape = 2, kArcShape = 4 } kind;
    double v[5];
    unsigned pen = 0, first = 0, second = 0;  // end marks: 1 arrowhead, 2 dot
};

std::vector<Shape> Shapes() {
    std::vector<Shape> shapes = {
        {Shape::kPointShape, {1, 1.6}},
        {Shape::kPointShape, {95, 47}},
        {Shape::kPointShape, {97, 20}},  // outside
        {Shape::kLineShape, {16, 4, 34, 4}, 1, 1, 2},
        {Shape::kLineShape, {16, 9, 34, 16}, 0, 2, 1},
        {Shape::kLineShape, {-90, 46, 40, 46}, 2, 2, 0},  // marks at clipped ends
        {Shape::kLineShape, {40, 30, 40, 300}, 0, 3, 1},
        {Shape::kLineShape, {-30, -60, 200, 55}, 1},  // clipped in two passes, and at a corner
        {Shape::kLineShape, {85, 58, 106, 37}, 1},
        {Shape::kLineShape, {-9, 20, -1, 40}, 3, 1, 1},  // not seen
        {Shape::kArcShape, {54, 12, 9, 0, 360}, 1},
        {Shape::kArcShape, {54, 12, 6, 30, 300}, 3, 1, 2},
        {Shape::kArcShape, {54, 12, 3, -1, 0}, 4},                // all around
        {Shape::kArcShape, {70, 12, 9, 50, -50}, 5},              // straight
        {Shape::kArcShape, {70, 30, 7, 0, 90}, 6},                // 11 pixels: straight
        {Shape::kArcShape, {70, 30, 8, 180, 275}, 0},             // 13 are not
        {Shape::kArcShape, {70, 30, .3, 0, 360}},                 // a point
        {Shape::kArcShape, {66, 33, 4, 10, 11}},                  // both ends in one pixel
        {Shape::kArcShape, {92 - 32766., 24, 32766, 359, 1}, 1},  // the largest arc, and one that is larger
        {Shape::kArcShape, {88 - 32767., 24, 32767, 359, 1}, 1},
        {Shape::kArcShape, {54, 12, 100, 0, 360}, 1, 1, 1},  // around the sheet
    };
    for (unsigned pen = 0; pen < 16; ++pen) {
        const double y = 4 + 2.6 * pen;
        shapes.push_back({Shape::kLineShape, {2, y, 12, y}, pen});
    }
    return shapes;
}

// The renderer's marks as a text drawing has them.
unsigned FileMark(unsigned mark) { return mark == 1 ? 2 : mark == 2 ? 1 : mark; }

std::string TextLines() {
    std::string text = "AR 0,0,96,48\n";
    for (const Shape& s : Shapes()) {
        const std::size_t count = s.kind == Shape::kPointShape ? 2 : s.kind == Shape::kLineShape ? 4 : 5;
        text += s.kind == Shape::kPointShape ? "GP 1" : s.kind == Shape::kLineShape ? "GL 1" : "GA 1";
        for (std::size_t i = 0; i < count; ++i) text += "," + std::to_string(s.v[i]);
        char word[16];
        std::snprintf(word, sizeof(word), ",%X\n", s.pen | FileMark(s.first) << 4 | FileMark(s.second) << 7);
        text += word;
    }
    return text +
           "GT 44,40,4,3,1,0,0,0,'abcd'\nGT 60,38,4,3,0,30,0,0,'\x83\x5c'\nGT 20,30,1.6,1.6,0,0,0,0,'no'\n"
           "GT 20,26,3.2,1.6,0,0,0,0,'smallest'\nGT -9000,30,8200,4097,0,0,0,0,'no'\nGT 200,40,4,3,0,0,0,0,'no'\n"
           "GT 99,44,4,3,0,180,0,0,'turned'\n";
}

std::string Records() {
    std::string records;
    for (const Shape& s : Shapes()) {
        const unsigned word = s.pen << 4 | s.first << 8 | s.second << 11;
        switch (s.kind) {
            case Shape::kPointShape: records += PointRecord(s.v[0], s.v[1]); break;
            case Shape::kLineShape: records += LineRecord(s.v[0], s.v[1], s.v[2], s.v[3], word); break;
            case Shape::kArcShape: records += ArcRecord(s.v[0], s.v[1], s.v[2], s.v[3], s.v[4], word); break;
        }
    }
    return records;
}

// Short lines, one below the other, whose records differ in a few bytes: flags, kinds, layers, bits beside the pen.
std::string Variants() {
    const std::pair<std::size_t, std::string> parts[] = {
        {0, "\1"},       {0, {"\0\x40", 2}}, {0, {"\0\x80", 2}}, {0, "\xFE\x3F"}, {0, "\xA5\x25"},
        {4, "\xF2\xFF"}, {4, {"\0", 1}},     {4, "\3"},          {4, "\5"},       {4, "\x10"},
        {7, "\1"},       {7, "\xFF"},        {48, "\x0F\xE4"}};
    std::string records;
    double y = 42;
    for (const auto& part : parts) records += Put(LineRecord(16, y, 24, y), {part}), y -= 1.6;
    return records;
}

// Every justification, and those that are none behind a turned text and a line.
template <typename Write>
std::string Texts(Write write) {
    std::string texts;
    for (unsigned i = 0; i < 16; ++i) {
        const TextLook look = {50.f + static_cast<float>(i % 4), 40.f - static_cast<float>(i), 3, 4, 1,
                               i == 6 || i == 11 ? 90.f : 0};
        texts += write(look, Justified(i / 4, i % 4), i);
        if (look.angle != 0) texts += LineRecord(80, 40, 82, 38);
    }
    return texts;
}

std::string NativeRecords() {
    return Records() + Variants() + Texts([](const TextLook& look, unsigned placement, unsigned i) {
               return TextRecord(look, placement, "a|" + std::string(1, static_cast<char>('A' + i)));
           });
}

std::string BackupRecords() {
    return Records() + Variants() + Texts([](const TextLook& look, unsigned placement, unsigned i) {
               return CountedTextRecord(look, placement, 2 + i % 3);
           });
}

std::string DxfEntities() {
    static constexpr const char* kTypes[] = {"", "CONTINUOUS", "DASHED", "CENTER", "PHANTOM", "DOT", "HIDDEN"};
    std::string all;
    for (const Shape& s : Shapes()) {
        const auto number = [&](const char* group, int i) { return "|" + std::string(group) + std::to_string(s.v[i]); };
        const bool isLine = s.kind == Shape::kLineShape, isArc = s.kind == Shape::kArcShape;
        const bool isCircle = isArc && s.v[3] == 0 && s.v[4] == 360;
        all += std::string("0 ") +
               (isLine     ? "LINE"
                : isCircle ? "CIRCLE"
                : isArc    ? "ARC"
                           : "POINT") +
               "|6 " + (s.pen < 7 ? kTypes[s.pen] : "BYLAYER") + number("10 ", 0) + number("20 ", 1);
        if (isLine) all += number("11 ", 2) + number("21 ", 3);
        if (isArc) all += number("40 ", 2) + number("50 ", 3) + number("51 ", 4);
        all += "|";
    }
    for (int i = 0; i < 20; ++i) {
        all += "0 TEXT|40 3|1 %%d" + std::string(1, static_cast<char>('A' + i)) + "|10 " + std::to_string(50 + i % 4) +
               "|20 " + std::to_string(40 - i) + "|72 " + std::to_string(i / 5) + "|73 " + std::to_string(i % 5) +
               (i == 6 ? "|41 .5|50 90|" : "|");
    }
    return all + "0 TEXT|40 3|1 below|10 70|20 40|73 -99999999999";
}

struct Format {
    const char* name;
    Decoder decode;
    std::string file;
};
std::vector<Format> EveryFormat() {
    return {
        {"native", DecodeNative, NativeFile(kEditionA, kWidth, kHeight, NativeRecords())},
        {"backup", DecodeBackup, BackupFile(kWidth, kHeight, BackupRecords())},
        {"text", DecodeTextDrawing, TextLines()},
        {"dxf", DecodeDxf, DxfDrawing(kWidth, kHeight, DxfEntities())},
    };
}

// The sheet as it is, with bands beside it, and with bands above and below.
constexpr struct {
    const char* name;
    bool frames;
    int width, height;
} kLooks[] = {
    {"texts", false, 96, 48}, {"texts, wide", false, 40, 16}, {"frames", true, 96, 48}, {"frames, high", true, 32, 20}};

std::vector<std::pair<std::string, std::string>> Pictures() {
    std::vector<std::pair<std::string, std::string>> pictures;
    for (const Format& format : EveryFormat()) {
        for (const auto& look : kLooks) {
            pictures.emplace_back(std::string(format.name) + ", " + look.name,
                                  PlotOf(format.decode, format.file, look.width, look.height, look.frames));
        }
    }
    return pictures;
}

}  // namespace

TEST(Formats, Pictures) {
    for (const auto& [name, picture] : Pictures())
        EXPECT_EQ(picture, KeptPicture(name)) << "[" << name << "]\n" << picture;
}
