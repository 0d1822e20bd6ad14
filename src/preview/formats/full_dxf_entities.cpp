// The kinds of entities: a table of all, and those that are a few lines each.
#include <cmath>
#include <iterator>

#include "preview/formats/full_dxf_decoder.h"

// ---- Simple kinds: drawn as they stand in space, or taken as steps of the plane, where heights are not even read

// What a dimension was measured from.
static bool IsDefinitionPoint(const DxfGroups& groups) { return IsName(Trimmed(groups.Text(8)), "DEFPOINTS"); }

static void DrawPoint(DxfDecoder& dxf, DxfReader*) {
    if (!IsDefinitionPoint(dxf.groups)) DrawDxfPoint(dxf, dxf.map.Point(PointOf(dxf.groups, 10)));
}
static bool TakePoint(DxfDecoder& dxf, DxfReader*, DxfStep* step) {
    if (IsDefinitionPoint(dxf.groups)) return true;
    step->what = DxfStep::kPoint;
    dxf.numbers = {dxf.groups.Number(10), dxf.groups.Number(20)};
    return true;
}

static void DrawLine(DxfDecoder& dxf, DxfReader*) {
    DrawDxfLine(dxf, dxf.map.Point(PointOf(dxf.groups, 10)), dxf.map.Point(PointOf(dxf.groups, 11)));
}
static bool TakeLine(DxfDecoder& dxf, DxfReader*, DxfStep* step) {
    const DxfGroups& groups = dxf.groups;
    step->what = DxfStep::kLine;
    dxf.numbers = {groups.Number(10), groups.Number(20), groups.Number(11), groups.Number(21)};
    return true;
}

void DrawDxfCircleArc(DxfDecoder& dxf, Vector3 centre, double radius, double start, double sweep) {
    const Conic conic = {dxf.map.Point(centre), dxf.map.Direction({radius, 0, 0}), dxf.map.Direction({0, radius, 0})};
    DrawDxfConic(dxf, conic, start, sweep);
}
static bool TakeCircleArc(DxfDecoder& dxf, double start, double sweep, DxfStep* step) {
    const DxfGroups& groups = dxf.groups;
    step->what = DxfStep::kCircle;
    dxf.numbers = {groups.Number(10), groups.Number(20), std::fabs(groups.Number(40)), start, sweep};
    return true;
}

static void DrawCircle(DxfDecoder& dxf, DxfReader*) {
    DrawDxfCircleArc(dxf, PointOf(dxf.groups, 10), std::fabs(dxf.groups.Number(40)), 0, kTurn);
}
static bool TakeCircle(DxfDecoder& dxf, DxfReader*, DxfStep* step) { return TakeCircleArc(dxf, 0, kTurn, step); }

// The way from one angle to another, counter-clockwise; a whole turn when they are one.
static double SweepOf(double start, double end) {
    double sweep = end - start;
    if (!(std::fabs(sweep) < kTurn)) sweep = std::fmod(sweep, kTurn);
    if (sweep < 0) sweep += kTurn;
    return sweep < 1e-9 ? kTurn : sweep;
}

struct Angles {
    double start, sweep;
};
static Angles AnglesOf(const DxfGroups& groups) {
    const double start = Radians(groups.Number(50)), end = Radians(groups.Number(51, 360));
    return {start, SweepOf(start, end)};
}

static void DrawArc(DxfDecoder& dxf, DxfReader*) {
    const Angles angles = AnglesOf(dxf.groups);
    DrawDxfCircleArc(dxf, PointOf(dxf.groups, 10), std::fabs(dxf.groups.Number(40)), angles.start, angles.sweep);
}
static bool TakeArc(DxfDecoder& dxf, DxfReader*, DxfStep* step) {
    const Angles angles = AnglesOf(dxf.groups);
    return TakeCircleArc(dxf, angles.start, angles.sweep, step);
}

// The normal turns the minor axis; all else is the drawing's.
static void DrawEllipse(DxfDecoder& dxf, DxfReader*) {
    const DxfGroups& groups = dxf.groups;
    const Vector3 major = PointOf(groups, 11);
    const Vector3 n = AxesOfNormal(NormalOf(groups)).z;
    const double ratio = groups.Number(40, 1);
    const Vector3 minor = {(n.y * major.z - n.z * major.y) * ratio, (n.z * major.x - n.x * major.z) * ratio,
                           (n.x * major.y - n.y * major.x) * ratio};
    const double start = groups.Number(41, 0), end = groups.Number(42, kTurn);
    const Conic conic = {dxf.map.Point(PointOf(groups, 10)), dxf.map.Direction(major), dxf.map.Direction(minor)};
    DrawDxfConic(dxf, conic, start, SweepOf(start, end));
}

// Corners 1, 2, 4, 3 go around it. A missing fourth is the third.
static void DrawSolid(DxfDecoder& dxf, DxfReader*) {
    const DxfGroups& groups = dxf.groups;
    const int codes[] = {10, 11, groups.Has(13) ? 13 : 12, 12};
    BeginPath(dxf, true);
    for (const int code : codes) PathTo(dxf, dxf.map.Point(PointOf(groups, code)));
    EndPath(dxf);
    DrawDxfLine(dxf, dxf.map.Point(PointOf(groups, 10)),
                dxf.map.Point(PointOf(groups, 11)));  // one thinner than a pixel
}

static void Draw3dFace(DxfDecoder& dxf, DxfReader*) {
    const DxfGroups& groups = dxf.groups;
    const int hidden = groups.Integer(70);
    const int codes[] = {10, 11, 12, groups.Has(13) ? 13 : 12};
    BeginPath(dxf);
    for (int edge = 0; edge < 4; ++edge) {
        if (hidden >> edge & 1) {
            EndOutline(dxf);
            continue;
        }
        const WorldPoint from = dxf.map.Point(PointOf(groups, codes[edge]));
        PathTo(dxf, from);
        PathTo(dxf, dxf.map.Point(PointOf(groups, codes[(edge + 1) % 4])));
    }
    EndPath(dxf);
}

static void DrawEndless(DxfDecoder& dxf, bool bothWays) {
    if (dxf.PassesAside()) return;
    const ViewTransform& view = dxf.sink->view;
    const WorldPoint base = dxf.map.Point(PointOf(dxf.groups, 10)), along = dxf.map.Direction(PointOf(dxf.groups, 11));
    const double length = Length(along.x, along.y);
    // Far enough to leave the window whichever way it goes.
    const double reach = dxf.IsMeasuring() ? 1
                                           : Length(view.worldMaxX - view.worldMinX, view.worldMaxY - view.worldMinY) +
                                                 Length(base.x - view.worldMinX, base.y - view.worldMinY);
    if (!(length > 0) || !IsDrawable(length) || !IsDrawable(reach)) return;
    const WorldPoint step = {along.x / length * reach, along.y / length * reach};
    DrawDxfLine(dxf, bothWays ? WorldPoint{base.x - step.x, base.y - step.y} : base,
                {base.x + step.x, base.y + step.y});
}
static void DrawRay(DxfDecoder& dxf, DxfReader*) { DrawEndless(dxf, false); }
static void DrawXLine(DxfDecoder& dxf, DxfReader*) { DrawEndless(dxf, true); }

// One line for each element of its style: a vertex tells each one's distance along its miter. The first vertex tells
// how many there are.
static void DrawMLine(DxfDecoder& dxf, DxfReader*) {
    constexpr int kMostElements = 16;
    WorldPoint before[kMostElements], first[kMostElements];
    const bool closed = dxf.groups.Integer(71) & 2;
    DxfRecordWalk record(dxf.groups);
    DxfPair pair;
    Vector3 vertex = {}, miter = {};
    int vertices = 0, elements = 0, element = 0, parameters = 0;
    while (record.Next(&pair) && dxf.MayContinue()) {
        const double value = pair.code < 60 ? DxfNumber(dxf.form, pair.code, pair.value) : 0;
        switch (pair.code) {
            case 11:
                vertex = {value, 0, 0};
                ++vertices;
                element = 0;
                break;
            case 21: vertex.y = value; break;
            case 31: vertex.z = value; break;
            case 13: miter = {value, 0, 0}; break;
            case 23: miter.y = value; break;
            case 33: miter.z = value; break;
            case 74: parameters = 0; break;
            case 41: {
                if (parameters++ != 0 || element >= kMostElements) break;
                const WorldPoint at =
                    dxf.map.Point({vertex.x + miter.x * value, vertex.y + miter.y * value, vertex.z + miter.z * value});
                if (vertices == 1) first[elements++] = at;
                else if (element < elements) DrawDxfLine(dxf, before[element], at);
                before[element++] = at;
                break;
            }
            default: break;
        }
    }
    for (int i = 0; closed && vertices > 2 && i < elements; ++i) DrawDxfLine(dxf, before[i], first[i]);
}

static void DrawOutline(DxfDecoder& dxf, const Vector3* corners, int count) {
    BeginPath(dxf);
    for (int i = 0; i <= count; ++i) PathTo(dxf, dxf.map.Point(corners[i % count]));
    EndPath(dxf);
}

// The frame of a picture: its size in picture points along two edges, each as long as one point.
static void DrawImage(DxfDecoder& dxf, DxfReader*) {
    const DxfGroups& groups = dxf.groups;
    const Vector3 at = PointOf(groups, 10), u = PointOf(groups, 11), v = PointOf(groups, 12);
    const double w = groups.Number(13), h = groups.Number(23);
    const Vector3 corners[] = {at,
                               {at.x + u.x * w, at.y + u.y * w, at.z + u.z * w},
                               {at.x + u.x * w + v.x * h, at.y + u.y * w + v.y * h, at.z + u.z * w + v.z * h},
                               {at.x + v.x * h, at.y + v.y * h, at.z + v.z * h}};
    DrawOutline(dxf, corners, 4);
}

static void DrawOleFrame(DxfDecoder& dxf, DxfReader*) {
    if (!dxf.groups.Has(10)) return;  // the oldest ones keep their place in their data
    const Vector3 a = PointOf(dxf.groups, 10), b = PointOf(dxf.groups, 11);
    const Vector3 corners[] = {a, {b.x, a.y, a.z}, b, {a.x, b.y, b.z}};
    DrawOutline(dxf, corners, 4);
}

// A mesh of faces: behind 92 its vertices, behind 93 the faces, each a number of corners and these, behind 94 edges.
static void DrawMesh(DxfDecoder& dxf, DxfReader*) {
    constexpr std::size_t kMostVertices = 1 << 17;
    std::vector<WorldPoint>& vertices = dxf.corners;
    vertices.clear();
    DxfRecordWalk record(dxf.groups);
    DxfPair pair;
    Vector3 vertex = {};
    int part = 0;        // the group that began it
    long long left = 0;  // corners of the open face
    WorldPoint first = {};
    bool open = false;
    BeginPath(dxf);
    while (part != 94 && record.Next(&pair) && dxf.MayContinue()) {
        if (pair.code >= 92 && pair.code <= 94) part = pair.code;
        if (part == 92 && pair.code == 10) vertex.x = DxfNumber(dxf.form, 10, pair.value);
        if (part == 92 && pair.code == 20) vertex.y = DxfNumber(dxf.form, 20, pair.value);
        if (part == 92 && pair.code == 30) {
            vertex.z = DxfNumber(dxf.form, 30, pair.value);
            if (vertices.size() < kMostVertices) vertices.push_back(dxf.map.Point(vertex));
        }
        if (part != 93 || pair.code != 90) continue;
        const long long number = DxfInteger(dxf.form, 90, pair.value);
        if (left <= 0) {
            left = number;
            open = false;
            EndOutline(dxf);
            continue;
        }
        --left;
        if (number < 0 || static_cast<unsigned long long>(number) >= vertices.size()) continue;
        const WorldPoint at = vertices[static_cast<std::size_t>(number)];
        if (!open) first = at;
        open = true;
        PathTo(dxf, at);
        if (left == 0) PathTo(dxf, first);
    }
    EndPath(dxf);
}

static void DrawAttributeDefinition(DxfDecoder& dxf, DxfReader* reader) {
    if (dxf.place->depth == 0) DrawDxfAttributeDefinition(dxf, reader);
}

static void DrawAttribute(DxfDecoder& dxf, DxfReader* reader) {
    if (!dxf.attributesHidden && !(dxf.groups.Integer(70) & 1)) DrawDxfAttribute(dxf, reader);
}

// ---- The table

using Space = DxfKind::Space;

// What is not here passes by, as do the kinds that show nothing: VIEWPORT, WIPEOUT, proxies.
constexpr DxfKind kDxfKinds[] = {
    {"LINE", DrawLine, Space::kWorld, TakeLine},
    {"POINT", DrawPoint, Space::kWorld, TakePoint},
    {"ARC", DrawArc, Space::kObject, TakeArc},
    {"CIRCLE", DrawCircle, Space::kObject, TakeCircle},
    {"ELLIPSE", DrawEllipse, Space::kWorld},
    {"LWPOLYLINE", DrawDxfLwPolyline, Space::kObject, TakeDxfLwPolyline},
    {"POLYLINE", DrawDxfPolyline, Space::kObject, TakeDxfPolyline},
    {"SPLINE", DrawDxfSpline, Space::kWorld, TakeDxfSpline},
    {"HELIX", DrawDxfSpline, Space::kWorld, TakeDxfSpline},
    {"SOLID", DrawSolid, Space::kObject},
    {"TRACE", DrawSolid, Space::kObject},
    {"3DFACE", Draw3dFace, Space::kWorld},
    {"3DLINE", DrawLine, Space::kWorld, TakeLine},
    {"TEXT", DrawDxfTextEntity, Space::kObject, TakeDxfText},
    {"MTEXT", DrawDxfMText, Space::kWorld},
    {"ATTRIB", DrawAttribute, Space::kObject, nullptr, true},
    {"ATTDEF", DrawAttributeDefinition, Space::kObject},
    {"INSERT", DrawDxfInsert, Space::kObject},
    {"DIMENSION", DrawDxfDimension, Space::kWorld},
    {"ARC_DIMENSION", DrawDxfDimension, Space::kWorld},
    {"LARGE_RADIAL_DIMENSION", DrawDxfDimension, Space::kWorld},
    {"ACAD_TABLE", DrawDxfTable, Space::kWorld},
    {"LEADER", DrawDxfLeader, Space::kWorld},
    {"MULTILEADER", DrawDxfMultiLeader, Space::kWorld},
    {"MLEADER", DrawDxfMultiLeader, Space::kWorld},
    {"HATCH", DrawDxfHatch, Space::kObject},
    {"MPOLYGON", DrawDxfMPolygon, Space::kObject},
    {"MLINE", DrawMLine, Space::kWorld},
    {"RAY", DrawRay, Space::kWorld},
    {"XLINE", DrawXLine, Space::kWorld},
    {"IMAGE", DrawImage, Space::kWorld},
    {"OLEFRAME", DrawOleFrame, Space::kWorld},
    {"OLE2FRAME", DrawOleFrame, Space::kWorld},
    {"MESH", DrawMesh, Space::kWorld},
};

// Kinds are found by length and first letters. Rows that share a slot are chained.
constexpr unsigned SlotOfKind(unsigned length, unsigned first, unsigned second) {
    return (length * 7 + first * 5 + second * 3) % 64;
}
struct KindIndex {
    std::int8_t first[64];
    std::int8_t next[std::size(kDxfKinds)];
};
static constexpr KindIndex MakeKindIndex() {
    KindIndex index = {};
    for (std::int8_t& row : index.first) row = -1;
    for (std::size_t row = std::size(kDxfKinds); row-- > 0;) {
        const char* const name = kDxfKinds[row].name;
        unsigned length = 0;
        while (name[length]) ++length;
        std::int8_t& slot =
            index.first[SlotOfKind(length, static_cast<unsigned>(name[0]), static_cast<unsigned>(name[1]))];
        index.next[row] = slot;
        slot = static_cast<std::int8_t>(row);
    }
    return index;
}
static constexpr KindIndex kKindIndex = MakeKindIndex();

const DxfKind* FindDxfKind(ByteView name) {
    if (name.size < 3) return nullptr;
    const unsigned slot = SlotOfKind(static_cast<unsigned>(name.size), name.data[0], name.data[1]);
    for (int row = kKindIndex.first[slot]; row >= 0; row = kKindIndex.next[row]) {
        const DxfKind& kind = kDxfKinds[row];
        if (name.size < sizeof(kind.name) && kind.name[name.size] == 0 && MatchAt(name, 0, kind.name, name.size))
            return &kind;
    }
    return nullptr;
}
