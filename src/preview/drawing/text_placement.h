// Where a justified text stands: the corner that it is drawn from, or the frame around it.
#pragma once

#include "preview/drawing/element.h"

// A text of one line as its drawing places it: `length` x `height` drawing units at (x, y), turned about that point.
struct TextPlacement {
    double x = 0, y = 0;
    double length = 0, height = 0;
    double angleDegrees = 0;
    int horizontal = 0;  // the point stands 0: at the text's left end, 1: in the middle, 2: at the right end
    int vertical = 0;    // 0: at the bottom, 1: in the middle, 2: at the top
};

// Where the last text stood. Deliberate: a justification that is none of the three leaves its axis as the text before
// has left it, after that text's rotation. Mended, drawings with such texts (group 72 from 3 up in DXF) would show them
// elsewhere.
struct LastText {
    double anchorX = 0, anchorY = 0;  // upper left corner, rotated
    double minX = 0, maxX = 0, minY = 0, maxY = 0;
};

// Makes the primitive a text of the given looks at its place, or the frame around it.
//   cellWidth  drawing units of one half-width character
void SetPlacedText(PreviewPrimitive* primitive, LastText* last, const TextPlacement& place, double cellWidth,
                   double spacing, const char* text, bool asFrame);
void SetPlacedFrame(PreviewPrimitive* primitive, LastText* last, const TextPlacement& place);
