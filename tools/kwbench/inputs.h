// Generated inputs: drawings in all formats, and folders of small files of many kinds. Fixed seeds, so every run and
// every machine measures the same bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "preview/drawing/element.h"
#include "preview/drawing/view.h"

// Pseudo-random numbers, the same everywhere (the standard library's distributions are not).
struct Random {
    std::uint64_t state;
    std::uint32_t Next();
    std::uint32_t Below(std::uint32_t bound);  // 0 up to bound - 1
    std::int64_t Between(std::int64_t low, std::int64_t high);
};

// A decimal number as the file holds it.
struct Decimal {
    std::int64_t units = 0;  // of the last place
    int places = 1;          // behind the decimal point, at most kDecimalPlaces
    double Value() const;    // what a correct conversion of its text gives
};
constexpr int kDecimalPlaces = 15;

enum class EntityKind { kPoint, kLine, kArc, kCircle, kText };

// One generated entity; what its kind does not have is unused.
struct Entity {
    EntityKind kind = EntityKind::kLine;
    const char* lineType = nullptr;  // null: the file does not say
    Decimal x1, y1, x2, y2;          // the point, the ends, the centre (first pair), or a text's insertion point
    Decimal size;                    // radius or text height
    Decimal startDegrees, endDegrees;
    Decimal widthFactor;
    bool hasAngle = false, hasWidthFactor = false;
    int horizontal = 0, vertical = 0;  // justification of a text
    const char* text = "";
};

constexpr std::uint64_t kDrawingSeed = 0x6B776472617721;

// Yields a drawing's entities one after the other, the same sequence at every start
// from the same seed.
struct EntityStream {
    Random random;
    std::int64_t penX = 0, penY = 0;  // where the contour that is being drawn has come to, in 1e-15 drawing units
    std::uint32_t contourLeft = 0;
    std::uint32_t textsLeft = 0;  // of the same size and angle
    Entity lastText;
    explicit EntityStream(std::uint64_t seed);
    Entity Next();
};

// The ASCII form of DXF, native, backup and text drawings.
enum class DrawingFormat { kDxf, kNative, kBackup, kText };
constexpr int kDrawingFormatCount = 4;

// A drawing that has been written.
struct Drawing {
    DrawingFormat format = DrawingFormat::kDxf;
    std::string path = {};
    std::uint64_t seed = kDrawingSeed;
    std::size_t size = 0;         // bytes
    std::size_t entityCount = 0;  // taken from the start of an EntityStream
    WorldRect extents = {};
};

// How formats other than DXF write an entity: the pen of its line type, a text's full-width character's width, and
// where its point stands.
int LineTypePen(const char* lineType);
Decimal FullWidthOf(const Entity& text);
int VerticalOf(const Entity& text);  // 0: at the bottom, 1: in the middle, 2: at the top

// Writes a drawing of `drawing`'s format and seed to its path and fills in the rest: so many entities, or until it has
// about `size` bytes, whichever comes first. Formats with a record count in front need `entityCount`. False when the
// file cannot be written.
bool WriteDrawing(std::size_t size, std::size_t entityCount, Drawing* drawing);

// The extension of a format's files, with the dot.
const char* ExtensionOf(DrawingFormat format);

// Writes small files of all kinds, 1 to 4 KB each, into `folder` (which ends with a backslash) and returns their paths
// in a mixed order; fewer than `count` when one cannot be written.
std::vector<std::string> WriteSmallFiles(const std::string& folder, std::size_t count);

// Writes `count` files of a few bytes into one folder and returns their names; fewer than `count` when one cannot be
// written.
std::vector<std::string> WriteListedFiles(const std::string& folder, std::size_t count);
