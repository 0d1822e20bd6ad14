// A canvas that keeps nothing but holds what it is asked for against the promises of the strokes, and counts it.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "generate/attacks.h"
#include "preview/drawing/strokes.h"
#include "preview/formats/sink.h"

// Ends the program, as a sanitizer's finding does, when something does not hold.
void Require(bool holds);

struct CheckedCanvas : DrawingSink, StrokeTarget {
    explicit CheckedCanvas(const PixelRect& rect = {0, 0, 189, 126});
    PixelRect target;
    bool opened = false;
    std::uint32_t fitsLeft = ~0u, drawsLeft = ~0u;  // then there is nothing to draw on, or the run is cancelled
    std::atomic<std::int32_t> flag = 1;
    StrokeCounts counts = {};
    std::vector<PixelPoint> scratch;
};
