// Files that are made to cost: each a function that writes one of about a given size. The tests try them small,
// kwbench measures how their cost grows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "preview/formats/sink.h"

struct StrokeCounts {
    std::uint32_t pixels, lines, arcs, marks, texts;
    bool operator==(const StrokeCounts& other) const {
        return pixels == other.pixels && lines == other.lines && arcs == other.arcs && marks == other.marks &&
               texts == other.texts;
    }
};

struct Attack {
    const char* name;
    const char* extension;  // which its format goes by
    Decoder decode;
    std::string (*write)(std::size_t size);
    StrokeCounts drawn;  // of 200,000 bytes, on a canvas of 300 x 200 pixels
};

extern const Attack kAttacks[];
extern const std::size_t kAttackCount;
