// From points, curves and texts to the sink's calls. Lines leave in pieces, so that a long one needs no memory of its
// length; points nearer to the one before than a quarter pixel are left out.
#include <algorithm>
#include <cmath>

#include "preview/formats/full_dxf_box.h"
#include "preview/formats/full_dxf_decoder.h"

static constexpr std::size_t kPiece = 4096;              // points of a line
static constexpr std::size_t kMostAreaPoints = 1 << 19;  // what is beyond is left out
static constexpr int kMostSegments = 1024;               // of one turn

// Nothing is drawn any more once the run is cancelled, in whatever entity that was.
static void Emit(DxfDecoder& dxf) {
    if (dxf.MayContinue()) dxf.sink->draw(*dxf.sink, dxf.element, dxf.pen);
}

static void Emit(DxfDecoder& dxf, const Path& path, unsigned pen) {
    if (dxf.MayContinue()) dxf.sink->path(*dxf.sink, path, pen);
}

void DrawDxfPoint(DxfDecoder& dxf, WorldPoint at) {
    dxf.budget.Charge(1);
    if (!IsDrawable(at)) return;
    dxf.element.SetPoint(at.x, at.y);
    Emit(dxf);
}

void DrawDxfLine(DxfDecoder& dxf, WorldPoint from, WorldPoint to) {
    dxf.budget.Charge(1);
    if (!IsDrawable(from) || !IsDrawable(to)) return;
    if (!dxf.IsMeasuring() && std::fabs(from.x - to.x) + std::fabs(from.y - to.y) < dxf.pixel) {
        dxf.element.SetPoint(from.x, from.y);  // a line that short would leave no pixel
    } else {
        dxf.element.SetLine(from.x, from.y, to.x, to.y);
    }
    Emit(dxf);
}

// ---- Paths

void BeginPath(DxfDecoder& dxf, bool area) {
    dxf.path.points.clear();
    dxf.path.counts.clear();
    dxf.path.begin = 0;
    dxf.path.area = area;
    dxf.path.skipped = false;
}

// Draws the line so far and goes on from its last point.
static void EmitPiece(DxfDecoder& dxf, bool goOn) {
    std::vector<WorldPoint>& points = dxf.path.points;
    const std::size_t count = points.size();
    if (count == 1) DrawDxfLine(dxf, points[0], points[0]);
    if (count > 1) Emit(dxf, {points.data(), &count, 1, false}, dxf.pen);
    const WorldPoint last = count ? points.back() : WorldPoint{};
    points.clear();
    if (goOn) points.push_back(last);
}

static void Append(DxfDecoder& dxf, WorldPoint p) {
    DxfPoints& path = dxf.path;
    if (path.points.size() >= (path.area ? kMostAreaPoints : kPiece)) {
        if (path.area) return;
        EmitPiece(dxf, true);
    }
    path.points.push_back(p);
}

void PathTo(DxfDecoder& dxf, WorldPoint p) {
    DxfPoints& path = dxf.path;
    dxf.budget.Charge(1);
    if (!IsDrawable(p)) {
        if (!path.area) EndOutline(dxf);  // the line is broken there
        return;
    }
    if (path.points.size() > path.begin) {
        const WorldPoint before = path.points.back();
        if (std::fabs(p.x - before.x) + std::fabs(p.y - before.y) < dxf.pixel / 4) {
            path.skipped = true;
            path.last = p;
            return;
        }
    }
    path.skipped = false;
    Append(dxf, p);
}

void EndOutline(DxfDecoder& dxf) {
    DxfPoints& path = dxf.path;
    if (path.skipped) {
        const double length =
            std::fabs(path.last.x - path.points.back().x) + std::fabs(path.last.y - path.points.back().y);
        if (length > 0 && path.points.size() > path.begin + 1) Append(dxf, path.last);
        path.skipped = false;
    }
    if (!path.area) {
        if (!path.points.empty()) EmitPiece(dxf, false);
        return;
    }
    if (path.points.size() - path.begin < 3) {
        path.points.resize(path.begin);  // encloses nothing
    } else {
        path.counts.push_back(path.points.size() - path.begin);
    }
    path.begin = path.points.size();
}

void EndPath(DxfDecoder& dxf) {
    EndOutline(dxf);
    if (!dxf.path.area || dxf.path.counts.empty()) return;
    Emit(dxf, {dxf.path.points.data(), dxf.path.counts.data(), dxf.path.counts.size(), true}, dxf.pen);
}

// ---- Curves

int SegmentsOfTurn(DxfDecoder& dxf, double radius, double sweep) {
    constexpr int kMeasured = 32, kCoarse = 8;  // of a whole turn
    const double turns = std::min(std::fabs(sweep) / kTurn, 1.0);
    double whole = kMeasured;
    if (dxf.budget.left == 0) {
        whole = kCoarse;
    } else if (!dxf.IsMeasuring()) {
        // A chord of angle a stays within radius * a * a / 8 of its arc.
        constexpr double kTolerance = 0.35;  // pixels; rounding adds its part
        whole = std::max(kTurn * std::sqrt(radius / dxf.pixel / (8 * kTolerance)), 6.0);
    }
    if (!(whole < kMostSegments)) whole = kMostSegments;
    return std::max(1, static_cast<int>(std::ceil(whole * turns)));
}

void PathAlong(DxfDecoder& dxf, const ConicArc& arc) {
    const Conic& conic = arc.conic;
    if (!IsDrawable(arc.sweep)) return;
    const double radius = std::max(Length(conic.u.x, conic.u.y), Length(conic.v.x, conic.v.y));
    const int count = SegmentsOfTurn(dxf, radius, arc.sweep);
    const double step = arc.sweep / count, stepC = std::cos(step), stepS = std::sin(step);
    double c = arc.startCos, s = arc.startSin;
    for (int i = 0; i < count; ++i) {
        PathTo(dxf, {conic.centre.x + conic.u.x * c + conic.v.x * s, conic.centre.y + conic.u.y * c + conic.v.y * s});
        const double nextC = c * stepC - s * stepS;
        s = s * stepC + c * stepS;
        c = nextC;
    }
    PathTo(dxf, arc.end);
}

// A circle, seen neither stretched nor askew.
static bool IsCircle(const Conic& conic, double radius) {
    const double tiny = radius * 1e-6;
    return std::fabs(Length(conic.v.x, conic.v.y) - radius) < tiny &&
           std::fabs(conic.u.x * conic.v.x + conic.u.y * conic.v.y) < tiny * radius;
}

static double FullDegrees(double radians) {
    double degrees = Degrees(radians);
    if (!(std::fabs(degrees) < 360)) degrees = std::fmod(degrees, 360);
    return degrees < 0 ? degrees + 360 : degrees;
}

// Circles are the sink's own to draw where it draws them well: not the tiny arcs, which become a chord there, nor those
// that are larger than any picture.
static bool DrawArcElement(DxfDecoder& dxf, const Conic& conic, double start, double sweep) {
    const double radius = Length(conic.u.x, conic.u.y);
    if (!IsCircle(conic, radius) || !IsDrawable(conic.centre) || !IsDrawable(radius) || !(radius > 0)) return false;
    const bool whole = !(std::fabs(sweep) < kTurn * (1 - 1e-9));
    if (!dxf.IsMeasuring()) {
        const double pixels = radius / dxf.pixel;
        if (pixels > 8192 || pixels < 1 || (!whole && pixels * std::fabs(sweep) < 16)) return false;
    }
    const bool mirrored = conic.u.x * conic.v.y - conic.u.y * conic.v.x < 0;
    const double from = conic.u.y == 0 && conic.u.x > 0 ? 0 : std::atan2(conic.u.y, conic.u.x);
    if (sweep < 0) {
        start += sweep;
        sweep = -sweep;
    }
    const double first = mirrored ? from - start - sweep : from + start;
    const double startDegrees = whole ? 0 : FullDegrees(first), endDegrees = whole ? 360 : FullDegrees(first + sweep);
    dxf.element.SetArc(conic.centre.x, conic.centre.y, radius, startDegrees, endDegrees);
    dxf.budget.Charge(4);
    Emit(dxf);
    return true;
}

void DrawDxfConic(DxfDecoder& dxf, const Conic& conic, double start, double sweep) {
    if (!IsDrawable(start) || !IsDrawable(sweep) || DrawArcElement(dxf, conic, start, sweep)) return;
    BeginPath(dxf);
    PathAlong(dxf, ArcOf(conic, start, sweep));
    EndPath(dxf);
}

// ---- Texts

// What is too small to be read is a line where the text would stand.
static void DrawTrace(DxfDecoder& dxf, const UnicodeText& text) {
    WorldPoint c[4];
    FrameOfText(text, c);
    DrawDxfLine(dxf, {(c[0].x + c[3].x) / 2, (c[0].y + c[3].y) / 2}, {(c[1].x + c[2].x) / 2, (c[1].y + c[2].y) / 2});
}

void DrawDxfText(DxfDecoder& dxf, const UnicodeText& text) {
    constexpr double kReadable = 2.5, kVisible = 0.5;  // pixels of a capital
    dxf.budget.Charge(4 + static_cast<long long>(text.length));
    if (!IsDrawable(text.at) || !IsDrawable(text.height) || !(text.height > 0) || text.length == 0) return;
    if (text.height < kVisible * dxf.pixel) return;
    if (text.height < kReadable * dxf.pixel && !dxf.sink->textsAsFrames) {
        dxf.pen = kSolidPen;
        return DrawTrace(dxf, text);
    }
    if (!dxf.sink->textsAsFrames) {
        if (dxf.MayContinue()) dxf.sink->unicodeText(*dxf.sink, text);
        return;
    }
    WorldPoint corners[5];
    FrameOfText(text, corners);
    corners[4] = corners[0];
    const std::size_t count = 5;
    Emit(dxf, {corners, &count, 1, false}, kSolidPen);
}
