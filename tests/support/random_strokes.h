// Strokes of every kind for what draws them: the same for the same seed.
#pragma once

#include "preview/drawing/strokes.h"

// A stroke near a sheet of that size, whose points lie within `around` pixels of it or on a line or circle that comes
// there; all of it is moved by `offset`.
struct RandomStrokes {
    int width, height, around;
    PixelPoint offset = {0, 0};
    void Draw(StrokeTarget& to, unsigned pen, unsigned seed) const;
};
