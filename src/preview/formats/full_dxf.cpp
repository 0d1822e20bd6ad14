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
    {nullptr, false},       {nullptr, true},         {"*Model_Space", false},
    {"*Paper_Space", true}, {"*Paper_Space0", true}, {"*Paper_Space1", true},
};

static constexpr long long kLeastBudget = 2'000'000, kBudgetOfByte = 3;

static std::size_t WalkSpace(DxfDecoder& dxf, const DxfSpace& space, DxfPlace* place) {
    dxf.paperSpace = space.paper;
    dxf.budget.left = kLeastBudget + kBudgetOfByte * static_cast<long long>(dxf.form.file.size);
    if (!space.block) {
        if (&space == kSpaces && !dxf.IsMeasuring()) {
            DrawDxfSteps(dxf);
            return dxf.form.file.size;
        }
        dxf.entityCount = 0;
        if (dxf.tables.entities == kNowhere) return dxf.form.file.size;
        const std::size_t end = DrawDxfEntities(dxf, dxf.tables.entities);
        for (const std::size_t begin : dxf.tables.moreEntities) DrawDxfEntities(dxf, begin);
        return end;
    }
    const ByteView name = {reinterpret_cast<const std::uint8_t*>(space.block), std::strlen(space.block)};
    const DxfNames::Row* const row = dxf.tables.blocks.Find(dxf.form, name);
    if (!row) return dxf.form.file.size;
    DxfReader reader = {&dxf.form, row->begin};
    dxf.groups.Read(&reader);
    place->depth = 1;  // its entities say no longer which space they are in
    place->block = row->begin;
    return DrawDxfEntities(dxf, reader.at);
}

// Tells where the walk ended.
static std::size_t DrawSpace(DxfDecoder& dxf, const DxfSpace& space) {
    DxfPlace place;
    dxf.place = &place;
    const std::size_t end = WalkSpace(dxf, space, &place);
    dxf.place = nullptr;
    return end;
}

static std::size_t MeasureModel(DxfDecoder& dxf, std::size_t stepRoom, BoxSink* measure) {
    measure->Clear();
    ClearDxfSteps(dxf, stepRoom);
    return DrawSpace(dxf, kSpaces[0]);
}

// The first space that shows something, and its box; null when there is none.
static const DxfSpace* MeasureDrawing(DxfDecoder& dxf, std::size_t stepRoom, BoxSink* measure, WorldRect* box) {
    const std::size_t end = MeasureModel(dxf, stepRoom, measure);
    // Files have their tables and blocks in front of the entities, and these in one section. Should some stand behind,
    // all begins anew.
    if (SurveyDxf(dxf.form, end, *measure->goOn, &dxf.tables)) MeasureModel(dxf, stepRoom, measure);
    for (;;) {
        for (const DxfSpace& space : kSpaces) {
            if (&space != kSpaces) DrawSpace(dxf, space);
            if (measure->Box(box)) return &space;
        }
        if (dxf.aside != DxfAside::kMet) return nullptr;
        dxf.aside = DxfAside::kMeasured;  // there is nothing else
        MeasureModel(dxf, stepRoom, measure);
    }
}

static WorldRect Widened(const WorldRect& box, double margin) {
    return {box.minX - margin, box.minY - margin, box.maxX + margin, box.maxY + margin};
}

// Fits the view to a box, with a margin and never without area. In a small picture the margin is two pixels: with less,
// what lies on the lower edge would be cut.
static bool FitWithMargin(DrawingSink& sink, const WorldRect& box) {
    constexpr double kMargin = 1.0 / 64, kPixels = 2;
    double side = std::max(box.maxX - box.minX, box.maxY - box.minY);
    if (!(side > 0)) side = std::max({std::fabs(box.minX) * 1e-6, std::fabs(box.minY) * 1e-6, 1.0});
    const double margin = side * kMargin;
    if (!sink.fit(sink, Widened(box, margin), DrawingSink::kWipe)) return false;
    const ViewTransform& view = sink.view;
    const double width = view.canvasRight - view.canvasLeft - 2 * kPixels,
                 height = view.canvasBottom - view.canvasTop - 2 * kPixels;
    if (width <= 0 || height <= 0) return true;
    const double pixels = kPixels * std::max((box.maxX - box.minX) / width, (box.maxY - box.minY) / height);
    return !(pixels > margin) || sink.fit(sink, Widened(box, pixels), DrawingSink::kKeep);
}

bool DecodeFullDxf(ByteView file, Comment* comment, DrawingSink* sink) {
    if (file.size == 0 || file.size > UINT32_MAX) return false;
    static const std::atomic<std::int32_t> kAlways{1};
    BoxSink measure;
    measure.goOn = sink ? sink->goOn : &kAlways;
    DxfDecoder dxf;
    dxf.form = DxfFormOf(file);
    SurveyDxf(dxf.form, dxf.form.begin, *measure.goOn, &dxf.tables);
    if (!dxf.tables.hasSections && dxf.tables.entities == kNowhere) return false;
    dxf.encoding = EncodingOf(dxf.form, dxf.tables);

    dxf.sink = dxf.box = &measure;
    WorldRect box = {0, 0, 1, 1};
    const DxfSpace* const space = MeasureDrawing(dxf, sink ? file.size / 4 * 3 : 0, &measure, &box);
    if (!measure.MayContinue()) return false;
    if (comment && comment->end) AppendDxfComment(comment, dxf, space ? &measure.all : nullptr);
    if (!sink) return true;

    if (!FitWithMargin(*sink, box)) return false;
    dxf.sink = sink;
    dxf.box = nullptr;
    dxf.pixel = 1 / sink->view.scaleX;
    if (!(dxf.pixel > 0) || !std::isfinite(dxf.pixel)) return true;  // a target without area
    if (space) DrawSpace(dxf, *space);
    return sink->MayContinue();
}
