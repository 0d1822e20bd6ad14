// Where a justified text begins.
#pragma once

#include <cmath>

// Rotates (x, y) about a centre.
inline void RotateAbout(double centreX, double centreY, double angleDegrees, double* x, double* y) {
    const double radians = angleDegrees * (3.14159265358979323846 / 180);
    const double dx = *x - centreX, dy = *y - centreY;
    *x = centreX + dx * std::cos(radians) - dy * std::sin(radians);
    *y = centreY + dx * std::sin(radians) + dy * std::cos(radians);
}

// A text of one line as its drawing places it: `length` x `height` drawing units at (x, y), turned about that point.
struct TextPlacement {
    double x = 0, y = 0;
    double length = 0, height = 0;
    double angleDegrees = 0;
    int horizontal = 0;  // the point stands 0: left, 1: in the middle, 2: right
    int vertical = 0;    // 0: at the bottom, 1: in the middle, 2: at the top
};

// A text's upper left corner in drawing units.
struct TextAnchor {
    double x = 0, y = 0;
};

// Moves the anchor to a text's upper left corner. Deliberate: a justification that is none of the three leaves its
// coordinate as the text before has left it.
inline void PlaceTextAnchor(const TextPlacement& text, TextAnchor* anchor) {
    if (text.horizontal >= 0 && text.horizontal <= 2) anchor->x = text.x - text.length * text.horizontal / 2;
    if (text.vertical >= 0 && text.vertical <= 2) anchor->y = text.y + text.height * (2 - text.vertical) / 2;
    RotateAbout(text.x, text.y, text.angleDegrees, &anchor->x, &anchor->y);
}
