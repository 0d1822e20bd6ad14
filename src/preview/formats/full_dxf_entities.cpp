// The entities: a table of kinds, what all kinds have in common, and the kinds that are a few lines each.
#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

#include "preview/formats/full_dxf_decoder.h"

// ---- Simple kinds

static void DrawStep(DxfDecoder& dxf, const DxfStep& step) {
    const double* const n = step.numbers;
    switch (step.what) {
        case DxfStep::kPoint: DrawDxfPoint(dxf, {n[0], n[1]}); break;
        case DxfStep::kLine: DrawDxfLine(dxf, {n[0], n[1]}, {n[2], n[3]}); break;
        case DxfStep::kCircle: DrawDxfConic(dxf, {{n[0], n[1]}, {n[2], 0}, {0, n[2]}}, n[3], n[4]); break;
        case DxfStep::kEntity: break;
    }
}

static std::uint8_t PenByte(const DxfDecoder& dxf) { return static_cast<std::uint8_t>(dxf.pen); }

// A point where it is seen. Most maps leave the height out, so it is not even read.
static WorldPoint SeenPoint(const DxfDecoder& dxf, int code) {
    const bool isFlat = dxf.map.xz == 0 && dxf.map.yz == 0;
    const DxfGroups& groups = dxf.groups;
    return dxf.map.Point({groups.Number(code), groups.Number(code + 10), isFlat ? 0 : groups.Number(code + 20)});
}

// Draws an element that is all of its entity.
static void DrawSimple(DxfDecoder& dxf, const DxfStep& step) {
    DrawStep(dxf, step);
    if (!dxf.steps.open || dxf.place->depth > 0) return;
    dxf.steps.open = false;
    dxf.steps.all.push_back(step);
}

static void DrawPoint(DxfDecoder& dxf, DxfReader*) {
    if (IsName(Trimmed(dxf.groups.Text(8)), "DEFPOINTS")) return;  // what a dimension was measured from
    const WorldPoint at = SeenPoint(dxf, 10);
    DrawSimple(dxf, {DxfStep::kPoint, PenByte(dxf), 0, 0, {at.x, at.y}});
}

static void DrawLine(DxfDecoder& dxf, DxfReader*) {
    const WorldPoint from = SeenPoint(dxf, 10), to = SeenPoint(dxf, 11);
    DrawSimple(dxf, {DxfStep::kLine, PenByte(dxf), 0, 0, {from.x, from.y, to.x, to.y}});
}

static void DrawCircleArc(DxfDecoder& dxf, double start, double sweep) {
    const double radius = std::fabs(dxf.groups.Number(40));
    const Conic conic = {SeenPoint(dxf, 10), dxf.map.Direction({radius, 0, 0}), dxf.map.Direction({0, radius, 0})};
    if (conic.u.x == radius && conic.u.y == 0 && conic.v.x == 0 && conic.v.y == radius) {
        const WorldPoint at = conic.centre;
        DrawSimple(dxf, {DxfStep::kCircle, PenByte(dxf), 0, 0, {at.x, at.y, radius, start, sweep}});
    } else {
        DrawDxfConic(dxf, conic, start, sweep);
    }
}

static void DrawCircle(DxfDecoder& dxf, DxfReader*) { DrawCircleArc(dxf, 0, kTurn); }

// The way from one angle to another, counter-clockwise; a whole turn when they are one.
static double SweepOf(double start, double end) {
    double sweep = end - start;
    if (!(std::fabs(sweep) < kTurn)) sweep = std::fmod(sweep, kTurn);
    if (sweep < 0) sweep += kTurn;
    return sweep < 1e-9 ? kTurn : sweep;
}

static void DrawArc(DxfDecoder& dxf, DxfReader*) {
    const double start = Radians(dxf.groups.Number(50)), end = Radians(dxf.groups.Number(51, 360));
    DrawCircleArc(dxf, start, SweepOf(start, end));
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

// One line for each element of its style: a vertex tells each one's distance along its miter.
static void DrawMLine(DxfDecoder& dxf, DxfReader*) {
    constexpr int kMostElements = 16;
    WorldPoint before[kMostElements], first[kMostElements];
    const bool closed = dxf.groups.Integer(71) & 2;
    DxfRecordWalk record(dxf.groups);
    DxfPair pair;
    Vector3 vertex = {}, miter = {};
    int vertices = 0, element = 0, parameters = 0;
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
                if (vertices == 1) first[element] = at;
                else DrawDxfLine(dxf, before[element], at);
                before[element++] = at;
                break;
            }
            default: break;
        }
    }
    for (int i = 0; closed && vertices > 2 && i < element; ++i) DrawDxfLine(dxf, before[i], first[i]);
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

// The coordinates that a kind's points are in.
enum class Space { kWorld, kObject };

struct DxfKind {
    char name[24];
    DxfKindFunction draw;
    Space space;
};
// What is not here passes by, as do the kinds that show nothing: VIEWPORT, WIPEOUT, proxies.
static constexpr DxfKind kKinds[] = {
    {"LINE", DrawLine, Space::kWorld},
    {"POINT", DrawPoint, Space::kWorld},
    {"ARC", DrawArc, Space::kObject},
    {"CIRCLE", DrawCircle, Space::kObject},
    {"ELLIPSE", DrawEllipse, Space::kWorld},
    {"LWPOLYLINE", DrawDxfLwPolyline, Space::kObject},
    {"POLYLINE", DrawDxfPolyline, Space::kObject},
    {"SPLINE", DrawDxfSpline, Space::kWorld},
    {"HELIX", DrawDxfSpline, Space::kWorld},
    {"SOLID", DrawSolid, Space::kObject},
    {"TRACE", DrawSolid, Space::kObject},
    {"3DFACE", Draw3dFace, Space::kWorld},
    {"3DLINE", DrawLine, Space::kWorld},
    {"TEXT", DrawDxfTextEntity, Space::kObject},
    {"MTEXT", DrawDxfMText, Space::kWorld},
    {"ATTRIB", DrawAttribute, Space::kObject},
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
    std::int8_t next[std::size(kKinds)];
};
static constexpr KindIndex MakeKindIndex() {
    KindIndex index = {};
    for (std::int8_t& row : index.first) row = -1;
    for (std::size_t row = std::size(kKinds); row-- > 0;) {
        const char* const name = kKinds[row].name;
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

static const DxfKind* FindKind(ByteView name) {
    if (name.size < 3) return nullptr;
    const unsigned slot = SlotOfKind(static_cast<unsigned>(name.size), name.data[0], name.data[1]);
    for (int row = kKindIndex.first[slot]; row >= 0; row = kKindIndex.next[row]) {
        const DxfKind& kind = kKinds[row];
        if (std::strlen(kind.name) == name.size && MatchAt(name, 0, kind.name, name.size)) return &kind;
    }
    return nullptr;
}

// ---- What all kinds have in common

static DxfLook LookOfLayer(DxfDecoder& dxf, ByteView name) {
    const std::size_t end = name.size < 2 ? 0 : name.data[name.size - 1] + 10u * name.data[name.size - 2];
    auto& known = dxf.layers[(end + name.size * 7) % std::size(dxf.layers)];
    if (known.name.size && name.size == known.name.size && std::memcmp(name.data, known.name.data, name.size) == 0) {
        return known.look;
    }
    DxfLook look;
    if (const DxfNames::Row* row = dxf.tables.layers.Find(dxf.form, name)) {
        look.frozen = row->value & kLayerFrozen;
        look.off = row->value & kLayerOff;
        look.pen = row->value & kLayerPen;
    }
    known = {name, look};
    return look;
}

DxfLook LookOfEntityLayer(DxfDecoder& dxf) {
    const ByteView name = Trimmed(dxf.groups.Text(8));
    const bool inherits = dxf.place->depth > 0 && (name.size == 0 || (name.size == 1 && name.data[0] == '0'));
    return inherits ? dxf.place->layer : LookOfLayer(dxf, name);
}

static DxfLook LookOfEntity(DxfDecoder& dxf) {
    DxfLook look = LookOfEntityLayer(dxf);
    const ByteView type = Trimmed(dxf.groups.Text(6));
    if (type.size == 0 || IsName(type, "BYLAYER")) return look;
    if (IsName(type, "BYBLOCK")) {
        look.pen = dxf.place->pen;
    } else if (const DxfNames::Row* row = dxf.tables.lineTypes.Find(dxf.form, type)) {
        look.pen = row->value;
    } else {
        look.pen = kSolidPen;
    }
    return look;
}

static bool HasOwnAxes(const DxfGroups& groups) {
    if (!groups.Has(210) && !groups.Has(220) && !groups.Has(230)) return false;
    const Vector3 n = NormalOf(groups);
    return n.x != 0 || n.y != 0 || !(n.z > 0);
}

static void DrawEntity(DxfDecoder& dxf, const DxfKind& kind, DxfReader* reader) {
    const DxfGroups& groups = dxf.groups;
    if (dxf.place->depth == 0 && (groups.Integer(67) != 0) != dxf.paperSpace) return;
    const bool isInsert = kind.draw == DrawDxfInsert;
    if (isInsert) dxf.attributesHidden = true;
    if (groups.Integer(60) != 0) return;
    const DxfLook look = LookOfEntity(dxf);
    if (look.frozen || (look.off && !isInsert)) return;
    if (isInsert) dxf.attributesHidden = false;
    dxf.pen = look.pen;
    dxf.map = dxf.place->map;
    if (kind.space == Space::kObject && HasOwnAxes(groups)) {
        dxf.map = Compose(dxf.map, AxesOfNormal(NormalOf(groups)), {0, 0, 0});
    }
    kind.draw(dxf, reader);
    if (isInsert) dxf.attributesHidden = false;  // whichever inserts its block hides
}

// Records that belong to the entity before them and may be met without it.
static bool IsPart(ByteView kind) { return IsName(kind, "VERTEX") || IsName(kind, "SEQEND"); }

static DxfStep EntityStep(const DxfKind& kind, std::size_t begin) {
    return {DxfStep::kEntity, 0, static_cast<std::uint8_t>(&kind - kKinds), static_cast<std::uint32_t>(begin), {}};
}

std::size_t DrawDxfEntities(DxfDecoder& dxf, std::size_t begin) {
    const bool inBlock = dxf.place->depth > 0;
    DxfReader reader = {&dxf.form, begin};
    DxfPair pair;
    DxfSteps& steps = dxf.steps;
    bool keeps = !inBlock && dxf.IsMeasuring() && !dxf.paperSpace && steps.behind == kNowhere;
    // What a block holds costs again each time that it is walked over, whatever it is.
    std::size_t charged = begin;
    const auto charge = [&] {
        const std::size_t bytes = reader.at - charged;
        charged = reader.at;
        return dxf.budget.Charge(2 + static_cast<long long>(bytes / 16));
    };
    for (std::size_t at = reader.at; dxf.MayContinue() && reader.Next(&pair); at = reader.at) {
        if (pair.code != 0) continue;
        const ByteView name = Trimmed(pair.value);
        const DxfKind* kind = FindKind(name);
        if (!kind) {
            if (IsName(name, "ENDSEC") || IsName(name, "ENDBLK") || IsName(name, "EOF")) break;
            if (IsName(name, "SECTION") || IsName(name, "BLOCK")) {  // an end is missing
                reader.at = at;
                break;
            }
            if (!inBlock && !IsPart(name)) ++dxf.entityCount;
            continue;
        }
        if (!inBlock && kind->draw != DrawAttribute) ++dxf.entityCount;
        const std::size_t before = reader.at;
        dxf.groups.Read(&reader);
        if (inBlock && !charge()) break;
        if (keeps && steps.all.size() >= steps.most) {
            steps.behind = at;
            keeps = false;
        }
        if (!inBlock) steps.open = keeps;
        DrawEntity(dxf, *kind, &reader);
        if (keeps && steps.open) steps.all.push_back(EntityStep(*kind, before));
    }
    if (inBlock) charge();
    else steps.open = false;
    return reader.at;
}

void DrawDxfSteps(DxfDecoder& dxf) {
    for (const DxfStep& step : dxf.steps.all) {
        if (!dxf.MayContinue()) return;
        if (step.what == DxfStep::kEntity) {
            DxfReader reader = {&dxf.form, step.begin};
            dxf.groups.Read(&reader);
            DrawEntity(dxf, kKinds[step.kind], &reader);
        } else {
            dxf.pen = step.pen;
            DrawStep(dxf, step);
        }
    }
    if (dxf.steps.behind == kNowhere) return;
    DrawDxfEntities(dxf, dxf.steps.behind);
    for (const std::size_t begin : dxf.tables.moreEntities) {
        if (begin > dxf.steps.behind) DrawDxfEntities(dxf, begin);
    }
}
