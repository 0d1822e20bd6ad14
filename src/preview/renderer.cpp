#include "preview/renderer.h"

#include <cmath>
#include <cstring>

#include "frame/module.h"
#include "frame/services.h"
#include "kit/numbers.h"
#include "preview/canvas.h"
#include "resources/resource.h"

static constexpr double kPi = 3.14159265358979323846;

static double ToRadians(double degrees) { return degrees * (kPi / 180); }

// ---- The record

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

// ---- Mapping

void FitViewTransform(const WorldRect& extents, const RECT& target, ViewTransform* out) {
    double minX = extents.minX, minY = extents.minY, maxX = extents.maxX, maxY = extents.maxY;
    double width = maxX - minX, height = maxY - minY;
    const double pixelWidth = static_cast<double>(target.right) - target.left;
    const double pixelHeight = static_cast<double>(target.bottom) - target.top;
    if (width / pixelWidth > height / pixelHeight) {
        const double centre = (minY + maxY) / 2;
        height = width * pixelHeight / pixelWidth;
        minY = centre - height / 2;
        maxY = centre + height / 2;
    } else {
        const double centre = (minX + maxX) / 2;
        width = height * pixelWidth / pixelHeight;
        minX = centre - width / 2;
        maxX = centre + width / 2;
    }
    *out = {minX,
            minY,
            maxX,
            maxY,
            target.left,
            target.top,
            target.right,
            target.bottom,
            pixelWidth / width,
            pixelHeight / height};
}

// Deliberate: x and y are rounded by different terms, so that a drawing's lower edge falls onto the last row.
POINT MapPoint(const ViewTransform& view, double x, double y) {
    return {WrappingAdd(view.canvasLeft, TruncToInt32((x - view.worldMinX) * view.scaleX + 0.5)),
            WrappingSubtract(view.canvasBottom, TruncToInt32((y - view.worldMinY) * view.scaleY - 0.5))};
}

// A length in pixels; the horizontal scale serves all directions.
static std::int64_t MapLength(const ViewTransform& view, double length) {
    return TruncToInt64(length * view.scaleX + 0.5);
}

// ---- Clipping

static int OutCode(const ViewTransform& view, double x, double y) {
    int code = 0;
    if (x < view.worldMinX) code = 1;
    else if (x > view.worldMaxX) code = 2;
    if (y < view.worldMinY) code += 4;
    else if (y > view.worldMaxY) code += 8;
    return code;
}

bool PointInWindow(const ViewTransform& view, double x, double y) { return OutCode(view, x, y) == 0; }

// Moves one end of a segment along (dx, dy) onto the edge that its code names.
static void MoveToEdge(const ViewTransform& view, int code, double dx, double dy, double* x, double* y) {
    if (code & 3) {
        const double edge = code & 1 ? view.worldMinX : view.worldMaxX;
        *y += (edge - *x) * dy / dx;
        *x = edge;
    } else if (code & 12) {
        const double edge = code & 4 ? view.worldMinY : view.worldMaxY;
        *x += (edge - *y) * dx / dy;
        *y = edge;
    }
}

bool ClipSegmentToWindow(const ViewTransform& view, double* x1, double* y1, double* x2, double* y2) {
    for (int pass = 0; pass < 2; ++pass) {
        const int code1 = OutCode(view, *x1, *y1);
        const int code2 = OutCode(view, *x2, *y2);
        if (code1 & code2) return false;
        if (code1 == 0 && code2 == 0) return true;
        MoveToEdge(view, code1, *x2 - *x1, *y2 - *y1, x1, y1);
        MoveToEdge(view, code2, *x2 - *x1, *y2 - *y1, x2, y2);
    }
    // Both ends on one point outside give 0 / 0 above: there is nothing to draw.
    return !(std::isnan(*x1) || std::isnan(*y1) || std::isnan(*x2) || std::isnan(*y2));
}

// ---- Elements

// GDI's device space has 27 bits and a sign. Nothing that reaches beyond it is handed on: not every GDI survives its
// own sums there.
static bool IsInDeviceSpace(POINT point) {
    constexpr LONG kLimit = 1 << 27;
    return point.x > -kLimit && point.x < kLimit && point.y > -kLimit && point.y < kLimit;
}

static void DrawLineBetween(HDC dc, POINT from, POINT to) {
    if (!IsInDeviceSpace(from) || !IsInDeviceSpace(to)) return;
    if (from.x == to.x && from.y == to.y) return;  // GDI leaves the last pixel out: there is none
    MoveToEx(dc, from.x, from.y, nullptr);
    LineTo(dc, to.x, to.y);
}

constexpr std::int32_t kMaxRadius = 32766;  // GDI draws no larger arc

static bool IsEndMark(std::uint32_t code) { return code == kMarkArrow || code == kMarkDot; }

// False for most words: those of elements without marks, and what an earlier element's number has left in their place.
static bool HasEndMark(std::uint32_t marks) { return IsEndMark(marks & 0xFFFF) || IsEndMark(marks >> 16); }

// End marks grow with the visible window's diagonal.
static double EndMarkSize(const ViewTransform& view) {
    return 0.015 * std::hypot(view.worldMaxX - view.worldMinX, view.worldMaxY - view.worldMinY);
}

static void DrawArrowhead(HDC dc, const ViewTransform& view, double x, double y, double angleDegrees, double size) {
    const double along = size * 0.965925826;   // cos 15 degrees
    const double across = size * 0.258819045;  // sin 15 degrees
    const double cosine = std::cos(ToRadians(angleDegrees)), sine = std::sin(ToRadians(angleDegrees));
    const POINT corners[] = {
        MapPoint(view, x + along * cosine - across * sine, y + along * sine + across * cosine),
        MapPoint(view, x, y),
        MapPoint(view, x + along * cosine + across * sine, y + along * sine - across * cosine),
    };
    for (const POINT& corner : corners) {
        if (!IsInDeviceSpace(corner)) return;
    }
    Polygon(dc, corners, 3);
}

static void DrawDot(HDC dc, const ViewTransform& view, double x, double y, double size) {
    std::int32_t radius = LowInt32(MapLength(view, size * 0.5));
    if (radius < 2) radius = 2;
    const POINT centre = MapPoint(view, x, y);
    if (!IsInDeviceSpace(centre) || radius > kMaxRadius) return;
    const int right = centre.x + radius + 1;
    Chord(dc, centre.x - radius, centre.y - radius, right, centre.y + radius + 1, right, centre.y, right, centre.y);
}

// Brings an end mark's direction into 0 up to 360 degrees.
static double NormalizeDegrees(double degrees) {
    std::int64_t turns = TruncToInt64(degrees / 360);
    if (degrees < 0 && turns != INT64_MIN) --turns;
    return degrees - static_cast<double>(turns) * 360;
}

void DrawEndMark(HDC dc, const ViewTransform& view, std::uint32_t code, double x, double y, double angleDegrees,
                 double size) {
    if (code == kMarkArrow) DrawArrowhead(dc, view, x, y, NormalizeDegrees(angleDegrees), size);
    if (code == kMarkDot) DrawDot(dc, view, x, y, size);
}

static void DrawPoint(HDC dc, const ViewTransform& view, const PreviewPrimitive& point) {
    if (!PointInWindow(view, point.a, point.b)) return;
    const POINT at = MapPoint(view, point.a, point.b);
    SetPixelV(dc, at.x, at.y, RGB(0, 0, 0));
}

static void DrawLine(HDC dc, const ViewTransform& view, PreviewPrimitive& line) {
    if (!ClipSegmentToWindow(view, &line.a, &line.b, &line.c, &line.d)) return;
    DrawLineBetween(dc, MapPoint(view, line.a, line.b), MapPoint(view, line.c, line.d));
    const std::uint32_t marks = line.e.EndMarks();
    if (!HasEndMark(marks)) return;
    const double size = EndMarkSize(view);
    const double angle = std::atan2(line.d - line.b, line.c - line.a) * (180 / kPi);
    DrawEndMark(dc, view, marks & 0xFFFF, line.a, line.b, angle, size);
    DrawEndMark(dc, view, marks >> 16, line.c, line.d, angle + 180, size);
}

// Deliberate: the quotient is an unsigned 32-bit number, so a negative angle is thrown far out of range. Its sine and
// cosine stay right, but a sweep that begins with it counts as a full turn or more.
static double NormalizeArcAngle(double degrees) {
    auto turns = static_cast<std::uint32_t>(LowInt32(TruncToInt64(degrees / 360)));
    if (degrees < 0) --turns;
    return degrees - turns * 360.0;
}

static void DrawArc(HDC dc, const ViewTransform& view, const PreviewPrimitive& arc) {
    const double radius = arc.c;
    const double start = NormalizeArcAngle(arc.d);
    const double end = NormalizeArcAngle(arc.e.AsDouble());
    const double sweep = start >= end ? end + 360 - start : end - start;

    const double startX = arc.a + radius * std::cos(ToRadians(start)),
                 startY = arc.b + radius * std::sin(ToRadians(start));
    const double endX = arc.a + radius * std::cos(ToRadians(end)), endY = arc.b + radius * std::sin(ToRadians(end));
    const POINT centre = MapPoint(view, arc.a, arc.b);
    const POINT from = MapPoint(view, startX, startY);
    const POINT to = MapPoint(view, endX, endY);
    const std::int32_t pixels = LowInt32(MapLength(view, radius));

    const bool fullTurn = !(sweep < 360);
    if (pixels == 0 || (from.x == to.x && from.y == to.y && !fullTurn)) {
        SetPixelV(dc, from.x, from.y, RGB(0, 0, 0));
        return;
    }
    const bool isShort = static_cast<std::uint32_t>(pixels) * ToRadians(sweep) <= 12.0 && !fullTurn;
    if (isShort || pixels < 0 || pixels > kMaxRadius) {
        DrawLineBetween(dc, from, to);
        return;
    }
    if (!IsInDeviceSpace(centre) || !IsInDeviceSpace(from) || !IsInDeviceSpace(to)) return;
    Arc(dc, centre.x - pixels, centre.y - pixels, centre.x + pixels, centre.y + pixels, from.x, from.y, to.x, to.y);
    const std::uint32_t marks = arc.f.EndMarks();
    if (!HasEndMark(marks)) return;
    const double size = EndMarkSize(view);
    DrawEndMark(dc, view, marks & 0xFFFF, startX, startY, start + 90, size);
    DrawEndMark(dc, view, marks >> 16, endX, endY, end - 90, size);
}

static void DrawFrame(HDC dc, const ViewTransform& view, const PreviewPrimitive& frame) {
    const double xs[] = {frame.a, frame.a, frame.c, frame.c}, ys[] = {frame.b, frame.d, frame.d, frame.b};
    const double centreX = frame.e.AsDouble(), centreY = frame.f.AsDouble();
    const double angle = frame.FrameAngle();
    const double cosine = std::cos(ToRadians(angle)), sine = std::sin(ToRadians(angle));
    POINT corners[4];
    for (int i = 0; i < 4; ++i) {
        const double x = xs[i] - centreX, y = ys[i] - centreY;
        corners[i] = angle == 0 ? MapPoint(view, xs[i], ys[i])
                                : MapPoint(view, centreX + x * cosine - y * sine, centreY + x * sine + y * cosine);
    }
    for (int i = 0; i < 4; ++i) DrawLineBetween(dc, corners[i], corners[(i + 1) % 4]);
}

// `width` is that of one half-width character.
static UniqueFont MakeTextFont(std::int32_t height, std::int32_t width, std::int32_t escapement) {
    LOGFONTA font = {};
    font.lfHeight = -height;
    font.lfWidth = width;
    font.lfEscapement = escapement;
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
    CopyResString(IDS_TEXT_FACE, font.lfFaceName, sizeof(font.lfFaceName));
    return UniqueFont(CreateFontIndirectA(&font));
}

// Selects the font for a text, a new one only when the last one does not fit; false when there is none.
static bool SelectTextFont(HDC dc, std::int32_t height, std::int32_t width, std::int32_t escapement, TextFont* last) {
    if (last->font && last->height == height && last->width == width && last->escapement == escapement) return true;
    UniqueFont font = MakeTextFont(height, width, escapement);
    if (!font || !SelectObject(dc, font.get())) return false;
    last->font = std::move(font);  // the one before is no longer selected and goes
    last->height = height;
    last->width = width;
    last->escapement = escapement;
    return true;
}

static void DrawTextElement(HDC dc, const ViewTransform& view, const PreviewPrimitive& text, TextFont* font) {
    const std::int64_t height = MapLength(view, text.c);
    const std::int64_t width = MapLength(view, text.d);
    if (height < 2 || width < 2 || height > kMaxTextPixels || width > kMaxTextPixels) return;
    if (!SelectTextFont(dc, static_cast<std::int32_t>(height), static_cast<std::int32_t>(width),
                        TruncToInt32(text.f.AsDouble() * 10), font)) {
        return;
    }
    const POINT at = MapPoint(view, text.a, text.b);
    if (!IsInDeviceSpace(at)) return;
    const int previousExtra = SetTextCharacterExtra(dc, LowInt32(MapLength(view, text.e.AsDouble())));
    TextOutA(dc, at.x, at.y, text.g, static_cast<int>(strnlen(text.g, sizeof(text.g) - 1)));
    SetTextCharacterExtra(dc, previousExtra);
}

int DrawPreviewPrimitive(HDC dc, const ViewTransform& view, PreviewPrimitive& primitive, TextFont* reuse) {
    switch (primitive.kind) {
        case kPoint: DrawPoint(dc, view, primitive); break;
        case kLine: DrawLine(dc, view, primitive); break;
        case kArc: DrawArc(dc, view, primitive); break;
        case kFrame: DrawFrame(dc, view, primitive); break;
        case kText:
            if (reuse) {
                DrawTextElement(dc, view, primitive, reuse);
            } else {
                TextFont once;
                const Selection restore(dc, GetCurrentObject(dc, OBJ_FONT));
                DrawTextElement(dc, view, primitive, &once);
            }
            break;
        default: break;
    }
    return 1;
}
