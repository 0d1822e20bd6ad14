// Splines: B-splines by control points, and smooth curves through fit points where these are all that a file holds.
// Everything is in the drawing's plane already, since a map of the control points maps the curve.
#include <algorithm>
#include <cmath>

#include "preview/formats/full_dxf_decoder.h"

static constexpr int kMostDegree = 25;  // one beyond is drawn as its control points' line

void DxfSpline::Clear() {
    degree = 3;
    closed = false;
    controls.clear();
    fits.clear();
    weights.clear();
    knots.clear();
    startTangent = endTangent = {0, 0};
}

// ---- Cutting a curve into segments

// Halves a piece of a curve until its middle lies near its chord. `at` gives the curve's point.
template <typename Curve>
static void PathThrough(DxfDecoder& dxf, const Curve& at, double from, WorldPoint a, double to, WorldPoint b,
                        int depth) {
    const double middle = (from + to) / 2;
    const WorldPoint m = at(middle);
    const double dx = b.x - a.x, dy = b.y - a.y, chord = Length(dx, dy);
    const double ex = m.x - a.x, ey = m.y - a.y;
    const double away = chord > 0 ? std::fabs(dx * ey - dy * ex) / chord : Length(ex, ey);
    constexpr double kTolerance = 0.35;  // pixels
    // A middle that lies beside the chord's own middle has not shown the curve's shape yet.
    const double along = chord > 0 ? std::fabs((dx * ex + dy * ey) / chord - chord / 2) : 0;
    const bool near = away <= kTolerance * dxf.pixel && along <= chord / 4 + kTolerance * dxf.pixel;
    if (depth == 0 || near || !dxf.budget.Charge(4)) {
        PathTo(dxf, m);
        PathTo(dxf, b);
        return;
    }
    PathThrough(dxf, at, from, a, middle, m, depth - 1);
    PathThrough(dxf, at, middle, m, to, b, depth - 1);
}

// One smooth piece, which is at most `length` long. A longer one begins with four parts, because a curve that winds may
// cross its chord's middle.
template <typename Curve>
static void PathAlongPiece(DxfDecoder& dxf, const Curve& at, double from, double to, double length) {
    constexpr int kParts = 4, kDepth = 7;
    const bool coarse = dxf.IsMeasuring() || dxf.budget.left == 0;
    const int parts = coarse || length > 24 * dxf.pixel ? kParts : 1;
    WorldPoint a = at(from);
    PathTo(dxf, a);
    for (int i = 0; i < parts; ++i) {
        const double t0 = from + (to - from) * i / parts, t1 = from + (to - from) * (i + 1) / parts;
        const WorldPoint b = at(t1);
        if (coarse || length < dxf.pixel) PathTo(dxf, b);
        else PathThrough(dxf, at, t0, a, t1, b, kDepth);
        a = b;
    }
}

// ---- B-splines

// The point at `t` of the span that begins with knot `span`, by de Boor's scheme.
template <bool kWeighted>
static WorldPoint PointOfSpline(const DxfSpline& s, std::size_t span, double t) {
    struct {
        double x, y, w;
    } points[kMostDegree + 1];
    const auto p = static_cast<std::size_t>(s.degree);
    for (std::size_t i = 0; i <= p; ++i) {
        const std::size_t at = span - p + i;
        const double w = kWeighted && at < s.weights.size() ? s.weights[at] : 1;
        points[i] = {s.controls[at].x * w, s.controls[at].y * w, w};
    }
    for (std::size_t r = 1; r <= p; ++r) {
        for (std::size_t i = p; i >= r; --i) {
            const double low = s.knots[span - p + i], high = s.knots[span + i + 1 - r];
            const double a = high > low ? (t - low) / (high - low) : 0;
            points[i].x = points[i - 1].x + (points[i].x - points[i - 1].x) * a;
            points[i].y = points[i - 1].y + (points[i].y - points[i - 1].y) * a;
            if (kWeighted) points[i].w = points[i - 1].w + (points[i].w - points[i - 1].w) * a;
        }
    }
    if (!kWeighted) return {points[p].x, points[p].y};
    return {points[p].x / points[p].w, points[p].y / points[p].w};
}

// Knots that begin and end on the curve's ends, evenly apart between.
static void SetEvenKnots(DxfSpline* s) {
    const std::size_t n = s->controls.size(), p = static_cast<std::size_t>(s->degree);
    s->knots.resize(n + p + 1);
    for (std::size_t i = 0; i < s->knots.size(); ++i) {
        s->knots[i] = i <= p ? 0 : i >= n ? static_cast<double>(n - p) : static_cast<double>(i - p);
    }
}

static void PathAlongControls(DxfDecoder& dxf, DxfSpline* s) {
    const std::size_t n = s->controls.size();
    if (s->degree > kMostDegree || s->degree < 1 || n < 3 || dxf.budget.left == 0) {
        for (const WorldPoint& p : s->controls) PathTo(dxf, p);
        return;
    }
    if (static_cast<std::size_t>(s->degree) >= n) s->degree = static_cast<int>(n) - 1;
    const auto p = static_cast<std::size_t>(s->degree);
    bool usable = s->knots.size() == n + p + 1 && std::isfinite(s->knots[0]);
    for (std::size_t i = 1; usable && i < s->knots.size(); ++i) {
        if (!(s->knots[i] >= s->knots[i - 1])) s->knots[i] = s->knots[i - 1];
        usable = std::isfinite(s->knots[i]);
    }
    if (!usable || !(s->knots[p] < s->knots[n])) SetEvenKnots(s);
    const auto at = s->weights.empty() ? PointOfSpline<false> : PointOfSpline<true>;
    for (std::size_t span = p; span < n && dxf.MayContinue(); ++span) {
        const double from = s->knots[span], to = s->knots[span + 1];
        if (!(to > from)) continue;
        dxf.budget.Charge(std::int64_t{4} * s->degree);
        if (s->degree == 1) {
            PathTo(dxf, at(*s, span, from));
            PathTo(dxf, at(*s, span, to));
        } else {
            double length = 0;  // of the control points' line, which the curve's does not exceed
            for (std::size_t i = span - p; i < span; ++i) {
                length += Length(s->controls[i + 1].x - s->controls[i].x, s->controls[i + 1].y - s->controls[i].y);
            }
            const auto point = [&](double t) {
                dxf.budget.Charge(std::int64_t{s->degree} * s->degree / 16);  // nothing up to the usual cubic
                return at(*s, span, t);
            };
            PathAlongPiece(dxf, point, from, to, length);
        }
    }
}

// ---- Curves through points

// A cubic spline through the points, its parameter the chords' length: solved for the tangents at the points. `weights`
// and `controls` are free here and hold what the solution needs.
static void PathAlongFits(DxfDecoder& dxf, DxfSpline* s) {
    std::vector<WorldPoint>& points = s->fits;
    dxf.budget.Charge(static_cast<long long>(points.size()));
    // Points on one spot have no chord between them.
    points.erase(std::unique(points.begin(), points.end(),
                             [](WorldPoint a, WorldPoint b) { return Length(a.x - b.x, a.y - b.y) < 1e-12; }),
                 points.end());
    // A closed curve is solved with some of its points again at both ends, whose influence fades by four each.
    std::size_t lead = 0;
    if (s->closed && points.size() > 2) {
        constexpr std::size_t kWrap = 8;
        if (Length(points.front().x - points.back().x, points.front().y - points.back().y) < 1e-9) points.pop_back();
        const std::size_t count = points.size();
        lead = std::min(kWrap, count);
        std::vector<WorldPoint>& wrapped = s->controls;
        wrapped.clear();
        for (std::size_t i = 0; i < count + 2 * lead + 1; ++i) wrapped.push_back(points[(i + count - lead) % count]);
        points.swap(wrapped);
    }
    const std::size_t n = points.size();
    if (n < 3) {
        for (const WorldPoint& p : points) PathTo(dxf, p);
        return;
    }
    std::vector<double>& lengths = s->knots;  // of the chords
    lengths.resize(n);
    for (std::size_t i = 0; i + 1 < n; ++i) {
        lengths[i] = std::max(Length(points[i + 1].x - points[i].x, points[i + 1].y - points[i].y), 1e-12);
    }
    // Tridiagonal equations for the tangents; the ends are free (no curvature) or given.
    std::vector<WorldPoint>& tangents = s->controls;
    std::vector<double>& upper = s->weights;
    tangents.assign(n, {});
    upper.assign(n, 0);
    const auto given = [&](WorldPoint t, std::size_t at) {
        const double length = Length(t.x, t.y);
        if (!(length > 0) || lead) return false;
        tangents[at] = {t.x / length, t.y / length};
        return true;
    };
    if (!given(s->startTangent, 0)) {
        upper[0] = 0.5;
        tangents[0] = {1.5 * (points[1].x - points[0].x) / lengths[0], 1.5 * (points[1].y - points[0].y) / lengths[0]};
    }
    for (std::size_t i = 1; i + 1 < n; ++i) {
        const double a = 1 / lengths[i - 1], c = 1 / lengths[i], diagonal = 2 * (a + c) - a * upper[i - 1];
        const double a3 = 3 * a * a, c3 = 3 * c * c;
        const double rx = a3 * (points[i].x - points[i - 1].x) + c3 * (points[i + 1].x - points[i].x);
        const double ry = a3 * (points[i].y - points[i - 1].y) + c3 * (points[i + 1].y - points[i].y);
        upper[i] = c / diagonal;
        tangents[i] = {(rx - a * tangents[i - 1].x) / diagonal, (ry - a * tangents[i - 1].y) / diagonal};
    }
    if (!given(s->endTangent, n - 1)) {
        const double h = lengths[n - 2], diagonal = 2 - upper[n - 2];
        tangents[n - 1] = {(3 * (points[n - 1].x - points[n - 2].x) / h - tangents[n - 2].x) / diagonal,
                           (3 * (points[n - 1].y - points[n - 2].y) / h - tangents[n - 2].y) / diagonal};
    }
    for (std::size_t i = n - 1; i-- > 0;) {
        tangents[i].x -= upper[i] * tangents[i + 1].x;
        tangents[i].y -= upper[i] * tangents[i + 1].y;
    }
    for (std::size_t i = lead; i + 1 + lead < n && dxf.MayContinue(); ++i) {
        const WorldPoint a = points[i], b = points[i + 1];
        const double h = lengths[i];
        const WorldPoint u = {tangents[i].x * h, tangents[i].y * h}, v = {tangents[i + 1].x * h, tangents[i + 1].y * h};
        PathAlongPiece(
            dxf,
            [&](double t) -> WorldPoint {
                const double t2 = t * t, t3 = t2 * t;
                const double ka = 2 * t3 - 3 * t2 + 1, ku = t3 - 2 * t2 + t, kb = 3 * t2 - 2 * t3, kv = t3 - t2;
                return {ka * a.x + ku * u.x + kb * b.x + kv * v.x, ka * a.y + ku * u.y + kb * b.y + kv * v.y};
            },
            0, 1, 2 * h);
    }
}

// While the drawing is measured: a curve lies within its control points' box, and mostly that is enough.
static bool CannotMatter(DxfDecoder& dxf, const DxfSpline& spline) {
    if (!dxf.IsMeasuring() || dxf.path.area || spline.controls.empty() || !spline.weights.empty()) return false;
    WorldRect box = {};
    for (std::size_t i = 0; i < spline.controls.size(); ++i) {
        const WorldPoint p = spline.controls[i];
        if (i == 0) box = {p.x, p.y, p.x, p.y};
        box = {std::min(box.minX, p.x), std::min(box.minY, p.y), std::max(box.maxX, p.x), std::max(box.maxY, p.y)};
    }
    if (dxf.box->Matters(box)) return false;
    ++dxf.box->count;
    return true;
}

void PathAlong(DxfDecoder& dxf, DxfSpline* spline) {
    if (CannotMatter(dxf, *spline)) return;
    if (spline->controls.size() >= 2) PathAlongControls(dxf, spline);
    else PathAlongFits(dxf, spline);
}

// ---- SPLINE

// From dxf.groups to dxf.spline, as the map has it.
static void ReadSpline(DxfDecoder& dxf, const PlaneMap& map) {
    DxfSpline& spline = dxf.spline;
    spline.Clear();
    spline.degree = dxf.groups.Integer(71, 3);
    spline.closed = dxf.groups.Integer(70) & 1;
    if (dxf.groups.Has(12)) spline.startTangent = map.Direction(PointOf(dxf.groups, 12));
    if (dxf.groups.Has(13)) spline.endTangent = map.Direction(PointOf(dxf.groups, 13));
    DxfRecordWalk record(dxf.groups);
    DxfPair pair;
    Vector3 point = {};
    std::vector<WorldPoint>* open = nullptr;
    const auto flush = [&] {
        if (open && open->size() < kMostSplinePoints) open->push_back(map.Point(point));
        open = nullptr;
    };
    while (record.Next(&pair) && dxf.MayContinue()) {
        if (pair.code == 100 && IsName(Trimmed(pair.value), "AcDbHelix")) break;  // its axis and turns follow
        if (pair.code < 10 || pair.code > 59) continue;
        const double value = DxfNumber(dxf.form, pair.code, pair.value);
        switch (pair.code) {
            case 10:
            case 11:
                flush();
                open = pair.code == 10 ? &spline.controls : &spline.fits;
                point = {value, 0, 0};
                break;
            case 20:
            case 21: point.y = value; break;
            case 30:
            case 31: point.z = value; break;
            case 40:
                if (spline.knots.size() < kMostSplinePoints + kMostDegree + 1) spline.knots.push_back(value);
                break;
            case 41:
                if (spline.weights.size() < kMostSplinePoints) spline.weights.push_back(value);
                break;
            default: break;
        }
    }
    flush();
}

static void DrawSpline(DxfDecoder& dxf) {
    BeginPath(dxf);
    PathAlong(dxf, &dxf.spline);
    EndPath(dxf);
}

void DrawDxfSpline(DxfDecoder& dxf, DxfReader*) {
    ReadSpline(dxf, dxf.map);
    DrawSpline(dxf);
}

// A step has the degree, the numbers of control points, fit points and weights, both tangents, and behind them the
// points, weights and knots.
static constexpr std::size_t kSplineHead = 8;

bool TakeDxfSpline(DxfDecoder& dxf, DxfReader*, DxfStep* step) {
    constexpr std::size_t kMost = 1 << 14;
    ReadSpline(dxf, kFromAbove);
    const DxfSpline& s = dxf.spline;
    if (s.controls.size() > kMost || s.fits.size() > kMost || s.knots.size() > kMost) return false;
    std::vector<double>& out = dxf.numbers;
    out = {static_cast<double>(s.degree),
           static_cast<double>(s.controls.size()),
           static_cast<double>(s.fits.size()),
           static_cast<double>(s.weights.size()),
           s.startTangent.x,
           s.startTangent.y,
           s.endTangent.x,
           s.endTangent.y};
    for (const auto* points : {&s.controls, &s.fits}) {
        for (const WorldPoint& p : *points) out.insert(out.end(), {p.x, p.y});
    }
    out.insert(out.end(), s.weights.begin(), s.weights.end());
    out.insert(out.end(), s.knots.begin(), s.knots.end());
    step->what = DxfStep::kSpline;
    step->detail = s.closed;
    return true;
}

void DrawDxfSplineStep(DxfDecoder& dxf, const DxfStep& step) {
    const double *at = step.numbers + kSplineHead, *const head = step.numbers, *const end = head + step.count;
    DxfSpline& s = dxf.spline;
    s.degree = static_cast<int>(head[0]);
    s.closed = step.detail != 0;
    s.startTangent = dxf.map.Direction({head[4], head[5], 0});
    s.endTangent = dxf.map.Direction({head[6], head[7], 0});
    s.controls.resize(static_cast<std::size_t>(head[1]));
    s.fits.resize(static_cast<std::size_t>(head[2]));
    for (auto* points : {&s.controls, &s.fits}) {
        for (WorldPoint& p : *points) {
            p = dxf.map.Point({at[0], at[1], 0});
            at += 2;
        }
    }
    const auto weights = static_cast<std::size_t>(head[3]);
    s.weights.assign(at, at + weights);
    s.knots.assign(at + weights, end);
    DrawSpline(dxf);
}
