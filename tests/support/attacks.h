// Files that are made to cost: each a function that writes one of about a given size. The tests try them small,
// kwbench measures how their cost grows.
#pragma once

#include <cstddef>
#include <string>

#include "support/checked_canvas.h"

struct Attack {
    const char* name;
    const char* extension;  // which its format goes by
    Decoder decode;
    std::string (*write)(std::size_t size);
    StrokeCounts drawn;  // of 200,000 bytes, on a canvas of 300 x 200 pixels
};

extern const Attack kAttacks[];
extern const std::size_t kAttackCount;
