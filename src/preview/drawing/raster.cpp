#include "preview/drawing/raster.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

// Which steps of a line each pen draws, from the lowest bit on; all patterns repeat within kPeriod steps.
constexpr std::uint32_t kPeriod = 24, kSolid = 0xFFFFFF, kDash = 0x03FFFF, kDashDot = 0x0381FF, kDashDotDot = 0x1C71FF,
                        kDot = 0x1C71C7, kAlternate = 0x555555;
constexpr std::uint32_t kPatterns[kPenCount] = {kSolid,     kSolid, kDash,  kDashDot, kDashDotDot, kDot,
                                                kAlternate, kSolid, kSolid, kSolid,   kSolid,      kSolid,
                                                kSolid,     kSolid, kSolid, kSolid};

// Where a stroke stands in its pen's pattern.
struct Pattern {
    std::uint32_t steps;
    std::uint32_t at = 0;
    bool IsSolid() const { return steps == kSolid; }
    void Skip(std::int64_t count) { at = static_cast<std::uint32_t>((at + count) % kPeriod); }
    // Whether this step is drawn; then goes on by less than a period.
    bool Take(std::uint32_t count) {
        const bool draws = (steps >> at & 1) != 0;
        at += count;
        if (at >= kPeriod) at -= kPeriod;
        return draws;
    }
};

Raster& RasterOf(StrokeTarget& target) { return static_cast<Raster&>(target); }

// ---- Pixels, by their number in the bitmap: y * pitch + x

struct OneBit {
    static void Put(void* bits, std::int32_t at) {
        static_cast<std::uint8_t*>(bits)[at >> 3] &= static_cast<std::uint8_t>(~(0x80u >> (at & 7)));
    }
    static void PutRow(void* bits, std::int32_t at, std::int32_t count) {
        auto* byte = static_cast<std::uint8_t*>(bits) + (at >> 3);
        const int first = at & 7, last = (at + count) & 7;
        const auto keepBefore = static_cast<std::uint8_t>(~(0xFFu >> first));
        const auto keepBehind = static_cast<std::uint8_t>(0xFFu >> last);
        const std::int32_t whole = ((at + count) >> 3) - (at >> 3);
        if (whole == 0) {
            *byte &= static_cast<std::uint8_t>(keepBefore | keepBehind);
            return;
        }
        *byte &= keepBefore;
        std::memset(byte + 1, 0, static_cast<std::size_t>(whole) - 1);
        if (last) byte[whole] &= keepBehind;
    }
};

struct ScreenLike {
    static void Put(void* bits, std::int32_t at) { static_cast<std::uint32_t*>(bits)[at] = 0; }
    static void PutRow(void* bits, std::int32_t at, std::int32_t count) {
        std::fill_n(static_cast<std::uint32_t*>(bits) + at, count, 0u);
    }
};

// From `left` to before `right`, as far as the row is long.
template <typename Pixels>
void PutClippedRow(const Raster& to, std::int64_t left, std::int64_t right, std::int32_t y) {
    left = std::max<std::int64_t>(left, 0);
    right = std::min<std::int64_t>(right, to.width);
    if (left >= right) return;
    Pixels::PutRow(to.bits, y * to.pitch + static_cast<std::int32_t>(left), static_cast<std::int32_t>(right - left));
}

template <typename Pixels>
void DrawPixel(StrokeTarget& target, PixelPoint at) {
    const Raster& to = RasterOf(target);
    if (at.x < 0 || at.x >= to.width || at.y < 0 || at.y >= to.height) return;
    Pixels::Put(to.bits, at.y * to.pitch + at.x);
}

// ---- Lines

std::int64_t CeilDivide(std::int64_t a, std::int64_t b) {  // b > 0
    return a >= 0 ? (a + b - 1) / b : -(-a / b);
}

// The pixels of a line by the axis along which it is longer. Pixel k of `length` stands k steps along that axis, and
// (2 k * rise + bias) / (2 length), cut, along the other one. The bias rounds to the nearest; halfway it is the upper
// or left pixel.
struct LineWalk {
    std::int32_t major, minor;          // of pixel 0
    std::int32_t majorStep, minorStep;  // 1 or -1
    std::int32_t length, rise, bias;
};

// Narrows [*first, *end) to the pixels that lie on a bitmap of these extents along the two axes.
void ClipLine(const LineWalk& line, std::int32_t majorExtent, std::int32_t minorExtent, std::int64_t* first,
              std::int64_t* end) {
    const auto stepsTo = [](std::int32_t at, std::int32_t step, std::int32_t extent, std::int64_t* from,
                            std::int64_t* to) {
        *from = step > 0 ? -std::int64_t{at} : std::int64_t{at} - extent + 1;
        *to = *from + extent;
    };
    std::int64_t from, to;
    stepsTo(line.major, line.majorStep, majorExtent, &from, &to);
    *first = std::max<std::int64_t>(from, 0);
    *end = std::min<std::int64_t>(to, line.length);

    stepsTo(line.minor, line.minorStep, minorExtent, &from, &to);
    const auto pixelThatReaches = [&line](std::int64_t minorSteps) {
        return CeilDivide(2 * minorSteps * line.length - line.bias, 2 * std::int64_t{line.rise});
    };
    if (line.rise == 0) {
        if (from > 0 || to <= 0) *end = 0;
        return;
    }
    if (from > 0) *first = std::max(*first, pixelThatReaches(from));
    *end = std::min(*end, pixelThatReaches(to));
}

// The pattern has made its steps afterwards, whether they were seen or not.
template <typename Pixels>
void DrawLineBetween(const Raster& to, Pattern* pattern, PixelPoint a, PixelPoint b) {
    const std::int32_t dx = std::abs(b.x - a.x), dy = std::abs(b.y - a.y);
    const std::int32_t xStep = b.x < a.x ? -1 : 1, yStep = b.y < a.y ? -1 : 1;
    const bool flat = dx > dy;
    LineWalk line = flat ? LineWalk{a.x, a.y, xStep, yStep, dx, dy, 0} : LineWalk{a.y, a.x, yStep, xStep, dy, dx, 0};
    line.bias = line.length - (line.minorStep > 0 ? 1 : 0);

    const auto inside = [&to](PixelPoint p) {
        return static_cast<std::uint32_t>(p.x) < static_cast<std::uint32_t>(to.width) &&
               static_cast<std::uint32_t>(p.y) < static_cast<std::uint32_t>(to.height);
    };
    Pattern drawing = *pattern;
    pattern->Skip(line.length);
    std::int64_t first = 0, end = line.length;
    std::int32_t steps = 0, rest = line.bias;
    if (!inside(a) || !inside(b)) {
        ClipLine(line, flat ? to.width : to.height, flat ? to.height : to.width, &first, &end);
        if (first >= end) return;
        const std::int64_t sum = 2 * first * line.rise + line.bias;
        steps = static_cast<std::int32_t>(sum / (2 * std::int64_t{line.length}));
        rest = static_cast<std::int32_t>(sum % (2 * std::int64_t{line.length}));
    }
    const std::int32_t major = line.major + line.majorStep * static_cast<std::int32_t>(first);
    const std::int32_t minor = line.minor + line.minorStep * steps;
    std::int32_t at = flat ? minor * to.pitch + major : major * to.pitch + minor;
    const std::int32_t along = flat ? xStep : yStep * to.pitch, across = flat ? yStep * to.pitch : xStep;
    const std::int32_t rise = 2 * line.rise, run = 2 * line.length;
    void* const bits = to.bits;
    rest -= run;  // below 0 until the next step across
    const auto draw = [&](auto isSeen) {
        for (auto left = static_cast<std::int32_t>(end - first); left > 0; --left) {
            if (isSeen()) Pixels::Put(bits, at);
            rest += rise;
            const std::int32_t stepping = rest < 0 ? 0 : -1;  // all ones or none: what comes next cannot be guessed
            at += along + (across & stepping);
            rest -= run & stepping;
        }
    };
    if (drawing.IsSolid()) return draw([] { return true; });
    drawing.Skip(first);
    draw([&drawing] { return drawing.Take(1); });
}

template <typename Pixels>
void DrawLine(StrokeTarget& target, unsigned pen, PixelPoint from, PixelPoint to) {
    Pattern pattern = {kPatterns[pen]};
    DrawLineBetween<Pixels>(RasterOf(target), &pattern, from, to);
}

template <typename Pixels>
void DrawPolyline(StrokeTarget& target, unsigned pen, const PixelPoint* points, std::size_t count) {
    Pattern pattern = {kPatterns[pen]};
    for (std::size_t i = 1; i < count; ++i) {
        DrawLineBetween<Pixels>(RasterOf(target), &pattern, points[i - 1], points[i]);
    }
}

// ---- Circles
//
// A circle of radius r has its centre between four pixels, as its box is 2 r wide. A quarter's pixels are numbered from
// the centre, (0, 0) the nearest; it begins with a steep part, one pixel a row, and mirrored at the diagonal ends with
// a flat part, one pixel a column. Row i of the steep part has its pixel in the first column c for which
// (c + 1)^2 + i^2 + i >= r^2 - r: outside of it the middle between two pixels lies beyond the circle.

struct CirclePath {
    std::int32_t reach;        // r^2 - r
    std::int32_t steep, flat;  // pixels of a quarter's two parts
    std::int32_t Quarter() const { return steep + flat; }
};

// The first i for which `isFar(i)`; `near` is at most a few steps away.
template <typename IsFar>
std::int32_t FirstFar(double nearest, IsFar isFar) {
    auto i = static_cast<std::int32_t>(std::max(nearest, 0.0));
    while (i > 0 && isFar(std::int64_t{i} - 1)) --i;
    while (!isFar(std::int64_t{i})) ++i;
    return i;
}

CirclePath MakeCirclePath(std::int32_t radius) {
    CirclePath path;
    path.reach = radius * radius - radius;
    const double diagonal = std::sqrt(path.reach * 0.5);
    path.steep = FirstFar(diagonal, [&](std::int64_t i) { return i > 0 && 2 * i * i + i >= path.reach; });
    path.flat = FirstFar(diagonal, [&](std::int64_t i) { return 2 * i * i + 3 * i + 1 >= path.reach; });
    return path;
}

std::int32_t ColumnOfRow(const CirclePath& path, std::int32_t row) {
    const double square = std::max(path.reach - row * row - row, 1);  // radius 1 has no other
    return static_cast<std::int32_t>(std::ceil(std::sqrt(square))) - 1;
}

PixelPoint PixelOfQuarter(const CirclePath& path, std::int32_t index) {
    if (index < path.steep) return {ColumnOfRow(path, index), index};
    const std::int32_t column = path.Quarter() - 1 - index;
    return {column, ColumnOfRow(path, column)};
}

// The number of pixels, counted around the circle from the right, that lie before the ray to a point. `x` and `y` are
// the point's place from the centre, y upward.
std::int32_t PixelsBeforeRay(const CirclePath& path, std::int64_t x, std::int64_t y) {
    const int quarter = y >= 0 ? (x >= 0 ? 0 : 1) : (x >= 0 ? 3 : 2);
    const bool withEqual = quarter == 1 || quarter == 2;
    x = std::abs(x), y = std::abs(y);
    const std::int32_t count = path.Quarter();
    const auto isBehind = [&](std::int64_t index) {
        if (index >= count) return true;
        const PixelPoint p = PixelOfQuarter(path, static_cast<std::int32_t>(index));
        const std::int64_t turn = p.y * x - p.x * y;
        return withEqual ? turn > 0 : turn >= 0;
    };
    std::int32_t before = 0;
    if (x != 0 || y != 0) {
        const double scale = std::sqrt(path.reach / (static_cast<double>(x) * static_cast<double>(x) +
                                                     static_cast<double>(y) * static_cast<double>(y)));
        const double nearest = x > y ? static_cast<double>(y) * scale : count - static_cast<double>(x) * scale;
        before = FirstFar(std::min<double>(nearest, count), isBehind);
    }
    return quarter & 1 ? (quarter + 1) * count - before : quarter * count + before;
}

// One of a circle's eight parts on its way to a bitmap.
struct Octant {
    std::int32_t major, minor;          // where the bitmap has the part's pixel (0, 0), along and across the part
    std::int32_t majorStep, minorStep;  // 1 or -1
    std::int32_t majorExtent, minorExtent;
};

// Narrows rows [*first, *end) of a part to those that lie on the bitmap.
void ClipOctant(const CirclePath& path, const Octant& part, std::int32_t* first, std::int32_t* end) {
    const auto visible = [](std::int32_t at, std::int32_t step, std::int32_t extent, std::int32_t* from,
                            std::int32_t* to) {
        *from = std::max(step > 0 ? -at : at - extent + 1, 0);
        *to = step > 0 ? extent - at : at + 1;
    };
    std::int32_t from, to, nearest, farthest;
    visible(part.major, part.majorStep, part.majorExtent, &from, &to);
    visible(part.minor, part.minorStep, part.minorExtent, &nearest, &farthest);
    *first = std::max(*first, from);
    *end = std::min(*end, to);
    if (*first >= *end || farthest <= nearest) {
        *end = *first;
        return;
    }
    // Columns shrink from row to row.
    const auto firstRowWithin = [&path](std::int64_t column) {
        const std::int64_t limit = path.reach - column * column;
        if (limit <= 0) return 0;
        return FirstFar(std::sqrt(static_cast<double>(limit)) - 1, [&](std::int64_t i) { return i * i + i >= limit; });
    };
    *first = std::max(*first, firstRowWithin(farthest));
    if (nearest > 0) *end = std::min(*end, firstRowWithin(nearest));
}

// Row by row from `first` on, the pattern going `patternStep` steps at each.
template <typename Pixels>
void DrawOctant(const Raster& to, const CirclePath& path, const Octant& part, bool flat, std::int32_t first,
                std::int32_t end, Pattern pattern, std::uint32_t patternStep) {
    std::int32_t row = first, column = ColumnOfRow(path, first);
    const std::int32_t major = part.major + part.majorStep * row, minor = part.minor + part.minorStep * column;
    std::int32_t at = flat ? minor * to.pitch + major : major * to.pitch + minor;
    const std::int32_t along = part.majorStep * (flat ? 1 : to.pitch);
    const std::int32_t inward = -part.minorStep * (flat ? to.pitch : 1);
    void* const bits = to.bits;
    std::int32_t beyond = column * column + row * row + row - path.reach;  // 0 or more: the next column inward
    const auto draw = [&](auto isSeen) {
        for (;;) {
            if (isSeen()) Pixels::Put(bits, at);
            if (++row >= end) return;
            beyond += 2 * row;
            const std::int32_t stepping = beyond < 0 ? 0 : -1;
            beyond -= (2 * column - 1) & stepping;
            column += stepping;
            at += along + (inward & stepping);
        }
    };
    if (pattern.IsSolid()) return draw([] { return true; });
    draw([&pattern, patternStep] { return pattern.Take(patternStep); });
}

template <typename Pixels>
void DrawArc(StrokeTarget& target, unsigned pen, PixelPoint centre, std::int32_t radius, PixelPoint from,
             PixelPoint to) {
    const Raster& raster = RasterOf(target);
    const PixelRect box = {centre.x - radius, centre.y - radius, centre.x + radius, centre.y + radius};
    if (box.left >= raster.width || box.top >= raster.height || box.right <= 0 || box.bottom <= 0) return;
    const bool whole = box.left >= 0 && box.top >= 0 && box.right <= raster.width && box.bottom <= raster.height;

    const CirclePath path = MakeCirclePath(radius);
    const std::int32_t turn = 4 * path.Quarter();
    const auto beforeRay = [&](PixelPoint p) {
        return PixelsBeforeRay(path, std::int64_t{p.x} - centre.x, std::int64_t{centre.y} - p.y);
    };
    const std::int32_t begin = beforeRay(from);
    std::int32_t end = from.x == to.x && from.y == to.y ? begin : beforeRay(to);
    if (end <= begin) end += turn;
    --end;  // as of every line the last pixel is left out

    std::int32_t index = 0;
    for (int octant = 0; octant < 8; ++octant) {  // counter-clockwise from the right
        const int quarter = octant / 2;
        const bool flat = ((octant + 1) & 2) != 0;
        const std::int32_t length = flat ? path.flat : path.steep;
        const bool isRight = quarter == 0 || quarter == 3, isUpper = quarter < 2;
        const std::int32_t x = isRight ? centre.x : centre.x - 1, y = isUpper ? centre.y - 1 : centre.y;
        const std::int32_t xStep = isRight ? 1 : -1, yStep = isUpper ? -1 : 1;
        const Octant part = flat ? Octant{x, y, xStep, yStep, raster.width, raster.height}
                                 : Octant{y, x, yStep, xStep, raster.height, raster.width};
        // The way around passes a part's rows upward in every second part; an arc may come to a part twice.
        const bool upward = (octant & 1) == 0;
        for (const std::int32_t base : {index, index + turn}) {
            const std::int32_t low = std::max(begin - base, 0), high = std::min(end - base, length);
            std::int32_t first = upward ? low : length - high, last = upward ? high : length - low;
            if (first >= last) continue;
            if (!whole) ClipOctant(path, part, &first, &last);
            if (first >= last) continue;
            Pattern pattern = {kPatterns[pen]};
            pattern.Skip(base + (upward ? first : length - 1 - first) - begin);
            DrawOctant<Pixels>(raster, path, part, flat, first, last, pattern, upward ? 1 : kPeriod - 1);
        }
        index += length;
    }
}

// The first n for which n^2 + n >= square: the outermost column of a row of a circle around a pixel's middle.
std::int64_t HalfWidth(std::int64_t square) {
    auto n = static_cast<std::int64_t>(std::sqrt(static_cast<double>(square)));
    while (n > 0 && n * n - n >= square) --n;
    while (n * n + n < square) ++n;
    return n;
}

template <typename Pixels>
void DrawDot(StrokeTarget& target, unsigned, PixelPoint centre, std::int32_t radius) {
    const Raster& to = RasterOf(target);
    const std::int64_t r = radius;
    const std::int64_t top = std::max<std::int64_t>(centre.y - r, 0);
    const std::int64_t bottom = std::min<std::int64_t>(centre.y + r + 1, to.height);
    for (std::int64_t y = top; y < bottom; ++y) {
        const std::int64_t row = std::abs(y - centre.y), square = r * r - row * row;
        std::int64_t column = HalfWidth(square);
        // In the flat part a row has several pixels; the outermost lies half a row further in.
        if (column < row)
            column = static_cast<std::int64_t>(std::ceil(std::sqrt(static_cast<double>(square + row)))) - 1;
        PutClippedRow<Pixels>(to, centre.x - column, centre.x + column + 1, static_cast<std::int32_t>(y));
    }
}

// ---- Areas
//
// A pixel is inside when its upper left corner is, edges at the left and the top included. Every edge leaves one mark a
// row at its first pixel to the right; a row is then black from each odd mark to the next one.

struct EdgeBounds {
    std::int32_t left, top, right, bottom;  // of the marks; empty at first
};

void MarkEdge(Raster& to, PixelPoint a, PixelPoint b, EdgeBounds* bounds) {
    if (a.y > b.y) std::swap(a, b);
    const std::int32_t top = std::max(a.y, 0), bottom = std::min(b.y, to.height);
    if (top >= bottom) return;
    const std::int64_t dx = std::int64_t{b.x} - a.x, dy = std::int64_t{b.y} - a.y;
    const std::int64_t down = std::int64_t{top} - a.y;
    // x is a.x + dx * down / dy, rounded up.
    const auto floorDivide = [](std::int64_t n, std::int64_t d) { return n >= 0 ? n / d : -((-n + d - 1) / d); };
    const std::int64_t sum = dx * down + dy - 1;
    std::int64_t x = a.x + floorDivide(sum, dy), rest = sum - floorDivide(sum, dy) * dy;
    const std::int64_t step = floorDivide(dx, dy), stepRest = dx - step * dy;
    const std::int32_t words = (to.width + 31) / 32;
    for (std::int32_t y = top; y < bottom; ++y) {
        if (x < to.width) {
            const auto column = static_cast<std::int32_t>(std::max<std::int64_t>(x, 0));
            to.edges[static_cast<std::size_t>(y * words + column / 32)] ^= 1u << (column % 32);
            bounds->left = std::min(bounds->left, column);
        }
        bounds->right = static_cast<std::int32_t>(std::clamp<std::int64_t>(x + 1, bounds->right, to.width));
        x += step;
        rest += stepRest;
        if (rest >= dy) {
            rest -= dy;
            ++x;
        }
    }
    bounds->top = std::min(bounds->top, top);
    bounds->bottom = std::max(bounds->bottom, bottom);
}

template <typename Pixels>
void FillMarkedRows(Raster& to, const EdgeBounds& bounds) {
    const std::int32_t words = (to.width + 31) / 32, end = (bounds.right + 31) / 32;
    for (std::int32_t y = bounds.top; y < bounds.bottom; ++y) {
        std::int32_t first = -1;  // of the run that is open
        for (std::int32_t word = bounds.left / 32; word < end; ++word) {
            std::uint32_t& marks = to.edges[static_cast<std::size_t>(y * words + word)];
            for (std::int32_t x = word * 32; marks; marks >>= 1, ++x) {
                if (!(marks & 1)) continue;
                if (first >= 0) Pixels::PutRow(to.bits, y * to.pitch + first, x - first);
                first = first >= 0 ? -1 : x;
            }
        }
        if (first >= 0) Pixels::PutRow(to.bits, y * to.pitch + first, to.width - first);
    }
}

template <typename Pixels>
void DrawArea(StrokeTarget& target, const PixelPoint* points, const std::size_t* counts, std::size_t outlines) {
    Raster& to = RasterOf(target);
    EdgeBounds bounds = {to.width, to.height, 0, 0};
    for (std::size_t outline = 0; outline < outlines; points += counts[outline++]) {
        const std::size_t count = counts[outline];
        for (std::size_t i = 0; i < count; ++i) MarkEdge(to, points[i], points[i + 1 < count ? i + 1 : 0], &bounds);
    }
    FillMarkedRows<Pixels>(to, bounds);
}

template <typename Pixels>
void DrawPolygon(StrokeTarget& target, unsigned pen, const PixelPoint* corners, std::size_t count) {
    DrawArea<Pixels>(target, corners, &count, 1);
    Pattern pattern = {kPatterns[pen]};
    for (std::size_t i = 0; i < count; ++i) {
        DrawLineBetween<Pixels>(RasterOf(target), &pattern, corners[i], corners[i + 1 < count ? i + 1 : 0]);
    }
}

void DrawNoText(StrokeTarget&, const TextStroke&) {}

template <typename Pixels>
constexpr StrokeTarget kStrokes = {DrawPixel<Pixels>, DrawLine<Pixels>,    DrawArc<Pixels>, DrawPolyline<Pixels>,
                                   DrawArea<Pixels>,  DrawPolygon<Pixels>, DrawDot<Pixels>, DrawNoText};

}  // namespace

bool OpenRaster(Raster* raster, void* bits, std::int32_t width, std::int32_t height, int bitsPerPixel) {
    constexpr std::int64_t kMaxPixels = 1 << 30;
    if (!bits || width <= 0 || height <= 0 || (bitsPerPixel != 1 && bitsPerPixel != 32)) return false;
    const std::int64_t pitch = bitsPerPixel == 1 ? (std::int64_t{width} + 31) / 32 * 32 : width;
    if (pitch > kMaxPixels / height) return false;
    static_cast<StrokeTarget&>(*raster) = bitsPerPixel == 1 ? kStrokes<OneBit> : kStrokes<ScreenLike>;
    raster->bits = bits;
    raster->width = width;
    raster->height = height;
    raster->pitch = static_cast<std::int32_t>(pitch);
    const std::size_t words = static_cast<std::size_t>((width + 31) / 32) * static_cast<std::size_t>(height);
    raster->edges.assign(words, 0);
    return true;
}
