// Drawings of any size, made from a seed: the same bytes at every run and on every machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Pseudo-random numbers, the same everywhere (the standard library's distributions are not).
struct Random {
    std::uint64_t state;
    std::uint32_t Next();
    std::uint32_t Below(std::uint32_t bound);  // 0 up to bound - 1
    double Between(double low, double high);
};

// The last one holds what only the full DXF reader knows.
enum class DrawingFormat { kDxf, kNative, kBackup, kText, kFullDxf };

// A bit of everything, circles of 5 to 200 pixels in a preview pane, or texts of four fonts by turns.
enum class Mix { kAll, kCircles, kTexts };

struct DrawingPlan {
    DrawingFormat format;
    std::size_t size, count;  // about so many bytes or so many elements, whichever comes first
    Mix mix = Mix::kAll;      // of all but kFullDxf
    std::uint64_t seed = 0x6B776472617721;
};
std::string MakeDrawing(const DrawingPlan& plan);
