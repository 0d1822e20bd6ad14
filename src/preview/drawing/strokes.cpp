#include "preview/drawing/strokes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "kit/numbers.h"

static constexpr double kPi = 3.14159265358979323846;
static constexpr std::int32_t kMaxRadius = 32766;  // GDI draws no larger arc

static double ToRadians(double degrees) { return degrees * (kPi / 180); }

// ---- What is handed on

// GDI's device space has 27 bits and a sign. Nothing that reaches beyond it is handed on: not every GDI survives its
// own sums there.
static bool IsInDeviceSpace(PixelPoint point) {
    constexpr std::int32_t kLimit = 1 << 27;
    return point.x > -kLimit && point.x < kLimit && point.y > -kLimit && point.y < kLimit;
}

// Whether a box that reaches so far around its middle meets the canvas.
static bool IsSeen(const ViewTransform& view, PixelPoint middle, std::int64_t reach) {
    return middle.x + reach >= view.canvasLeft && middle.x - reach < view.canvasRight &&
           middle.y + reach >= view.canvasTop && middle.y - reach < view.canvasBottom;
}

// Whether the box around the points meets the canvas.
template <std::size_t N>
static bool IsSeen(const ViewTransform& view, const PixelPoint (&points)[N]) {
    const auto [left, right] = std::minmax_element(points, points + N, [](auto a, auto b) { return a.x < b.x; });
    const auto [top, bottom] = std::minmax_element(points, points + N, [](auto a, auto b) { return a.y < b.y; });
    return right->x >= view.canvasLeft && left->x < view.canvasRight && bottom->y >= view.canvasTop &&
           top->y < view.canvasBottom;
}

static void StrokePixel(StrokeTarget& target, const ViewTransform& view, PixelPoint at) {
    if (IsSeen(view, at, 0)) target.pixel(target, at);
}

static void StrokeLine(StrokeTarget& target, unsigned pen, const ViewTransform& view, PixelPoint from, PixelPoint to) {
    if (!IsInDeviceSpace(from) || !IsInDeviceSpace(to)) return;
    if (from.x == to.x && from.y == to.y) return;  // the last pixel is left out: there is none
    if (IsSeen(view, {from, to})) target.line(target, pen, from, to);
}

// ---- End marks

static bool IsEndMark(std::uint32_t code) { return code == kMarkArrow || code == kMarkDot; }

// False for most words: those of elements without marks, and what an earlier element's number has left in their place.
static bool HasEndMark(std::uint32_t marks) { return IsEndMark(marks & 0xFFFF) || IsEndMark(marks >> 16); }

// End marks grow with the visible window's diagonal.
static double EndMarkSize(const ViewTransform& view) {
    return 0.015 * std::hypot(view.worldMaxX - view.worldMinX, view.worldMaxY - view.worldMinY);
}

static void DrawArrowhead(StrokeTarget& target, unsigned pen, const ViewTransform& view, double x, double y,
                          double angleDegrees, double size) {
    const double along = size * 0.965925826;   // cos 15 degrees
    const double across = size * 0.258819045;  // sin 15 degrees
    const double cosine = std::cos(ToRadians(angleDegrees)), sine = std::sin(ToRadians(angleDegrees));
    const PixelPoint corners[] = {
        MapPoint(view, x + along * cosine - across * sine, y + along * sine + across * cosine),
        MapPoint(view, x, y),
        MapPoint(view, x + along * cosine + across * sine, y + along * sine - across * cosine),
    };
    if (std::all_of(corners, corners + 3, IsInDeviceSpace) && IsSeen(view, corners)) {
        target.polygon(target, pen, corners, 3);
    }
}

static void DrawDot(StrokeTarget& target, unsigned pen, const ViewTransform& view, double x, double y, double size) {
    const std::int32_t radius = std::max(2, LowInt32(MapLength(view, size * 0.5)));
    const PixelPoint centre = MapPoint(view, x, y);
    if (!IsInDeviceSpace(centre) || radius > kMaxRadius) return;
    if (IsSeen(view, centre, radius)) target.dot(target, pen, centre, radius);
}

// Brings an end mark's direction into 0 up to 360 degrees.
static double NormalizeDegrees(double degrees) {
    std::int64_t turns = TruncToInt64(degrees / 360);
    if (degrees < 0 && turns != INT64_MIN) --turns;
    return degrees - static_cast<double>(turns) * 360;
}

void DrawEndMark(StrokeTarget& target, unsigned pen, const ViewTransform& view, std::uint32_t code, double x, double y,
                 double angleDegrees, double size) {
    if (code == kMarkArrow) DrawArrowhead(target, pen, view, x, y, NormalizeDegrees(angleDegrees), size);
    if (code == kMarkDot) DrawDot(target, pen, view, x, y, size);
}

// ---- Elements

static void DrawPoint(StrokeTarget& target, const ViewTransform& view, double x, double y) {
    if (PointInWindow(view, x, y)) StrokePixel(target, view, MapPoint(view, x, y));
}

static void DrawLine(StrokeTarget& target, unsigned pen, const ViewTransform& view, const LineElement& line) {
    StrokeLine(target, pen, view, MapPoint(view, line.x1, line.y1), MapPoint(view, line.x2, line.y2));
    if (!HasEndMark(line.marks)) return;
    const double size = EndMarkSize(view);
    const double angle = std::atan2(line.y2 - line.y1, line.x2 - line.x1) * (180 / kPi);
    DrawEndMark(target, pen, view, line.marks & 0xFFFF, line.x1, line.y1, angle, size);
    DrawEndMark(target, pen, view, line.marks >> 16, line.x2, line.y2, angle + 180, size);
}

// Deliberate: the quotient is an unsigned 32-bit number, so a negative angle is thrown far out of range; its sine and
// cosine stay right. Mended, an arc that begins below 0 degrees and ends in the pixel where it begins would no longer
// be a whole circle, and one that only ends below 0 degrees no longer a straight line.
static double NormalizeArcAngle(double degrees) {
    auto turns = static_cast<std::uint32_t>(LowInt32(TruncToInt64(degrees / 360)));
    if (degrees < 0) --turns;
    return degrees - turns * 360.0;
}

static void DrawArc(StrokeTarget& target, unsigned pen, const ViewTransform& view, const ArcElement& arc) {
    const double start = NormalizeArcAngle(arc.startDegrees);
    const double end = NormalizeArcAngle(arc.endDegrees);
    const double sweep = start >= end ? end + 360 - start : end - start;

    const double startX = arc.x + arc.radius * std::cos(ToRadians(start));
    const double startY = arc.y + arc.radius * std::sin(ToRadians(start));
    const double endX = arc.x + arc.radius * std::cos(ToRadians(end));
    const double endY = arc.y + arc.radius * std::sin(ToRadians(end));
    const PixelPoint centre = MapPoint(view, arc.x, arc.y);
    const PixelPoint from = MapPoint(view, startX, startY);
    const PixelPoint to = MapPoint(view, endX, endY);
    const std::int32_t radius = LowInt32(MapLength(view, arc.radius));

    const bool fullTurn = !(sweep < 360);
    if (radius == 0 || (from.x == to.x && from.y == to.y && !fullTurn)) return StrokePixel(target, view, from);
    const bool isShort = static_cast<std::uint32_t>(radius) * ToRadians(sweep) <= 12.0 && !fullTurn;
    if (isShort || radius < 0 || radius > kMaxRadius) return StrokeLine(target, pen, view, from, to);
    if (!IsInDeviceSpace(centre) || !IsInDeviceSpace(from) || !IsInDeviceSpace(to)) return;
    if (IsSeen(view, centre, radius)) target.arc(target, pen, centre, radius, from, to);
    if (!HasEndMark(arc.marks)) return;
    const double size = EndMarkSize(view);
    DrawEndMark(target, pen, view, arc.marks & 0xFFFF, startX, startY, start + 90, size);
    DrawEndMark(target, pen, view, arc.marks >> 16, endX, endY, end - 90, size);
}

static void DrawFrame(StrokeTarget& target, unsigned pen, const ViewTransform& view, const FrameElement& frame) {
    const double xs[] = {frame.x1, frame.x1, frame.x2, frame.x2}, ys[] = {frame.y1, frame.y2, frame.y2, frame.y1};
    const double cosine = std::cos(ToRadians(frame.angleDegrees)), sine = std::sin(ToRadians(frame.angleDegrees));
    PixelPoint corners[4];
    for (int i = 0; i < 4; ++i) {
        const double x = xs[i] - frame.centreX, y = ys[i] - frame.centreY;
        corners[i] = frame.angleDegrees == 0
                         ? MapPoint(view, xs[i], ys[i])
                         : MapPoint(view, frame.centreX + x * cosine - y * sine, frame.centreY + x * sine + y * cosine);
    }
    for (int i = 0; i < 4; ++i) StrokeLine(target, pen, view, corners[i], corners[(i + 1) % 4]);
}

// A bound of how far a text reaches from its corner, whatever its angle: no character of any face is taken to be wider
// than four half-width ones or two heights, and none higher than two.
static std::int64_t ReachOf(const TextStroke& text) {
    const std::int64_t cell = std::max(4 * text.width, 2 * text.height) + std::abs(std::int64_t{text.extra});
    return std::int64_t{2} * text.height + static_cast<std::int64_t>(text.length) * cell;
}

static void DrawTextElement(StrokeTarget& target, const ViewTransform& view, const TextElement& text) {
    const std::int64_t height = MapLength(view, text.height), width = MapLength(view, text.width);
    if (height < 2 || width < 2 || height > kMaxTextPixels || width > kMaxTextPixels) return;
    const TextStroke stroke = {
        MapPoint(view, text.x, text.y),
        static_cast<std::int32_t>(height),
        static_cast<std::int32_t>(width),
        LowInt32(MapLength(view, text.spacing)),
        TruncToInt32(text.angleDegrees * 10),
        text.text,
        strnlen(text.text, sizeof(PreviewPrimitive::g) - 1),
    };
    if (!IsInDeviceSpace(stroke.at) || stroke.length == 0 || !IsSeen(view, stroke.at, ReachOf(stroke))) return;
    target.text(target, stroke);
}

void DrawElement(StrokeTarget& target, const ViewTransform& view, PreviewPrimitive& element, unsigned pen) {
    switch (element.kind) {
        case kPoint: return DrawPoint(target, view, element.a, element.b);
        case kLine:
            if (!ClipSegmentToWindow(view, &element.a, &element.b, &element.c, &element.d)) return;
            return DrawLine(target, pen, view, LineOf(element));
        case kArc: return DrawArc(target, pen, view, ArcOf(element));
        case kFrame: return DrawFrame(target, pen, view, FrameOf(element));
        case kText: return DrawTextElement(target, view, TextOf(element));
        default: return;
    }
}
