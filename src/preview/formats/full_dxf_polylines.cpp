// LWPOLYLINE and POLYLINE: lines and arcs from vertex to vertex, thin or as bands of their width, and the meshes that
// share POLYLINE's form.
#include <algorithm>
#include <cmath>

#include "preview/formats/full_dxf_decoder.h"

namespace {

struct Vertex {
    double x = 0, y = 0, z = 0;
    double bulge = 0;
    double startWidth = 0, endWidth = 0;
};

// Draws a polyline while its vertices arrive.
struct Polyline {
    DxfDecoder& dxf;
    bool flat;  // bulges and widths count
    std::size_t count = 0;
    Vertex first, last;

    void Add(const Vertex& vertex);
    void Finish(bool closed);

private:
    bool BulgeCannotMatter(const Vertex& from, const Vertex& to) const;
    void DrawSegment(const Vertex& from, const Vertex& to);
    void DrawBand(const Vertex& from, const Vertex& to);
};

// A band thinner than this is a line.
constexpr double kThinPixels = 1.5;

void Polyline::DrawBand(const Vertex& from, const Vertex& to) {
    const double half = from.startWidth / 2, endHalf = from.endWidth / 2;
    const double chord = Length(to.x - from.x, to.y - from.y);
    if (!(chord > 0)) return;
    ConicArc arc;
    const bool round = ArcOfBulge(dxf.map, from.x, from.y, to.x, to.y, from.z, from.bulge, &arc);
    const Conic& conic = arc.conic;
    const double radius = round ? chord * (1 + from.bulge * from.bulge) / (4 * std::fabs(from.bulge)) : 0;
    const double start = round ? std::atan2(arc.startSin, arc.startCos) : 0;
    const int pieces = round ? SegmentsOfTurn(dxf, Length(conic.u.x, conic.u.y), arc.sweep) : 1;
    // One side there, the other back. Offsets are to the left of the way.
    BeginPath(dxf, true);
    const double nx = -(to.y - from.y) / chord, ny = (to.x - from.x) / chord;
    for (int side = 1; side >= -1; side -= 2) {
        for (int i = 0; i <= pieces; ++i) {
            const double t = static_cast<double>(side > 0 ? i : pieces - i) / pieces;
            const double offset = (half + (endHalf - half) * t) * side;
            if (round) {
                // Left of a counter-clockwise arc is toward the centre.
                const double scale = 1 - (arc.sweep > 0 ? offset : -offset) / radius;
                const WorldPoint p = conic.At(start + arc.sweep * t), centre = conic.centre;
                PathTo(dxf, {centre.x + (p.x - centre.x) * scale, centre.y + (p.y - centre.y) * scale});
            } else {
                const Vertex& end = t == 0 ? from : to;
                PathTo(dxf, dxf.map.Point({end.x + nx * offset, end.y + ny * offset, from.z}));
            }
        }
    }
    EndPath(dxf);
}

// While the drawing is measured: whether an arc lies where its box changes nothing. Up to a semicircle it stays within
// half its chord.
bool Polyline::BulgeCannotMatter(const Vertex& from, const Vertex& to) const {
    if (!dxf.IsMeasuring() || std::fabs(from.bulge) > 1) return false;
    const WorldPoint a = dxf.map.Point({from.x, from.y, from.z}), b = dxf.map.Point({to.x, to.y, from.z});
    const double stretch =
        std::fabs(dxf.map.xx) + std::fabs(dxf.map.xy) + std::fabs(dxf.map.yx) + std::fabs(dxf.map.yy);
    const double room = (std::fabs(to.x - from.x) + std::fabs(to.y - from.y)) * stretch;
    return !dxf.box->Matters(
        {std::min(a.x, b.x) - room, std::min(a.y, b.y) - room, std::max(a.x, b.x) + room, std::max(a.y, b.y) + room});
}

void Polyline::DrawSegment(const Vertex& from, const Vertex& to) {
    if (flat) {
        const double widest = std::max(std::fabs(from.startWidth), std::fabs(from.endWidth));
        if (widest > 0 && (dxf.IsMeasuring() || widest > dxf.pixel * kThinPixels)) {
            EndPath(dxf);
            DrawBand(from, to);
            BeginPath(dxf);
            return;
        }
        ConicArc arc;
        if (from.bulge != 0 && BulgeCannotMatter(from, to)) {
            PathTo(dxf, dxf.map.Point({from.x, from.y, from.z}));
            PathTo(dxf, dxf.map.Point({to.x, to.y, to.z}));
            return;
        }
        if (ArcOfBulge(dxf.map, from.x, from.y, to.x, to.y, from.z, from.bulge, &arc)) return PathAlong(dxf, arc);
    }
    if (dxf.path.points.empty()) PathTo(dxf, dxf.map.Point({from.x, from.y, from.z}));
    PathTo(dxf, dxf.map.Point({to.x, to.y, to.z}));
}

void Polyline::Add(const Vertex& vertex) {
    if (count++ == 0) {
        first = vertex;
        BeginPath(dxf);
    } else {
        DrawSegment(last, vertex);
    }
    last = vertex;
}

void Polyline::Finish(bool closed) {
    if (count == 0) return;
    if (closed && count > 1) DrawSegment(last, first);
    if (count == 1) PathTo(dxf, dxf.map.Point({first.x, first.y, first.z}));
    EndPath(dxf);
}

}  // namespace

// Calls `add` with vertex after vertex of the LWPOLYLINE in dxf.groups, as long as it wants more.
template <typename Add>
static void ForLwVertices(const DxfDecoder& dxf, const Add& add) {
    const DxfGroups& groups = dxf.groups;
    const double elevation = groups.Number(38), width = groups.Number(43);
    DxfRecordWalk record(groups);
    DxfPair pair;
    Vertex vertex;
    bool open = false;
    while (record.Next(&pair)) {
        switch (pair.code) {
            case 10:
                if (open && !add(vertex)) return;
                open = true;
                vertex = {DxfNumber(dxf.form, 10, pair.value), 0, elevation, 0, width, width};
                break;
            case 20: vertex.y = DxfNumber(dxf.form, 20, pair.value); break;
            case 40: vertex.startWidth = DxfNumber(dxf.form, 40, pair.value); break;
            case 41: vertex.endWidth = DxfNumber(dxf.form, 41, pair.value); break;
            case 42: vertex.bulge = DxfNumber(dxf.form, 42, pair.value); break;
            default: break;
        }
    }
    if (open) add(vertex);
}

void DrawDxfLwPolyline(DxfDecoder& dxf, DxfReader*) {
    Polyline line = {dxf, true, 0, {}, {}};
    ForLwVertices(dxf, [&](const Vertex& vertex) {
        line.Add(vertex);
        return dxf.MayContinue();
    });
    line.Finish(dxf.groups.Integer(70) & 1);
}

// ---- Steps

namespace {

// What a step says of its polyline, and whether its vertices have more than x and y: then bulges, and behind them
// widths.
enum PolylineForm : std::uint8_t { kFlatForm = 1, kClosedForm = 2, kBulges = 4, kWidths = 8 };

std::size_t NumbersOfVertex(int form) { return form & kWidths ? 5 : form & kBulges ? 3 : 2; }

// Gathers a polyline's vertices, all with five numbers at first.
struct PolylineTaker {
    std::vector<double>& numbers;
    int form;
    bool Add(const Vertex& vertex);  // false when it is too long for a step
    void Finish(DxfStep* step);
};

bool PolylineTaker::Add(const Vertex& v) {
    constexpr std::size_t kMost = 1 << 16;
    if (numbers.size() >= kMost) return false;
    if (v.bulge != 0) form |= kBulges;
    if (v.startWidth != 0 || v.endWidth != 0) form |= kWidths;
    numbers.insert(numbers.end(), {v.x, v.y, v.bulge, v.startWidth, v.endWidth});
    return true;
}

void PolylineTaker::Finish(DxfStep* step) {
    const std::size_t size = NumbersOfVertex(form), count = numbers.size() / 5;
    for (std::size_t i = 1; i < count; ++i) std::copy_n(&numbers[i * 5], size, &numbers[i * size]);
    numbers.resize(count * size);
    step->what = DxfStep::kPolyline;
    step->detail = static_cast<std::uint8_t>(form);
}

}  // namespace

bool TakeDxfLwPolyline(DxfDecoder& dxf, DxfReader*, DxfStep* step) {
    PolylineTaker taker = {dxf.numbers, kFlatForm | (dxf.groups.Integer(70) & 1 ? kClosedForm : 0)};
    bool fits = true;
    ForLwVertices(dxf, [&](const Vertex& vertex) { return fits = taker.Add(vertex); });
    if (fits) taker.Finish(step);
    return fits;
}

void DrawDxfPolylineStep(DxfDecoder& dxf, const DxfStep& step) {
    Polyline line = {dxf, (step.detail & kFlatForm) != 0, 0, {}, {}};
    const std::size_t size = NumbersOfVertex(step.detail);
    const double* const end = step.numbers + step.count;
    Vertex vertex;
    for (const double* n = step.numbers; n != end && dxf.MayContinue(); n += size) {
        vertex.x = n[0];
        vertex.y = n[1];
        if (size > 2) vertex.bulge = n[2];
        if (size > 3) vertex.startWidth = n[3], vertex.endWidth = n[4];
        line.Add(vertex);
    }
    line.Finish(step.detail & kClosedForm);
}

// ---- POLYLINE

namespace {

enum PolylineFlag { kClosed = 1, kFitted = 2, kSplined = 4, k3d = 8, kMesh = 16, kClosedAcross = 32, kFaces = 64 };
enum VertexFlag { kFramePoint = 16, kMeshVertex = 64, kFaceVertex = 128 };

// The next VERTEX of the polyline, in dxf.groups; false at its end, before which the reader then stands unless it was a
// SEQEND.
bool NextVertex(DxfDecoder& dxf, DxfReader* reader) {
    const std::size_t before = reader->at;
    DxfPair pair;
    if (!dxf.MayContinue() || !reader->Next(&pair)) return false;
    const ByteView kind = Trimmed(pair.value);
    if (pair.code != 0 || !IsName(kind, "VERTEX")) {
        if (!IsName(kind, "SEQEND")) reader->at = before;
        return false;
    }
    dxf.groups.Read(reader);
    dxf.budget.Charge(1 + static_cast<long long>((reader->at - before) / 16));
    return true;
}

constexpr std::size_t kMostCorners = 1 << 17;  // of a mesh

// A mesh in rows of `n` vertices: lines along the rows and across.
void DrawMesh(DxfDecoder& dxf, DxfReader* reader, int flags, int n) {
    std::vector<WorldPoint>& corners = dxf.corners;
    corners.clear();
    const std::size_t row = n > 0 ? static_cast<std::size_t>(n) : kMostCorners;
    while (NextVertex(dxf, reader)) {
        if ((dxf.groups.Integer(70) & kFramePoint) && (flags & kSplined)) continue;
        if (corners.size() >= kMostCorners) continue;
        corners.push_back(dxf.map.Point(PointOf(dxf.groups, 10)));
        const std::size_t last = corners.size() - 1, column = last % row;
        if (column > 0) DrawDxfLine(dxf, corners[last - 1], corners[last]);
        if (last >= row) DrawDxfLine(dxf, corners[last - row], corners[last]);
        if ((flags & kClosedAcross) && column == row - 1) DrawDxfLine(dxf, corners[last], corners[last - column]);
    }
    if (!(flags & kClosed) || corners.size() < 2 * row) return;
    const std::size_t lastRow = corners.size() / row * row - row;
    for (std::size_t i = 0; i < row; ++i) DrawDxfLine(dxf, corners[lastRow + i], corners[i]);
}

// Vertices first, then faces by the vertices' numbers, from 1; a negative one begins a hidden edge.
void DrawFaces(DxfDecoder& dxf, DxfReader* reader) {
    std::vector<WorldPoint>& vertices = dxf.corners;
    vertices.clear();
    while (NextVertex(dxf, reader)) {
        const DxfGroups& groups = dxf.groups;
        const int flags = groups.Integer(70);
        if (flags & kMeshVertex) {
            if (vertices.size() < kMostCorners) vertices.push_back(dxf.map.Point(PointOf(groups, 10)));
            continue;
        }
        if (!(flags & kFaceVertex)) continue;
        int numbers[4], count = 0;
        while (count < 4 && groups.Integer(71 + count) != 0) {
            numbers[count] = groups.Integer(71 + count);
            ++count;
        }
        for (int i = 0; i < count; ++i) {
            const auto from = static_cast<std::size_t>(std::abs(numbers[i]));
            const auto to = static_cast<std::size_t>(std::abs(numbers[(i + 1) % count]));
            if (numbers[i] < 0 || from > vertices.size() || to > vertices.size()) continue;
            DrawDxfLine(dxf, vertices[from - 1], vertices[to - 1]);
        }
    }
}

}  // namespace

// Calls `add` with vertex after vertex of the POLYLINE in dxf.groups, as long as it wants more.
template <typename Add>
static void ForVertices(DxfDecoder& dxf, DxfReader* reader, bool flat, const Add& add) {
    const DxfGroups& groups = dxf.groups;
    const double elevation = groups.Number(30), startWidth = groups.Number(40), endWidth = groups.Number(41);
    while (NextVertex(dxf, reader)) {
        if (groups.Integer(70) & kFramePoint) continue;  // what a smooth line was made from
        const Vertex vertex = {groups.Number(10),
                               groups.Number(20),
                               flat ? elevation : groups.Number(30),
                               groups.Number(42),
                               groups.Number(40, startWidth),
                               groups.Number(41, endWidth)};
        if (!add(vertex)) return;
    }
}

void DrawDxfPolyline(DxfDecoder& dxf, DxfReader* reader) {
    const DxfGroups& groups = dxf.groups;
    const int flags = groups.Integer(70);
    const int n = groups.Integer(72), smoothN = groups.Integer(74);
    const bool flat = !(flags & (k3d | kMesh | kFaces));
    if (!flat) dxf.map = dxf.place->map;  // three-dimensional ones are not in their own axes
    if (flags & kFaces) return DrawFaces(dxf, reader);
    if (flags & kMesh) return DrawMesh(dxf, reader, flags, (flags & kSplined) && smoothN > 0 ? smoothN : n);
    Polyline line = {dxf, flat, 0, {}, {}};
    ForVertices(dxf, reader, flat, [&](const Vertex& vertex) {
        line.Add(vertex);
        return true;
    });
    line.Finish(flags & kClosed);
}

bool TakeDxfPolyline(DxfDecoder& dxf, DxfReader* reader, DxfStep* step) {
    const int flags = dxf.groups.Integer(70);
    if (flags & (kMesh | kFaces)) return false;
    const bool flat = !(flags & k3d);
    PolylineTaker taker = {dxf.numbers, (flat ? kFlatForm : 0) | (flags & kClosed ? kClosedForm : 0)};
    bool fits = true;
    ForVertices(dxf, reader, flat, [&](const Vertex& vertex) { return fits = taker.Add(vertex); });
    if (fits) taker.Finish(step);
    return fits;
}
