#include "preview/drawing/text_placement.h"

#include <cmath>

static void RotateAbout(double centreX, double centreY, double angleDegrees, double* x, double* y) {
    const double radians = angleDegrees * (3.14159265358979323846 / 180);
    const double dx = *x - centreX, dy = *y - centreY;
    *x = centreX + dx * std::cos(radians) - dy * std::sin(radians);
    *y = centreY + dx * std::sin(radians) + dy * std::cos(radians);
}

static bool IsJustification(int value) { return value >= 0 && value <= 2; }

void SetPlacedText(PreviewPrimitive* primitive, LastText* last, const TextPlacement& place, double cellWidth,
                   double spacing, const char* text, bool asFrame) {
    if (asFrame) return SetPlacedFrame(primitive, last, place);
    if (IsJustification(place.horizontal)) last->anchorX = place.x - place.length * place.horizontal / 2;
    if (IsJustification(place.vertical)) last->anchorY = place.y + place.height * (2 - place.vertical) / 2;
    RotateAbout(place.x, place.y, place.angleDegrees, &last->anchorX, &last->anchorY);
    primitive->SetText(last->anchorX, last->anchorY, place.height, cellWidth, spacing, place.angleDegrees, text);
}

void SetPlacedFrame(PreviewPrimitive* primitive, LastText* last, const TextPlacement& place) {
    if (IsJustification(place.horizontal)) {
        last->minX = place.x - place.length * place.horizontal / 2;
        last->maxX = place.x + place.length * (2 - place.horizontal) / 2;
    }
    if (IsJustification(place.vertical)) {
        last->minY = place.y - place.height * place.vertical / 2;
        last->maxY = place.y + place.height * (2 - place.vertical) / 2;
    }
    primitive->SetFrame(last->minX, last->minY, last->maxX, last->maxY, place.x, place.y, place.angleDegrees);
}
