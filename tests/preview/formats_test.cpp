// One drawing that holds every element, in every format, kept as pictures in both modes and two sizes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <tuple>

#include "preview/formats/backup.h"
#include "preview/formats/dxf.h"
#include "preview/formats/native.h"
#include "preview/formats/text.h"
#include "support/cases.h"
#include "support/drawings.h"
#include "support/samples.h"

namespace {

constexpr int kWidth = 96, kHeight = 48;  // of the sheet

// The drawing as text: a line for each element, of which the other formats are made too.
std::string TextLines() { return ReadWholeFile(CheckoutFolder() + "/tests/preview/every_element.exf"); }

struct Shape {
    char kind = 0;  // 'P', 'L' or 'A'
    double v[5] = {};
    unsigned pen = 0, first = 0, second = 0;  // end marks: 1 arrowhead, 2 dot
};

// The renderer's marks, which a text drawing numbers the other way round.
unsigned MarkOf(unsigned fileMark) { return fileMark == 1 ? 2 : fileMark == 2 ? 1 : fileMark; }

std::vector<Shape> Shapes() {
    std::vector<Shape> shapes;
    std::istringstream lines(TextLines());
    for (std::string line; std::getline(lines, line);) {
        Shape s;
        const int read =
            std::sscanf(line.c_str(), "G%c 1,%lf,%lf,%lf,%lf,%lf", &s.kind, s.v, s.v + 1, s.v + 2, s.v + 3, s.v + 4);
        if (read < 3 || s.kind == 'T') continue;
        const unsigned long word = std::strtoul(line.c_str() + line.rfind(',') + 1, nullptr, 16);
        s.pen = word & 15;
        s.first = MarkOf(word >> 4 & 7);
        s.second = MarkOf(word >> 7 & 7);
        shapes.push_back(s);
    }
    return shapes;
}

std::string Records() {
    std::string records;
    for (const Shape& s : Shapes()) {
        const unsigned word = s.pen << 4 | s.first << 8 | s.second << 11;
        switch (s.kind) {
            case 'P': records += PointRecord(s.v[0], s.v[1]); break;
            case 'L': records += LineRecord(s.v[0], s.v[1], s.v[2], s.v[3], word); break;
            default: records += ArcRecord(s.v[0], s.v[1], s.v[2], s.v[3], s.v[4], word); break;
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
    std::string entities = TextBlock("preview/dxf.txt", "every element, and every justification of a text");
    std::replace(entities.begin(), entities.end(), '\n', '|');
    return entities;
}

}  // namespace

// The sheet as it is, with bands beside it, and with bands above and below.
TEST(Formats, Pictures) {
    const std::tuple<std::string, Decoder, std::string> formats[] = {
        {"native", DecodeNative, NativeFile(kEditionA, kWidth, kHeight, NativeRecords())},
        {"backup", DecodeBackup, BackupFile(kWidth, kHeight, BackupRecords())},
        {"text", DecodeTextDrawing, TextLines() + "GT 60,38,4,3,0,30,0,0,'\x83\x5c'\n"},
        {"dxf", DecodeDxf, DxfDrawing(kWidth, kHeight, DxfEntities())},
    };
    const std::tuple<std::string, bool, int, int> looks[] = {{"texts", false, 96, 48},
                                                             {"texts, wide", false, 40, 16},
                                                             {"frames", true, 96, 48},
                                                             {"frames, high", true, 32, 20}};
    for (const auto& [format, decode, file] : formats) {
        for (const auto& [look, frames, width, height] : looks) {
            const std::string name = format + ", " + look, picture = PlotOf(decode, file, width, height, frames);
            EXPECT_EQ(picture, KeptPicture(name)) << "[" << name << "]\n" << picture;
        }
    }
}
