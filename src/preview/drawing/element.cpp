#include "preview/drawing/element.h"

#include <cstring>

double Slot::AsDouble() const {
    double value;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

void Slot::Set(double value) { std::memcpy(&bits, &value, sizeof(bits)); }

double PreviewPrimitive::FrameAngle() const {
    double degrees;
    std::memcpy(&degrees, g, sizeof(degrees));
    return degrees;
}

void PreviewPrimitive::SetPoint(double x, double y) {
    kind = kPoint;
    a = x, b = y;
}

void PreviewPrimitive::SetLine(double x1, double y1, double x2, double y2) {
    kind = kLine;
    a = x1, b = y1, c = x2, d = y2;
}

void PreviewPrimitive::SetArc(double x, double y, double radius, double startDegrees, double endDegrees) {
    kind = kArc;
    a = x, b = y, c = radius, d = startDegrees;
    e.Set(endDegrees);
}

void PreviewPrimitive::SetFrame(double x1, double y1, double x2, double y2, double centreX, double centreY,
                                double angleDegrees) {
    kind = kFrame;
    a = x1, b = y1, c = x2, d = y2;
    e.Set(centreX);
    f.Set(centreY);
    std::memcpy(g, &angleDegrees, sizeof(angleDegrees));
}

void PreviewPrimitive::SetText(double x, double y, double height, double width, double spacing, double angleDegrees,
                               const char* text) {
    kind = kText;
    a = x, b = y, c = height, d = width;
    e.Set(spacing);
    f.Set(angleDegrees);
    const std::size_t length = strnlen(text, sizeof(g) - 1);
    std::memcpy(g, text, length);
    g[length] = '\0';
}
