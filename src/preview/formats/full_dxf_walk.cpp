// The walk over the entities of a drawing or a block: what all kinds have in common, and the steps that are kept of
// them.
#include <cstring>
#include <iterator>

#include "preview/formats/full_dxf_decoder.h"

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
    const bool attributesHidden = dxf.attributesHidden;
    dxf.pen = PenAt(*dxf.place, PenOfEntity(dxf, look.pen));
    dxf.map = dxf.place->map;
    if (kind.space == DxfKind::Space::kObject && HasOwnAxes(groups)) {
        dxf.map = Compose(dxf.map, AxesOfNormal(NormalOf(groups)), {0, 0, 0});
    }
    kind.draw(dxf, reader);
    dxf.attributesHidden = attributesHidden;  // whichever inserts a block hides
}

// ---- Steps

// The step of the entity in dxf.groups, which is nothing for one that is never drawn; false when it is to be drawn as
// an entity.
static bool TakeStep(DxfDecoder& dxf, const DxfKind& kind, bool inBlock, DxfReader* reader, DxfStep* step) {
    const DxfGroups& groups = dxf.groups;
    if (!kind.take || (kind.space == DxfKind::Space::kObject && HasOwnAxes(groups))) return false;
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
    step.detail = static_cast<std::uint8_t>(&kind - kDxfKinds);
    step.begin = static_cast<std::uint32_t>(begin);
    return step;
}

static void DrawStep(DxfDecoder& dxf, const DxfStep& step) {
    const DxfPlace& place = *dxf.place;
    const double* const n = step.numbers;
    if (step.what == DxfStep::kEntity) {
        DxfReader reader = {&dxf.form, step.begin};
        dxf.groups.Read(&reader);
        return DrawEntity(dxf, kDxfKinds[step.detail], &reader);
    }
    if (step.onInsertLayer && (place.layer.frozen || place.layer.off)) return;
    dxf.pen = PenAt(place, step.pen);
    dxf.map = place.map;
    switch (step.what) {
        case DxfStep::kPoint: return DrawDxfPoint(dxf, dxf.map.Point({n[0], n[1], 0}));
        case DxfStep::kLine: return DrawDxfLine(dxf, dxf.map.Point({n[0], n[1], 0}), dxf.map.Point({n[2], n[3], 0}));
        case DxfStep::kCircle: return DrawDxfCircleArc(dxf, {n[0], n[1], 0}, n[2], n[3], n[4]);
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
        const DxfKind* const kind = FindDxfKind(name);
        if (!kind) {
            if (IsName(name, "ENDSEC") || IsName(name, "EOF") || (inBlock && IsName(name, "ENDBLK"))) return nullptr;
            if (BeginsAnother(name, reader)) {
                reader.at = at;
                return nullptr;
            }
            if (!inBlock && !IsPart(name)) ++dxf.entityCount;
            continue;
        }
        if (!inBlock && !kind->isPart) ++dxf.entityCount;
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
    block->isRead = block->isKept = true;
    EntityWalk walk = {dxf, true, {&dxf.form, block->entities}};
    while (const DxfKind* kind = block->isKept ? walk.Next() : nullptr) {
        DxfStep step;
        const std::uint32_t cost = walk.Cost();
        if (TakeStep(dxf, *kind, true, &walk.reader, &step)) {
            if (step.what == DxfStep::kNothing) continue;
            step.cost = 1 + step.count / 8;  // and what it draws, which may be nothing
        } else {
            step = EntityStep(*kind, walk.begin);
            step.cost = cost;  // it is read each time
        }
        block->isKept = dxf.blockSteps.Add(step, &dxf.stepRoom);
        ++block->stepCount;
    }
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
