// One element of a drawing as strokes of pixels: end marks, the rules of short and flat arcs, where a text stands.
// Knows no Windows; who draws the strokes is the target's business.
#pragma once

#include <cstddef>
#include <cstdint>

#include "preview/drawing/element.h"
#include "preview/drawing/view.h"

// A line of text at its place. Sizes are pixels.
struct TextStroke {
    PixelPoint at;            // its upper left corner, before it is turned about that corner
    std::int32_t height;      // of the characters, 2 to kMaxTextPixels
    std::int32_t width;       // of one half-width character, 2 to kMaxTextPixels
    std::int32_t extra;       // between two characters
    std::int32_t escapement;  // tenths of a degree, counter-clockwise
    const char* text;
    std::size_t length;
};

// What draws strokes, in black: a device context, a bitmap's bits, a recorder. The functions get the record back, which
// is the base of the record of whoever implements them. Points lie within +-2^27; a stroke whose box misses the canvas
// is not asked for, and what of it lies outside is the target's to clip. A pen is one of the canvas's (see kPenCount);
// pixels and texts need none.
struct StrokeTarget {
    void (*pixel)(StrokeTarget& target, PixelPoint at) = nullptr;
    // One pixel wide; the last pixel is left out.
    void (*line)(StrokeTarget& target, unsigned pen, PixelPoint from, PixelPoint to) = nullptr;
    // Counter-clockwise along the circle, from the ray through `from` to the ray through `to`; the whole circle when
    // the two are one. The circle's box is centre - radius to centre + radius, right and bottom edges outside; 0 <
    // radius < 32767.
    void (*arc)(StrokeTarget& target, unsigned pen, PixelPoint centre, std::int32_t radius, PixelPoint from,
                PixelPoint to) = nullptr;
    // The lines between the points, a dash pattern going on from one to the next.
    void (*polyline)(StrokeTarget& target, unsigned pen, const PixelPoint* points, std::size_t count) = nullptr;
    // What an odd number of outlines encloses (an outline inside another is an island), without a line around it.
    void (*area)(StrokeTarget& target, const PixelPoint* points, const std::size_t* counts,
                 std::size_t outlines) = nullptr;
    // A closed outline, filled and drawn.
    void (*polygon)(StrokeTarget& target, unsigned pen, const PixelPoint* corners, std::size_t count) = nullptr;
    // A filled circle in the box centre - radius to centre + radius + 1; radius >= 2.
    void (*dot)(StrokeTarget& target, unsigned pen, PixelPoint centre, std::int32_t radius) = nullptr;
    void (*text)(StrokeTarget& target, const TextStroke& text) = nullptr;
};

// A larger text is not drawn: what its font costs the system grows with the square of its height.
constexpr std::int32_t kMaxTextPixels = 4096;

// Draws one element: its strokes go to the target. Clipped line ends are written back. Kinds that are none draw
// nothing.
void DrawElement(StrokeTarget& target, const ViewTransform& view, PreviewPrimitive& element, unsigned pen);

// One arrowhead or dot of `size` drawing units whose body lies along `angleDegrees`.
void DrawEndMark(StrokeTarget& target, unsigned pen, const ViewTransform& view, std::uint32_t code, double x, double y,
                 double angleDegrees, double size);
