// From drawing units to pixels: the view transform, the one drawable record, and the call that draws it.
//
// Lengths and coordinates are drawing units, y upward; angles are degrees, counter-clockwise from the x axis. Pixels
// are 32-bit, y downward. Everything is drawn in black on white.
#pragma once

#include <windows.h>

#include <cstdint>

#include "kit/handles.h"

// Extents of a drawing.
struct WorldRect {
    double minX, minY, maxX, maxY;
};

struct ViewTransform {
    double worldMinX, worldMinY, worldMaxX, worldMaxY;  // the visible window; points and lines are clipped to it
    std::int32_t canvasLeft, canvasTop, canvasRight, canvasBottom;
    double scaleX, scaleY;  // pixels per drawing unit
};

enum PrimitiveKind : std::uint32_t { kPoint = 0, kLine = 1, kArc = 2, kFrame = 3, kText = 4 };

// Eight bytes that hold a double for one kind of element and, in their low half, an end-mark word for another.
struct Slot {
    std::uint64_t bits = 0;
    double AsDouble() const;
    void Set(double value);
    std::uint32_t EndMarks() const { return static_cast<std::uint32_t>(bits); }
    void SetEndMarks(std::uint32_t marks) { bits = (bits & 0xFFFFFFFF00000000u) | marks; }
};

// One element. A reader keeps one record for its whole run, zero at first, and fills what the element's kind needs.
//
// Deliberate: what a kind does not set keeps what an earlier element left there, across kinds too; that is why the
// fields overlap and are not a record for each kind.
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
};

// An end-mark word: the mark at the first point in the low half, at the second in the high half.
enum EndMark : std::uint32_t { kMarkNone = 0, kMarkArrow = 1, kMarkDot = 2 };
constexpr std::uint32_t EndMarkWord(std::uint32_t first, std::uint32_t second) { return (second << 16) | first; }

// The sheet that is assumed until a drawing states its extents: A3 in millimetres.
constexpr WorldRect kDefaultSheet = {0, 0, 420, 297};

// Fits the extents into the target without a margin, centred on the axis that has room left. Extents or a target
// without area give a transform that draws nothing harmful.
void FitViewTransform(const WorldRect& extents, const RECT& target, ViewTransform* out);

POINT MapPoint(const ViewTransform& transform, double x, double y);

bool PointInWindow(const ViewTransform& transform, double x, double y);

// Clips a segment to the visible window in at most two passes; false when nothing of it can be seen. Deliberate: after
// the second pass the segment is taken as it stands, GDI clips what remains.
bool ClipSegmentToWindow(const ViewTransform& transform, double* x1, double* y1, double* x2, double* y2);

// One arrowhead or dot of `size` drawing units whose body lies along `angleDegrees`.
void DrawEndMark(HDC dc, const ViewTransform& transform, std::uint32_t code, double x, double y, double angleDegrees,
                 double size);

// A larger text is not drawn: only a part of one stroke could be seen, and its font would cost more memory than the
// drawing.
constexpr int kMaxTextPixels = 4096;

// The font of a run's last text, kept so that a like text need not make it again. It stays selected into the run's
// device context, so it must outlive that context.
struct TextFont {
    std::int32_t height = 0, width = 0, escapement = 0;  // pixels, pixels, tenths of a degree
    UniqueFont font;
};

// Draws one element with the pen that is selected into `dc`; clipped line ends are written back. Always 1.
// With `reuse` the font stays selected after the call; without, the call leaves nothing behind.
int DrawPreviewPrimitive(HDC dc, const ViewTransform& transform, PreviewPrimitive& primitive,
                         TextFont* reuse = nullptr);

// A white bitmap of the target's size with one line of text in its middle, for "Loading..." and "Not Preview"; colour
// with kRenderColor in `flags`, else monochrome. The caller owns it; null when it could not be made.
HBITMAP CreatePlaceholderBitmap(DWORD flags, const char* text, const RECT& target);
