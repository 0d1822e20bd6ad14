// Generated inputs: drawings in all formats, and folders of small files of many kinds. Fixed seeds, so every run and
// every machine measures the same bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "preview/reader.h"

// Pseudo-random numbers, the same everywhere (the standard library's distributions are not).
struct Random {
    std::uint64_t state;
    std::uint32_t Next();
    std::uint32_t Below(std::uint32_t bound);  // 0 up to bound - 1
    double Between(double low, double high);
};

// Writes a file; `file` is null once that has failed.
struct Writer {
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file;
    std::size_t size = 0;  // so far
    explicit Writer(const std::string& path);
    void Bytes(std::string_view bytes);
    // Of a DXF.
    void Pair(int code, std::string_view value);
    void Pair(int code, double value, int digits = 6);
    void Pairs(std::initializer_list<std::pair<int, const char*>> pairs);
    void Point(int code, double x, double y, int digits = 6);
    bool End();  // whether all has been written
};
bool WriteWholeFile(const std::string& path, std::string_view contents);

enum class EntityKind { kPoint, kLine, kArc, kCircle, kText };

// One generated entity; what its kind does not have is unused.
struct Entity {
    EntityKind kind = EntityKind::kLine;
    const char* lineType = nullptr;         // null: the file does not say
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;  // the point, the ends, the centre (first pair), a text's insertion point
    double size = 0;                        // radius or text height
    double startDegrees = 0, endDegrees = 0;
    double widthFactor = 1;
    int horizontal = 0, vertical = 0;  // justification of a text
    const char* text = "";
    int digits = 6;  // of a number, as it was typed or computed
};

constexpr std::uint64_t kDrawingSeed = 0x6B776472617721;

// What a drawing holds: a bit of everything, circles that fill the sheet, or texts of four fonts by turns.
enum class Mix { kAll, kCircles, kTexts };

// Yields a drawing's entities one after the other, the same sequence at every start from the same seed.
struct EntityStream {
    Random random;
    Mix mix = Mix::kAll;
    double penX = 0, penY = 0;  // where the contour that is being drawn has come to
    std::uint32_t contourLeft = 0;
    std::uint32_t textsLeft = 0;  // of the same size and angle
    std::uint32_t count = 0;
    Entity lastText = {};
    Entity Next();
};

enum class DrawingFormat { kDxf, kNative, kBackup, kText };
constexpr int kDrawingFormatCount = 4;

// A drawing that has been written.
struct Drawing {
    DrawingFormat format = DrawingFormat::kDxf;
    std::string path = {};
    Mix mix = Mix::kAll;
    std::uint64_t seed = kDrawingSeed;
    std::size_t size = 0;         // bytes
    std::size_t entityCount = 0;  // taken from the start of an EntityStream
};

// Writes a drawing of `drawing`'s format, mix and seed to its path and fills in the rest: so many entities, or until it
// has about `size` bytes, whichever comes first. Formats with a record count in front need `entityCount`. False when
// the file cannot be written.
bool WriteDrawing(std::size_t size, std::size_t entityCount, Drawing* drawing);

// What the library reads a format with, and the extension of its files, with the dot.
const PreviewFormat& FormatOf(DrawingFormat format);
const char* ExtensionOf(DrawingFormat format);

// Writes small files of all kinds, 1 to 4 KB each, into folders of so many below `folder`, which exists and ends with a
// backslash; returns their paths in a mixed order, fewer than `count` when one cannot be written.
std::vector<std::string> WriteSmallFiles(const std::string& folder, std::size_t count, std::size_t filesAFolder = 500);
