// Two walks over the entities: one into a box, one into the sink that is fitted to it.
#include "preview/formats/full_dxf.h"

#include <algorithm>
#include <cmath>

#include "preview/formats/full_dxf_box.h"
#include "preview/formats/full_dxf_comment.h"
#include "preview/formats/full_dxf_decoder.h"

// Where the entities of a drawing may stand: the first place that shows something is drawn.
struct DxfSpace {
    const char* block;  // null: the entities themselves
    bool paper;
};
static constexpr DxfSpace kSpaces[] = {
    {nullptr, false}, {nullptr, true}, {"*Model_Space", false}, {"*Paper_Space", true}, {"*Paper_Space0", true},
};

static constexpr long long kLeastBudget = 1'000'000;

static void DrawSpace(DxfDecoder& dxf, const DxfSpace& space) {
    DxfPlace place;
    dxf.place = &place;
    dxf.paperSpace = space.paper;
    dxf.budget.left = kLeastBudget + static_cast<long long>(dxf.form.file.size);
    dxf.layerName = {};
    if (!space.block) {
        dxf.entityCount = 0;
        if (dxf.tables.entities != kNowhere) DrawDxfEntities(dxf, dxf.tables.entities);
        return;
    }
    const ByteView name = {reinterpret_cast<const std::uint8_t*>(space.block), std::strlen(space.block)};
    const DxfNames::Row* const row = dxf.tables.blocks.Find(dxf.form, name);
    if (!row) return;
    DxfReader reader = {&dxf.form, row->begin};
    dxf.groups.Read(&reader);
    place.depth = 1;  // its entities say no longer which space they are in
    place.block = row->begin;
    DrawDxfEntities(dxf, reader.at);
}

// With a margin, and never without area.
static WorldRect WithMargin(const WorldRect& box) {
    constexpr double kMargin = 1.0 / 64;
    double side = std::max(box.maxX - box.minX, box.maxY - box.minY);
    if (!(side > 0)) side = std::max({std::fabs(box.minX) * 1e-6, std::fabs(box.minY) * 1e-6, 1.0});
    const double margin = side * kMargin;
    return {box.minX - margin, box.minY - margin, box.maxX + margin, box.maxY + margin};
}

bool DecodeFullDxf(ByteView file, Comment* comment, DrawingSink* sink) {
    if (file.size == 0 || file.size > UINT32_MAX) return false;
    static const std::atomic<std::int32_t> kAlways{1};
    DxfDecoder dxf;
    dxf.form = DxfFormOf(file);
    dxf.tables = SurveyDxf(dxf.form, sink ? sink->goOn : &kAlways);
    if (!dxf.tables.hasSections && dxf.tables.entities == kNowhere) return false;
    dxf.encoding = EncodingOf(dxf.form, dxf.tables);

    BoxSink measure;
    measure.goOn = sink ? sink->goOn : &kAlways;
    dxf.sink = &measure;
    WorldRect box = {0, 0, 1, 1};
    bool found = false;
    const DxfSpace* space = kSpaces;
    for (const DxfSpace& candidate : kSpaces) {
        if (found) break;
        space = &candidate;
        DrawSpace(dxf, candidate);
        found = measure.Box(&box);
    }
    if (!measure.MayContinue()) return false;
    if (comment && comment->end) AppendDxfComment(comment, dxf, found ? &measure.all : nullptr);
    if (!sink) return true;

    if (!sink->fit(*sink, WithMargin(box), DrawingSink::kWipe)) return false;
    dxf.sink = sink;
    dxf.pixel = 1 / sink->view.scaleX;
    if (!(dxf.pixel > 0) || !std::isfinite(dxf.pixel)) return true;  // a target without area
    if (found) DrawSpace(dxf, *space);
    return sink->MayContinue();
}
