// HATCH and MPOLYGON: the boundary's outlines, filled, or crossed by the lines of a pattern.
//
// The groups have no order of their own beyond the file's: 92 begins an outline, 72 an edge of it, 75 ends the
// outlines, 53 begins a line of the pattern and 98 ends all. What a file counts is not looked at.
#include <algorithm>
#include <cmath>

#include "preview/formats/full_dxf_decoder.h"

namespace {

enum OutlineFlag { kExternalFlag = 1, kPolylineFlag = 2, kTextFlag = 8, kOutermostFlag = 16 };
enum Style { kNested = 0, kOutermost = 1, kIgnoreInner = 2 };

constexpr int kMostPatternLines = 64, kMostDashes = 12;
constexpr std::size_t kMostCrossings = 1 << 18;

struct PatternLine {
    double angle = 0;  // degrees
    double baseX = 0, baseY = 0, offsetX = 0, offsetY = 0;
    int dashCount = 0;
    double dashes[kMostDashes];  // above 0: drawn, below: left open
};

struct Hatch {
    bool solid = false;
    int solidCode = 70;  // the group that says so
    int style = 0;
    int lineCount = 0;
    PatternLine lines[kMostPatternLines];
};

// One edge of an outline, or the whole of it where it is a polyline.
struct Edge {
    int kind = 0;  // 0: polyline; 1 to 4: line, arc, ellipse, spline
    double x = 0, y = 0, x2 = 0, y2 = 0;
    double radius = 0, start = 0, end = 0;  // an ellipse's ratio of axes stands for the radius
    bool counterClockwise = true;
};

// Angles run clockwise when the edge does.
void PathAlongArc(DxfDecoder& dxf, const Edge& edge, double z) {
    const double direction = edge.counterClockwise ? 1 : -1;
    const double start = Radians(edge.start), end = Radians(edge.end);
    double sweep = end - start;
    if (sweep <= 0) sweep += kTurn * std::ceil(-sweep / kTurn + 1e-12);
    if (sweep > kTurn || !(sweep > 0)) sweep = kTurn;
    const bool ellipse = edge.kind == 3;
    const Vector3 u = ellipse ? Vector3{edge.x2, edge.y2, 0} : Vector3{edge.radius, 0, 0};
    const Vector3 v = ellipse ? Vector3{-edge.y2 * edge.radius, edge.x2 * edge.radius, 0} : Vector3{0, edge.radius, 0};
    const Conic conic = {dxf.map.Point({edge.x, edge.y, z}), dxf.map.Direction(u), dxf.map.Direction(v)};
    PathAlong(dxf, ArcOf(conic, start * direction, sweep * direction));
}

void DrawEdge(DxfDecoder& dxf, const Edge& edge, double z) {
    if (edge.kind == 1) {
        PathTo(dxf, dxf.map.Point({edge.x, edge.y, z}));
        PathTo(dxf, dxf.map.Point({edge.x2, edge.y2, z}));
    } else if (edge.kind == 2 || edge.kind == 3) {
        PathAlongArc(dxf, edge, z);
    } else if (edge.kind == 4) {
        PathAlong(dxf, &dxf.spline);
    }
}

// The outlines into the open path, and the pattern to `hatch`.
struct HatchWalk {
    DxfDecoder& dxf;
    Hatch* hatch;
    double z;
    enum { kHead, kPolyline, kEdges, kPattern, kDone } part = kHead;
    Edge edge = {};
    bool hasEdge = false;
    std::size_t edgeCount = 0;  // of the open outline
    // Polylines: the vertex before, its bulge, and the first one.
    double x = 0, y = 0, bulge = 0, firstX = 0, firstY = 0;
    int flags = 0;  // of the open outline
    int vertices = 0;
    bool pending = false;  // x and y are read, but not yet part of the outline
    double lastX = 0, lastY = 0, lastBulge = 0;

    void Take(const DxfPair& pair);
    void EndOfOutline();

private:
    double Value(const DxfPair& pair) const { return DxfNumber(dxf.form, pair.code, pair.value); }
    void TakeVertex();
    void EndEdge();
    void TakeEdgeGroup(const DxfPair& pair);
    void TakePatternGroup(const DxfPair& pair);
};

void HatchWalk::TakeVertex() {
    if (!pending) return;
    pending = false;
    ConicArc arc;
    if (vertices++ == 0) {
        firstX = x, firstY = y;
        PathTo(dxf, dxf.map.Point({x, y, z}));
    } else if (ArcOfBulge(dxf.map, lastX, lastY, x, y, z, lastBulge, &arc)) {
        PathAlong(dxf, arc);
    } else {
        PathTo(dxf, dxf.map.Point({x, y, z}));
    }
    lastX = x, lastY = y, lastBulge = bulge;
}

double Distance(WorldPoint a, WorldPoint b) { return Length(a.x - b.x, a.y - b.y); }

// Edges follow each other, but not every writer lets each begin where the one before ends: those that run the other way
// are turned around, the first one too.
void HatchWalk::EndEdge() {
    if (!hasEdge) return;
    hasEdge = false;
    std::vector<WorldPoint>& points = dxf.path.points;
    const std::size_t before = points.size();
    DrawEdge(dxf, edge, z);
    if (dxf.path.skipped || points.size() < before + 2) return;
    const auto begin = points.begin() + static_cast<std::ptrdiff_t>(before);
    const std::size_t edges = ++edgeCount;
    if (edges == 1 || before == dxf.path.begin) return;
    const WorldPoint first = points[before], last = points.back();
    const double toEnd = std::min(Distance(points[before - 1], first), Distance(points[before - 1], last));
    const WorldPoint opening = points[dxf.path.begin];
    if (edges == 2 && std::min(Distance(opening, first), Distance(opening, last)) < toEnd * 0.5) {
        std::reverse(points.begin() + static_cast<std::ptrdiff_t>(dxf.path.begin), begin);
    }
    if (Distance(points[before - 1], last) < Distance(points[before - 1], first) * 0.5)
        std::reverse(begin, points.end());
}

void HatchWalk::EndOfOutline() {
    if (part == kPolyline) {
        TakeVertex();
        if (vertices > 1 && lastBulge != 0) {
            x = firstX, y = firstY;
            pending = true;
            TakeVertex();
        }
    }
    if (part == kEdges) EndEdge();
    const std::size_t before = dxf.path.counts.size();
    EndOutline(dxf);
    if (dxf.path.counts.size() > before) dxf.outlineFlags.push_back(flags);
    vertices = 0;
    edgeCount = 0;
}

void HatchWalk::TakeEdgeGroup(const DxfPair& pair) {
    DxfSpline& spline = dxf.spline;
    if (pair.code == 72) {
        EndEdge();
        edge = {};
        edge.kind = static_cast<int>(std::clamp(DxfInteger(dxf.form, 72, pair.value), 0ll, 9ll));
        hasEdge = true;
        spline.Clear();
        return;
    }
    if (!hasEdge) return;
    const bool isSpline = edge.kind == 4;
    if (pair.code == 94 && isSpline)
        spline.degree = static_cast<int>(std::clamp(DxfInteger(dxf.form, 94, pair.value), 0ll, 99ll));
    if (pair.code == 73) edge.counterClockwise = DxfInteger(dxf.form, 73, pair.value) != 0;
    if (pair.code < 10 || pair.code > 59) return;
    const double value = Value(pair);
    switch (pair.code) {
        case 10: edge.x = value; break;
        case 11: edge.x2 = value; break;
        case 20:
            edge.y = value;
            if (isSpline && spline.controls.size() < kMostSplinePoints) {
                spline.controls.push_back(dxf.map.Point({edge.x, edge.y, z}));
            }
            break;
        case 21:
            edge.y2 = value;
            if (isSpline && spline.fits.size() < kMostSplinePoints) {
                spline.fits.push_back(dxf.map.Point({edge.x2, edge.y2, z}));
            }
            break;
        case 40:
            edge.radius = value;
            if (isSpline && spline.knots.size() < 2 * kMostSplinePoints) spline.knots.push_back(value);
            break;
        case 42:
            if (isSpline && spline.weights.size() < kMostSplinePoints) spline.weights.push_back(value);
            break;
        case 50: edge.start = value; break;
        case 51: edge.end = value; break;
        default: break;
    }
}

void HatchWalk::TakePatternGroup(const DxfPair& pair) {
    if (pair.code == 53) {
        if (hatch->lineCount < kMostPatternLines) hatch->lines[hatch->lineCount++].angle = Value(pair);
        return;
    }
    if (hatch->lineCount == 0) return;
    PatternLine& line = hatch->lines[hatch->lineCount - 1];
    switch (pair.code) {
        case 43: line.baseX = Value(pair); break;
        case 44: line.baseY = Value(pair); break;
        case 45: line.offsetX = Value(pair); break;
        case 46: line.offsetY = Value(pair); break;
        case 49:
            if (line.dashCount < kMostDashes) line.dashes[line.dashCount++] = Value(pair);
            break;
        default: break;
    }
}

void HatchWalk::Take(const DxfPair& pair) {
    if (part == kHead && pair.code == hatch->solidCode) {
        hatch->solid = DxfInteger(dxf.form, pair.code, pair.value) != 0;
        return;
    }
    switch (pair.code) {
        case 92:
            EndOfOutline();
            flags = static_cast<int>(DxfInteger(dxf.form, 92, pair.value) & 0xFF);
            part = flags & kPolylineFlag ? kPolyline : kEdges;
            return;
        case 75:
            EndOfOutline();
            part = kPattern;
            hatch->style = static_cast<int>(std::clamp(DxfInteger(dxf.form, 75, pair.value), 0ll, 9ll));
            return;
        case 98:
            if (part == kPattern) part = kDone;
            return;
        default: break;
    }
    if (part == kPattern) return TakePatternGroup(pair);
    if (part == kEdges) return TakeEdgeGroup(pair);
    if (part != kPolyline) return;
    if (pair.code == 10) {
        TakeVertex();
        x = Value(pair);
        bulge = 0;
        pending = true;
    }
    if (pair.code == 20) y = Value(pair);
    if (pair.code == 42) bulge = Value(pair);
}

// Takes out the outlines that the hatch's style leaves to others: islands within islands, or all of them, and the room
// for texts. Where nothing would be left the flags are not to be trusted.
void LeaveOutInner(DxfDecoder& dxf, int style) {
    DxfPoints& path = dxf.path;
    const auto isDrawn = [&](int flags) {
        if (flags & kTextFlag) return false;
        return style == kNested || (flags & kExternalFlag) || (style != kIgnoreInner && (flags & kOutermostFlag));
    };
    if (std::none_of(dxf.outlineFlags.begin(), dxf.outlineFlags.end(), isDrawn)) return;
    std::size_t from = 0, to = 0, kept = 0;
    for (std::size_t i = 0; i < path.counts.size(); ++i) {
        const std::size_t count = path.counts[i];
        if (isDrawn(dxf.outlineFlags[i])) {
            std::copy_n(path.points.begin() + static_cast<std::ptrdiff_t>(from), count,
                        path.points.begin() + static_cast<std::ptrdiff_t>(to));
            to += count;
            path.counts[kept++] = count;
        }
        from += count;
    }
    path.counts.resize(kept);
    path.points.resize(to);
    path.begin = to;
}

// ---- Pattern lines

// A family of parallel lines in the drawing's plane.
struct Family {
    WorldPoint base, along;  // a unit
    double spacing;          // between two lines, to the left of `along`
    double shift;            // of a line's begin against that of the one before, along it
    double dashScale;        // drawing units per unit of a dash
};

bool FamilyOf(const DxfDecoder& dxf, const PatternLine& line, double z, Family* family) {
    const double c = std::cos(Radians(line.angle)), s = std::sin(Radians(line.angle));
    const WorldPoint along = dxf.map.Direction({c, s, 0}), offset = dxf.map.Direction({line.offsetX, line.offsetY, 0});
    const double length = Length(along.x, along.y);
    if (!(length > 0)) return false;
    family->base = dxf.map.Point({line.baseX, line.baseY, z});
    family->along = {along.x / length, along.y / length};
    family->spacing = family->along.x * offset.y - family->along.y * offset.x;
    family->shift = family->along.x * offset.x + family->along.y * offset.y;
    family->dashScale = length;
    return IsDrawable(family->base) && IsDrawable(family->spacing) && family->spacing != 0 && IsDrawable(family->shift);
}

void DrawDashes(DxfDecoder& dxf, const PatternLine& line, const Family& family, const DxfCrossing& from, double to) {
    const auto number = static_cast<double>(from.line);
    const auto at = [&](double along) -> WorldPoint {
        const double across = number * family.spacing;
        return {family.base.x + family.along.x * along - family.along.y * across,
                family.base.y + family.along.y * along + family.along.x * across};
    };
    double period = 0;
    for (int i = 0; i < line.dashCount; ++i) period += std::fabs(line.dashes[i]) * family.dashScale;
    if (!(period > 2 * dxf.pixel) || !((to - from.along) / period < 4096)) {
        DrawDxfLine(dxf, at(from.along), at(to));
        return;
    }
    const double begin = number * family.shift;
    double place = begin + std::floor((from.along - begin) / period) * period;
    while (place < to && dxf.budget.Charge(1)) {
        for (int i = 0; i < line.dashCount; ++i) {
            const double dash = line.dashes[i] * family.dashScale, end = place + std::fabs(dash);
            const double first = std::max(place, from.along), last = std::min(end, to);
            if (dash >= 0 && first <= last) DrawDxfLine(dxf, at(first), at(last));
            place = end;
        }
    }
}

// Where the outlines cross the family's lines. False when there are too many.
bool FindCrossings(DxfDecoder& dxf, const Family& family, std::vector<DxfCrossing>* out) {
    const DxfPoints& path = dxf.path;
    const WorldPoint* points = path.points.data();
    for (const std::size_t count : path.counts) {
        for (std::size_t i = 0; i < count; ++i) {
            const WorldPoint a = points[i], b = points[(i + 1) % count];
            const auto lineOf = [&](WorldPoint p) {
                return ((p.y - family.base.y) * family.along.x - (p.x - family.base.x) * family.along.y) /
                       family.spacing;
            };
            const double la = lineOf(a), lb = lineOf(b);
            if (!(std::fabs(la) < 1e9 && std::fabs(lb) < 1e9)) return false;
            const auto first = static_cast<std::int64_t>(std::ceil(std::min(la, lb)));
            const auto end = static_cast<std::int64_t>(std::ceil(std::max(la, lb)));
            for (std::int64_t line = first; line < end; ++line) {
                if (out->size() >= kMostCrossings || !dxf.budget.Charge(1)) return false;
                const double t = (static_cast<double>(line) - la) / (lb - la), x = a.x + (b.x - a.x) * t,
                             y = a.y + (b.y - a.y) * t;
                out->push_back({line, (x - family.base.x) * family.along.x + (y - family.base.y) * family.along.y});
            }
        }
        points += count;
    }
    std::sort(out->begin(), out->end(), [](const DxfCrossing& a, const DxfCrossing& b) {
        return a.line != b.line ? a.line < b.line : a.along < b.along;
    });
    return true;
}

// False when the lines would stand closer than pixels: the area is filled then.
bool DrawPattern(DxfDecoder& dxf, const Hatch& hatch, double z) {
    Family family;
    for (int i = 0; i < hatch.lineCount; ++i) {
        if (FamilyOf(dxf, hatch.lines[i], z, &family) && std::fabs(family.spacing) < dxf.pixel * 1.5) return false;
    }
    std::vector<DxfCrossing>& crossings = dxf.crossings;
    for (int i = 0; i < hatch.lineCount && dxf.MayContinue(); ++i) {
        crossings.clear();
        if (!FamilyOf(dxf, hatch.lines[i], z, &family) || !FindCrossings(dxf, family, &crossings)) continue;
        for (std::size_t c = 0; c + 1 < crossings.size() && dxf.budget.left && dxf.MayContinue(); ++c) {
            if (crossings[c].line != crossings[c + 1].line) continue;
            DrawDashes(dxf, hatch.lines[i], family, crossings[c], crossings[c + 1].along);
            ++c;
        }
    }
    return true;
}

// The outlines as lines.
void DrawBoundary(DxfDecoder& dxf) {
    const WorldPoint* points = dxf.path.points.data();
    for (const std::size_t count : dxf.path.counts) {
        for (std::size_t i = 0; i < count; ++i) DrawDxfLine(dxf, points[i], points[(i + 1) % count]);
        points += count;
    }
}

}  // namespace

static void DrawHatch(DxfDecoder& dxf, int solidCode) {
    Hatch hatch;
    hatch.solidCode = solidCode;
    const double z = dxf.groups.Number(30);
    HatchWalk walk = {dxf, &hatch, z};
    DxfRecordWalk record(dxf.groups);
    DxfPair pair;
    BeginPath(dxf, true);
    dxf.outlineFlags.clear();
    while (walk.part != HatchWalk::kDone && record.Next(&pair) && dxf.MayContinue()) walk.Take(pair);
    walk.EndOfOutline();
    LeaveOutInner(dxf, hatch.style);
    if (hatch.solid || dxf.IsMeasuring()) return EndPath(dxf);
    if (hatch.lineCount == 0) return DrawBoundary(dxf);
    if (!DrawPattern(dxf, hatch, z)) EndPath(dxf);
}

void DrawDxfHatch(DxfDecoder& dxf, DxfReader*) { DrawHatch(dxf, 70); }
void DrawDxfMPolygon(DxfDecoder& dxf, DxfReader*) { DrawHatch(dxf, 71); }  // its 70 is a version
