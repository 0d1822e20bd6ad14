// One drawable element: a point, line, arc, frame or text. Knows no Windows.
//
// Lengths and coordinates are drawing units, y upward; angles are degrees, counter-clockwise from the x axis.
#pragma once

#include <cstdint>

enum PrimitiveKind : std::uint32_t { kPoint = 0, kLine = 1, kArc = 2, kFrame = 3, kText = 4 };

// Pens of a canvas: 0 and 1 solid, 2 dash, 3 dash-dot, 4 dash-dot-dot, 5 dot, 6 every other pixel, 7 to 15 solid.
constexpr int kPenCount = 16;
constexpr int kTextPen = 6;

// Eight bytes that hold a double for one kind of element and, in their low half, an end-mark word for another.
struct Slot {
    std::uint64_t bits = 0;
    double AsDouble() const;
    void Set(double value);
    std::uint32_t EndMarks() const { return static_cast<std::uint32_t>(bits); }
    void SetEndMarks(std::uint32_t marks) { bits = (bits & 0xFFFFFFFF00000000u) | marks; }
};

// One element. A decoder keeps one record for its whole run, zero at first, and fills what the element's kind needs.
//
// What a kind does not set keeps what an earlier element left there, across kinds too; that is why the fields overlap
// and are not a record for each kind.
//
//          point  line       arc             frame              text
//   a, b   x, y   x1, y1     centre          x1, y1             anchor (upper left corner)
//   c, d          x2, y2     radius, start   x2, y2             height, character width
//   e             end marks  end angle       rotation centre x  space between characters
//   f                        end marks       rotation centre y  angle
//   g                                        rotation angle     text
struct PreviewPrimitive {
    std::uint32_t kind = kPoint;
    double a = 0, b = 0, c = 0, d = 0;
    Slot e, f;
    char g[256] = {};  // the text, ended by a zero; or, in the first 8 bytes, a double
    double FrameAngle() const;

    void SetPoint(double x, double y);
    void SetLine(double x1, double y1, double x2, double y2);                                // leaves the end marks
    void SetArc(double x, double y, double radius, double startDegrees, double endDegrees);  // leaves the end marks
    void SetFrame(double x1, double y1, double x2, double y2, double centreX, double centreY, double angleDegrees);
    void SetText(double x, double y, double height, double width, double spacing, double angleDegrees,
                 const char* text);  // at most 255 bytes of it
    void SetLineMarks(std::uint32_t marks) { e.SetEndMarks(marks); }
    void SetArcMarks(std::uint32_t marks) { f.SetEndMarks(marks); }
};

// An end-mark word: the mark at the first point in the low half, at the second in the high half.
enum EndMark : std::uint32_t { kMarkNone = 0, kMarkArrow = 1, kMarkDot = 2 };
constexpr std::uint32_t EndMarkWord(std::uint32_t first, std::uint32_t second) { return (second << 16) | first; }

// An element's fields by the names that they have for its kind.
struct LineElement {
    double x1, y1, x2, y2;
    std::uint32_t marks;
};
struct ArcElement {
    double x, y, radius, startDegrees, endDegrees;
    std::uint32_t marks;
};
struct FrameElement {
    double x1, y1, x2, y2, centreX, centreY, angleDegrees;
};
struct TextElement {
    double x, y, height, width, spacing, angleDegrees;
    const char* text;  // the primitive's own
};
inline LineElement LineOf(const PreviewPrimitive& p) { return {p.a, p.b, p.c, p.d, p.e.EndMarks()}; }
inline ArcElement ArcOf(const PreviewPrimitive& p) { return {p.a, p.b, p.c, p.d, p.e.AsDouble(), p.f.EndMarks()}; }
inline FrameElement FrameOf(const PreviewPrimitive& p) {
    return {p.a, p.b, p.c, p.d, p.e.AsDouble(), p.f.AsDouble(), p.FrameAngle()};
}
inline TextElement TextOf(const PreviewPrimitive& p) {
    return {p.a, p.b, p.c, p.d, p.e.AsDouble(), p.f.AsDouble(), p.g};
}
