// The entities: a table of kinds, what all kinds have in common, and the kinds that are a few lines each.
#include <algorithm>
#include <array>
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

static void DrawCircleArc(DxfDecoder& dxf, Vector3 centre, double radius, double start, double sweep) {
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
    DrawCircleArc(dxf, PointOf(dxf.groups, 10), std::fabs(dxf.groups.Number(40)), 0, kTurn);
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
    DrawCircleArc(dxf, PointOf(dxf.groups, 10), std::fabs(dxf.groups.Number(40)), angles.start, angles.sweep);
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
    DxfStepFunction take = nullptr;
};
// What is not here passes by, as do the kinds that show nothing: VIEWPORT, WIPEOUT, proxies.
static constexpr DxfKind kKinds[] = {
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
        if (name.size < sizeof(kind.name) && kind.name[name.size] == 0 && MatchAt(name, 0, kind.name, name.size))
            return &kind;
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

static bool IsOnInsertLayer(ByteView name) { return name.size == 0 || (name.size == 1 && name.data[0] == '0'); }

DxfLook LookOfEntityLayer(DxfDecoder& dxf) {
    const ByteView name = Trimmed(dxf.groups.Text(8));
    return dxf.place->depth > 0 && IsOnInsertLayer(name) ? dxf.place->layer : LookOfLayer(dxf, name);
}

// The pen that an entity names, or else that of its layer.
static unsigned PenOfEntity(const DxfDecoder& dxf, unsigned ofLayer) {
    const ByteView type = Trimmed(dxf.groups.Text(6));
    if (type.size == 0 || IsName(type, "BYLAYER")) return ofLayer;
    if (IsName(type, "BYBLOCK")) return kPenOfInsert;
    return PenOfLineType(dxf.form, dxf.tables.lineTypes, type);
}

static unsigned PenAt(const DxfPlace& place, unsigned pen) {
    return pen == kPenOfInsert ? place.pen : pen == kPenOfInsertLayer ? place.layer.pen : pen;
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
    const DxfLook look = LookOfEntityLayer(dxf);
    if (look.frozen || (look.off && !isInsert)) return;
    if (isInsert) dxf.attributesHidden = false;
    dxf.pen = PenAt(*dxf.place, PenOfEntity(dxf, look.pen));
    dxf.map = dxf.place->map;
    if (kind.space == Space::kObject && HasOwnAxes(groups)) {
        dxf.map = Compose(dxf.map, AxesOfNormal(NormalOf(groups)), {0, 0, 0});
    }
    kind.draw(dxf, reader);
    if (isInsert) dxf.attributesHidden = false;  // whichever inserts its block hides
}

// ---- Steps

// The step of the entity in dxf.groups, which is nothing for one that is never drawn; false when it is to be drawn as
// an entity.
static bool TakeStep(DxfDecoder& dxf, const DxfKind& kind, bool inBlock, DxfReader* reader, DxfStep* step) {
    const DxfGroups& groups = dxf.groups;
    if (!kind.take || (kind.space == Space::kObject && HasOwnAxes(groups))) return false;
    if (!inBlock && (groups.Integer(67) != 0) != dxf.paperSpace) return true;
    if (groups.Integer(60) != 0) return true;
    const ByteView layer = Trimmed(groups.Text(8));
    step->onInsertLayer = inBlock && IsOnInsertLayer(layer);
    unsigned pen = kPenOfInsertLayer;
    if (!step->onInsertLayer) {
        const DxfLook look = LookOfLayer(dxf, layer);
        if (look.frozen || look.off) return true;
        pen = look.pen;
    }
    step->pen = static_cast<std::uint8_t>(PenOfEntity(dxf, pen));
    dxf.numbers.clear();
    const std::size_t begin = groups.begin;
    if (kind.take(dxf, reader, step)) {
        step->numbers = dxf.numbers.data();
        step->count = static_cast<std::uint32_t>(dxf.numbers.size());
        return true;
    }
    reader->at = begin;
    dxf.groups.Read(reader);
    return false;
}

static DxfStep EntityStep(const DxfKind& kind, std::size_t begin) {
    DxfStep step;
    step.what = DxfStep::kEntity;
    step.detail = static_cast<std::uint8_t>(&kind - kKinds);
    step.begin = static_cast<std::uint32_t>(begin);
    return step;
}

static void DrawStep(DxfDecoder& dxf, const DxfStep& step) {
    const DxfPlace& place = *dxf.place;
    const double* const n = step.numbers;
    if (step.what == DxfStep::kEntity) {
        DxfReader reader = {&dxf.form, step.begin};
        dxf.groups.Read(&reader);
        return DrawEntity(dxf, kKinds[step.detail], &reader);
    }
    if (step.onInsertLayer && (place.layer.frozen || place.layer.off)) return;
    dxf.pen = PenAt(place, step.pen);
    dxf.map = place.map;
    switch (step.what) {
        case DxfStep::kPoint: return DrawDxfPoint(dxf, dxf.map.Point({n[0], n[1], 0}));
        case DxfStep::kLine: return DrawDxfLine(dxf, dxf.map.Point({n[0], n[1], 0}), dxf.map.Point({n[2], n[3], 0}));
        case DxfStep::kCircle: return DrawCircleArc(dxf, {n[0], n[1], 0}, n[2], n[3], n[4]);
        case DxfStep::kPolyline: return DrawDxfPolylineStep(dxf, step);
        case DxfStep::kSpline: return DrawDxfSplineStep(dxf, step);
        case DxfStep::kText: return DrawDxfTextStep(dxf, step);
        case DxfStep::kEntity:
        case DxfStep::kNothing: return;
    }
}

bool DxfSteps::Add(DxfStep step, std::size_t* room) {
    if (step.count) step.numbers = numbers.Add(step.numbers, step.count, room);
    return (step.numbers || step.count == 0) && steps.Add(&step, 1, room);
}

void ClearDxfSteps(DxfDecoder& dxf, std::size_t room) {
    dxf.steps = dxf.blockSteps = {};
    dxf.blocks.clear();
    for (DxfNames::Row& row : dxf.tables.blocks.rows) row.value = 0;
    for (auto& known : dxf.layers) known.name = {};
    dxf.stepRoom = room;
    dxf.blockBytes = dxf.form.file.size;
    dxf.behindSteps = kNowhere;
}

// ---- Walks

// Records that belong to the entity before them and may be met without it.
static bool IsPart(ByteView kind) { return IsName(kind, "VERTEX") || IsName(kind, "SEQEND"); }

struct EntityWalk {
    DxfDecoder& dxf;
    bool inBlock;
    DxfReader reader;
    std::size_t from = 0;           // where the last step began
    std::size_t at = 0, begin = 0;  // where the entity and its pairs begin
    // The next entity of a kind that is known, in dxf.groups; null at the end.
    const DxfKind* Next();
    // What it costs each time that it is drawn in a block, with all that was passed on the way to it.
    std::uint32_t Cost() const { return 2 + static_cast<std::uint32_t>((reader.at - begin + at - from) / 16); }
};

// Whether a section or a block begins, the end of the one before being missing. There are entities called so, too, but
// what follows them is no name.
static bool BeginsAnother(ByteView kind, DxfReader reader) {
    DxfPair pair;
    if (IsName(kind, "BLOCK")) return true;
    return IsName(kind, "SECTION") && reader.Next(&pair) && pair.code == 2;
}

const DxfKind* EntityWalk::Next() {
    DxfPair pair;
    from = reader.at;
    for (at = begin = from; dxf.MayContinue() && reader.Next(&pair); at = reader.at) {
        if (pair.code != 0) continue;
        const ByteView name = Trimmed(pair.value);
        const DxfKind* const kind = FindKind(name);
        if (!kind) {
            if (IsName(name, "ENDSEC") || IsName(name, "EOF") || (inBlock && IsName(name, "ENDBLK"))) return nullptr;
            if (BeginsAnother(name, reader)) {
                reader.at = at;
                return nullptr;
            }
            if (!inBlock && !IsPart(name)) ++dxf.entityCount;
            continue;
        }
        if (!inBlock && kind->draw != DrawAttribute) ++dxf.entityCount;
        begin = reader.at;
        dxf.groups.Read(&reader);
        return kind;
    }
    return nullptr;
}

static bool IsFlat(const PlaneMap& map) { return map.xz == 0 && map.yz == 0; }

std::size_t DrawDxfEntities(DxfDecoder& dxf, std::size_t begin) {
    const bool inBlock = dxf.place->depth > 0, isFlat = IsFlat(dxf.place->map);
    bool keeps = !inBlock && dxf.IsMeasuring() && !dxf.paperSpace && dxf.behindSteps == kNowhere;
    EntityWalk walk = {dxf, inBlock, {&dxf.form, begin}};
    while (const DxfKind* kind = walk.Next()) {
        if (inBlock && !dxf.budget.Charge(walk.Cost())) break;
        DxfStep step;
        if (isFlat && TakeStep(dxf, *kind, inBlock, &walk.reader, &step)) {
            if (step.what == DxfStep::kNothing) continue;
            DrawStep(dxf, step);
        } else {
            step = EntityStep(*kind, walk.begin);
            DrawEntity(dxf, *kind, &walk.reader);
        }
        if (keeps && !dxf.steps.Add(step, &dxf.stepRoom)) {
            dxf.behindSteps = walk.at;
            keeps = false;
        }
    }
    if (inBlock) dxf.budget.Charge(static_cast<long long>((walk.reader.at - walk.from) / 16));  // what shows nothing
    return walk.reader.at;
}

void DrawDxfSteps(DxfDecoder& dxf) {
    for (const std::vector<DxfStep>& part : dxf.steps.steps.parts) {
        for (const DxfStep& step : part) {
            if (!dxf.MayContinue()) return;
            DrawStep(dxf, step);
        }
    }
    if (dxf.behindSteps == kNowhere) return;
    DrawDxfEntities(dxf, dxf.behindSteps);
    for (const std::size_t begin : dxf.tables.moreEntities) {
        if (begin > dxf.behindSteps) DrawDxfEntities(dxf, begin);
    }
}

// ---- Blocks

// Reads a block's entities as steps, as far as there is room.
static void ReadBlock(DxfDecoder& dxf, DxfBlock* block) {
    const auto& parts = dxf.blockSteps.steps.parts;
    block->part = parts.empty() ? 0 : parts.size() - 1;
    block->first = parts.empty() ? 0 : parts.back().size();
    block->isRead = true;
    block->isKept = dxf.blockBytes > 0;
    EntityWalk walk = {dxf, true, {&dxf.form, block->entities}};
    while (const DxfKind* kind = block->isKept ? walk.Next() : nullptr) {
        DxfStep step;
        const std::uint32_t cost = walk.Cost();
        if (TakeStep(dxf, *kind, true, &walk.reader, &step)) {
            if (step.what == DxfStep::kNothing) continue;
            step.cost = 1;  // and what it draws
        } else {
            step = EntityStep(*kind, walk.begin);
            step.cost = cost;  // it is read each time
        }
        block->isKept = dxf.blockSteps.Add(step, &dxf.stepRoom);
        ++block->stepCount;
    }
    dxf.blockBytes -= std::min(dxf.blockBytes, walk.reader.at - block->entities);
}

void DrawDxfBlock(DxfDecoder& dxf, DxfBlock* block) {
    if (!block->isRead) ReadBlock(dxf, block);
    if (!block->isKept || !IsFlat(dxf.place->map)) {
        DrawDxfEntities(dxf, block->entities);
        return;
    }
    const auto& parts = dxf.blockSteps.steps.parts;  // more may come while a block draws others
    std::size_t part = block->part, at = block->first;
    for (std::size_t left = block->stepCount; left > 0; --left) {
        if (at == parts[part].size()) {
            ++part;
            at = 0;
        }
        const DxfStep& step = parts[part][at++];
        if (!dxf.MayContinue() || !dxf.budget.Charge(step.cost)) return;
        DrawStep(dxf, step);
    }
}
