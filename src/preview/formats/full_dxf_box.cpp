#include "preview/formats/full_dxf_box.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "preview/formats/full_dxf_geometry.h"

// ---- Texts

// Advances of the printable ASCII characters in hundredths of a capital's height, as common sans-serif faces have them.
static constexpr std::uint8_t kAdvances[] = {
    39, 49,  56, 103, 78,  124, 97,  34,  48,  48, 62, 103, 39,  46, 39, 41,  78,  78, 78, 78, 78, 78,  78,  78,
    78, 78,  42, 42,  103, 103, 103, 68,  133, 94, 94, 95,  102, 88, 82, 104, 102, 39, 48, 92, 77, 118, 102, 107,
    87, 107, 96, 88,  82,  101, 94,  133, 94,  88, 92, 48,  41,  48, 94, 68,  60,  82, 85, 74, 85, 82,  44,  85,
    82, 35,  38, 77,  35,  128, 82,  82,  85,  85, 54, 71,  50,  82, 77, 108, 77,  77, 70, 66, 42, 66,  103};
static_assert(sizeof(kAdvances) == 127 - 32);

static bool IsWide(char16_t c) { return c >= 0x1100 && (c < 0x1160 || c >= 0x2E80) && !(c >= 0xFF61 && c < 0xFFE0); }

double WidthOfText(const char16_t* text, std::size_t length, double height) {
    long long hundredths = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const char16_t c = text[i];
        hundredths += c >= 32 && c < 127 ? kAdvances[c - 32] : IsWide(c) ? 137 : 82;
    }
    return static_cast<double>(hundredths) * height / 100;
}

void FrameOfText(const UnicodeText& text, WorldPoint corners[4]) {
    const double width =
        text.fitWidth > 0 ? text.fitWidth : WidthOfText(text.text, text.length, text.height) * text.widthFactor;
    double left = -width * text.horizontal / 2, right = left + width;
    double bottom = 0;
    if (text.vertical == 1) bottom = text.height * kTextDescent;
    if (text.vertical == 2) bottom = -text.height / 2;
    if (text.vertical == 3) bottom = -text.height;
    double top = bottom + text.height;
    const double slant = std::tan(Radians(text.obliqueDegrees)) * text.height;
    const double mirrorX = text.backward ? -1 : 1, mirrorY = text.upsideDown ? -1 : 1;
    const double c = std::cos(Radians(text.angleDegrees)), s = std::sin(Radians(text.angleDegrees));
    const auto place = [&](double x, double y) -> WorldPoint {
        x *= mirrorX, y *= mirrorY;
        return {text.at.x + x * c - y * s, text.at.y + x * s + y * c};
    };
    corners[0] = place(left, bottom);
    corners[1] = place(right, bottom);
    corners[2] = place(right + slant, top);
    corners[3] = place(left + slant, top);
}

static void GrowTo(WorldRect* box, WorldPoint p) {
    box->minX = std::min(box->minX, p.x);
    box->minY = std::min(box->minY, p.y);
    box->maxX = std::max(box->maxX, p.x);
    box->maxY = std::max(box->maxY, p.y);
}

static WorldRect BoxOfPoints(const WorldPoint* points, std::size_t count) {
    WorldRect box = {points->x, points->y, points->x, points->y};
    for (std::size_t i = 1; i < count; ++i) GrowTo(&box, points[i]);
    return box;
}

WorldRect BoxOfText(const UnicodeText& text) {
    WorldPoint corners[4];
    FrameOfText(text, corners);
    return BoxOfPoints(corners, 4);
}

// ---- Elements

static WorldRect BoxOfCircle(const PreviewPrimitive& arc) {
    return {arc.a - arc.c, arc.b - arc.c, arc.a + arc.c, arc.b + arc.c};
}

static WorldRect BoxOfArc(const PreviewPrimitive& arc) {
    if (arc.d == 0 && arc.e.AsDouble() == 360) return BoxOfCircle(arc);
    const double start = Radians(arc.d), sweep = Radians(arc.e.AsDouble() - arc.d);
    const auto at = [&](double angle) -> WorldPoint {
        return {arc.a + arc.c * std::cos(angle), arc.b + arc.c * std::sin(angle)};
    };
    const double turn = sweep > 0 ? sweep : sweep + kTurn;
    const WorldPoint ends[] = {at(start), at(start + turn)};
    WorldRect box = BoxOfPoints(ends, 2);
    // The ends of the circle's axes that lie on the arc; all of them when it runs round more than once.
    const double quarter = kTurn / 4, first = std::ceil(start / quarter);
    if (!(turn < kTurn && std::fabs(first) < 1e9)) return BoxOfCircle(arc);
    for (auto axis = static_cast<std::int64_t>(first); static_cast<double>(axis) * quarter < start + turn; ++axis) {
        switch (axis & 3) {
            case 0: box.maxX = arc.a + arc.c; break;
            case 1: box.maxY = arc.b + arc.c; break;
            case 2: box.minX = arc.a - arc.c; break;
            default: box.minY = arc.b - arc.c; break;
        }
    }
    return box;
}

static void DrawInBox(DrawingSink& sink, PreviewPrimitive& element, unsigned) {
    auto& box = static_cast<BoxSink&>(sink);
    switch (element.kind) {
        case kPoint: box.Grow({element.a, element.b, element.a, element.b}); break;
        case kLine:
            box.Grow({std::min(element.a, element.c), std::min(element.b, element.d), std::max(element.a, element.c),
                      std::max(element.b, element.d)});
            break;
        case kArc:  // where even the circle changes nothing, its arc need not be measured
            if (box.Matters(BoxOfCircle(element))) box.Grow(BoxOfArc(element));
            else ++box.count;
            break;
        default: break;
    }
}

static void PathInBox(DrawingSink& sink, const Path& path, unsigned) {
    std::size_t points = 0;
    for (std::size_t i = 0; i < path.outlines; ++i) points += path.counts[i];
    if (points) static_cast<BoxSink&>(sink).Grow(BoxOfPoints(path.points, points));
}

static void TextInBox(DrawingSink& sink, const UnicodeText& text) { static_cast<BoxSink&>(sink).Grow(BoxOfText(text)); }

BoxSink::BoxSink() : DrawingSink() {
    fit = [](DrawingSink&, const WorldRect&, FitMode) { return true; };
    draw = DrawInBox;
    path = PathInBox;
    unicodeText = TextInBox;
    Clear();
}

// ---- Strays

// How far an element reaches to a side: 0 left, 1 right, 2 bottom, 3 top. Larger is farther.
static double Reach(const WorldRect& element, int side) {
    switch (side) {
        case 0: return -element.minX;
        case 1: return element.maxX;
        case 2: return -element.minY;
        default: return element.maxY;
    }
}

// Its end that is nearer to the rest.
static double NearEnd(const WorldRect& element, int side) {
    switch (side) {
        case 0: return -element.maxX;
        case 1: return element.minX;
        case 2: return -element.maxY;
        default: return element.minY;
    }
}

void BoxSink::Keep(Extremes* side, int which, const WorldRect& element) {
    const double reach = Reach(element, which);
    int at = side->count;
    if (at == kMost) {
        if (reach <= Reach(side->rows[kMost - 1], which)) return;
        --at;
    } else {
        ++side->count;
    }
    for (; at > 0 && Reach(side->rows[at - 1], which) < reach; --at) side->rows[at] = side->rows[at - 1];
    side->rows[at] = element;
    if (side->count == kMost) least[which] = Reach(side->rows[kMost - 1], which);
}

void BoxSink::Grow(const WorldRect& element) {
    if (!Matters(element)) {  // as most do not, once there are many
        ++count;
        return;
    }
    if (!(IsDrawable(element.minX) && IsDrawable(element.minY) && IsDrawable(element.maxX) &&
          IsDrawable(element.maxY))) {
        return;
    }
    if (count++ == 0) {
        all = element;
    } else {
        GrowTo(&all, {element.minX, element.minY});
        GrowTo(&all, {element.maxX, element.maxY});
    }
    for (int side = 0; side < 4; ++side) Keep(&extremes[side], side, element);
}

bool BoxSink::Matters(const WorldRect& box) const {
    return !(-box.minX <= least[0] && box.maxX <= least[1] && -box.minY <= least[2] && box.maxY <= least[3]);
}

void BoxSink::Clear() {
    count = 0;
    for (Extremes& side : extremes) side.count = 0;
    std::fill(std::begin(least), std::end(least), -HUGE_VAL);
}

bool BoxSink::Box(WorldRect* box) {
    if (count == 0) return false;
    constexpr double kGap = 32;
    const std::size_t share = count / 20;
    const int most =
        count < 4 ? 0 : static_cast<int>(std::min<std::size_t>(std::max<std::size_t>(share, 1), kMost - 1));

    // What would remain when the most extreme elements of each side were left out: the measure of the gaps.
    double inner[4];
    for (int side = 0; side < 4; ++side) {
        const Extremes& rows = extremes[side];
        inner[side] = Reach(rows.rows[std::min(most, rows.count - 1)], side);
    }
    const double size = std::max({inner[0] + inner[1], inner[2] + inner[3], 0.0});

    // From the far end inward: a stray is parted from the next element by a gap.
    WorldRect strays[4 * kMost];
    int strayCount = 0;
    for (int side = 0; side < 4 && size > 0; ++side) {
        const Extremes& rows = extremes[side];
        int last = 0;
        double nearest = Reach(rows.rows[0], side);
        for (int i = 0; i < most && i + 1 < rows.count; ++i) {
            nearest = std::min(nearest, NearEnd(rows.rows[i], side));
            if (nearest - Reach(rows.rows[i + 1], side) > kGap * size) last = i + 1;
        }
        for (int i = 0; i < last; ++i) strays[strayCount++] = rows.rows[i];
    }
    const auto isStray = [&](const WorldRect& element) {
        return std::any_of(strays, strays + strayCount, [&](const WorldRect& stray) {
            return stray.minX == element.minX && stray.minY == element.minY && stray.maxX == element.maxX &&
                   stray.maxY == element.maxY;
        });
    };
    double edges[4];
    for (int side = 0; side < 4; ++side) {
        const Extremes& rows = extremes[side];
        int i = 0;
        while (i + 1 < rows.count && isStray(rows.rows[i])) ++i;
        edges[side] = Reach(rows.rows[i], side);
    }
    *box = {-edges[0], -edges[2], edges[1], edges[3]};
    return true;
}
