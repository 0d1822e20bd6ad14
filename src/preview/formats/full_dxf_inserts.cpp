// INSERT and its relatives: a block drawn at a place, once or in rows and columns.
//
// Blocks may hold inserts to a depth; one that is being drawn already is left out. No insert of the drawing takes more
// than half of the budget that is left, so one that multiplies without end leaves something for those behind it.
#include <algorithm>
#include <cmath>
#include <iterator>

#include "preview/formats/full_dxf_box.h"
#include "preview/formats/full_dxf_decoder.h"

namespace {

struct Grid {
    int columns = 1, rows = 1;
    WorldPoint column = {}, row = {};  // from one to the next, in the drawing's plane
};

// What is known of very many blocks is not kept: then `spare` is used.
DxfBlock* FindBlock(DxfDecoder& dxf, const DxfNames::Row& row, DxfBlock* spare) {
    constexpr std::size_t kMostBlocks = 1 << 16;
    constexpr int kExternal = 4;
    std::vector<DxfNames::Row>& rows = dxf.tables.blocks.rows;
    std::uint32_t& number = rows[static_cast<std::size_t>(&row - rows.data())].value;
    if (number == 0) {
        DxfReader reader = {&dxf.form, row.begin};
        dxf.groups.Read(&reader);
        dxf.budget.Charge(static_cast<long long>((reader.at - row.begin) / 16));
        const bool isFull = dxf.blocks.size() >= kMostBlocks;
        DxfBlock& block = isFull ? *spare : dxf.blocks.emplace_back();
        block.begin = row.begin;
        block.entities = reader.at;
        block.base = PointOf(dxf.groups, 10);
        block.external = dxf.groups.Integer(70) & kExternal;
        block.isRead = isFull;
        if (isFull) return spare;
        number = static_cast<std::uint32_t>(dxf.blocks.size());
    }
    return &dxf.blocks[number - 1];
}

bool IsBeingDrawn(const DxfPlace* place, std::uint32_t block) {
    for (; place && place->depth > 0; place = place->outer) {
        if (place->block == block) return true;
    }
    return false;
}

// Draws a block's entities once, moved in the plane.
void DrawAt(DxfDecoder& dxf, DxfBlock* block, DxfPlace place, WorldPoint moved) {
    place.map.x0 += moved.x;
    place.map.y0 += moved.y;
    const DxfPlace* const outer = dxf.place;
    dxf.place = &place;
    DrawDxfBlock(dxf, block);
    dxf.place = outer;
}

// What a block covers at its place, and of how many elements.
std::size_t Measure(DxfDecoder& dxf, DxfBlock* block, const DxfPlace& place, WorldRect* box) {
    BoxSink measure;
    measure.goOn = dxf.sink->goOn;
    DrawingSink* const sink = dxf.sink;
    BoxSink* const outer = dxf.box;
    const double pixel = dxf.pixel;
    dxf.sink = dxf.box = &measure;
    dxf.pixel = 0;
    DrawAt(dxf, block, place, {0, 0});
    dxf.sink = sink;
    dxf.box = outer;
    dxf.pixel = pixel;
    *box = measure.all;
    return measure.count;
}

// The box around a mapped one.
WorldRect BoxOfMapped(const PlaneMap& map, const WorldRect& box) {
    WorldRect out = {};
    for (int corner = 0; corner < 4; ++corner) {
        const WorldPoint p = map.Point({corner & 1 ? box.maxX : box.minX, corner & 2 ? box.maxY : box.minY, 0});
        if (corner == 0) out = {p.x, p.y, p.x, p.y};
        out = {std::min(out.minX, p.x), std::min(out.minY, p.y), std::max(out.maxX, p.x), std::max(out.maxY, p.y)};
    }
    return out;
}

// Whether a block need not be gone through again to measure the drawing. Only upright inserts of the drawing itself
// have maps that a flat box can go through, and where their layer is off the block shows less than elsewhere.
bool CannotMatter(DxfDecoder& dxf, DxfBlock* block, const DxfPlace& place) {
    if (!dxf.IsMeasuring() || place.depth != 1 || place.layer.off || place.map.xz != 0 || place.map.yz != 0)
        return false;
    if (!block->isMeasured) {
        DxfPlace upright = place;
        upright.map = kFromAbove;
        upright.layer = {};  // another insert may show what this one's layer hides
        block->elements = Measure(dxf, block, upright, &block->box);
        block->isMeasured = true;
    }
    if (block->elements && dxf.box->Matters(BoxOfMapped(place.map, block->box))) return false;
    dxf.box->count += block->elements;
    return true;
}

struct Range {
    long long first, last, step;
};

// Which of `count` places lie between `low` and `high`. Those closer to each other than a pixel are thinned out.
Range RangeOf(double low, double high, int count, double spacingPixels) {
    const double last = count - 1.0;
    const double step = spacingPixels < 1 ? std::ceil(1 / std::max(spacingPixels, 1e-9)) : 1;
    return {static_cast<long long>(std::clamp(std::floor(low), 0.0, last)),
            static_cast<long long>(std::clamp(std::ceil(high), 0.0, last)), static_cast<long long>(step)};
}

// A grid as far as it can be seen. To be measured, its corners are enough.
void DrawGrid(DxfDecoder& dxf, DxfBlock* block, const DxfPlace& place, const Grid& grid) {
    constexpr long long kFewPlaces = 64;
    Range columns = {0, grid.columns - 1, 1}, rows = {0, grid.rows - 1, 1};
    if (dxf.IsMeasuring()) {
        columns.step = std::max(grid.columns - 1, 1);
        rows.step = std::max(grid.rows - 1, 1);
    } else if (static_cast<long long>(grid.columns) * grid.rows > kFewPlaces) {
        WorldRect box;
        if (Measure(dxf, block, place, &box) == 0) return;
        // The places that can be seen are those whose offset from the first lies in the window less the box.
        const ViewTransform& view = dxf.sink->view;
        const double minX = view.worldMinX - box.maxX, maxX = view.worldMaxX - box.minX;
        const double minY = view.worldMinY - box.maxY, maxY = view.worldMaxY - box.minY;
        const WorldPoint c = grid.column, r = grid.row;
        const double area = c.x * r.y - c.y * r.x;
        double lowC = 0, highC = grid.columns, lowR = 0, highR = grid.rows;
        if (area != 0) {
            const double xs[] = {minX, maxX, minX, maxX}, ys[] = {minY, minY, maxY, maxY};
            double cs[4], rs[4];
            for (int i = 0; i < 4; ++i) {
                cs[i] = (xs[i] * r.y - ys[i] * r.x) / area;
                rs[i] = (c.x * ys[i] - c.y * xs[i]) / area;
            }
            lowC = *std::min_element(cs, cs + 4), highC = *std::max_element(cs, cs + 4);
            lowR = *std::min_element(rs, rs + 4), highR = *std::max_element(rs, rs + 4);
        }
        columns = RangeOf(lowC, highC, grid.columns, Length(c.x, c.y) / dxf.pixel);
        rows = RangeOf(lowR, highR, grid.rows, Length(r.x, r.y) / dxf.pixel);
    }
    for (long long row = rows.first; row <= rows.last; row += rows.step) {
        for (long long column = columns.first; column <= columns.last; column += columns.step) {
            if (!dxf.MayContinue() || !dxf.budget.Charge(4)) return;
            const auto i = static_cast<double>(column), j = static_cast<double>(row);
            DrawAt(dxf, block, place, {i * grid.column.x + j * grid.row.x, i * grid.column.y + j * grid.row.y});
        }
    }
}

void DrawBlock(DxfDecoder& dxf, const DxfNames::Row& row, const PlaneMap& map, const DxfLook& look, const Grid& grid) {
    const int depth = dxf.place->depth + 1;
    if (depth > kDeepestInsert || dxf.budget.left == 0) return;
    DxfBlock spare;
    DxfBlock* const block = FindBlock(dxf, row, &spare);
    if (block->external || IsBeingDrawn(dxf.place, block->begin)) return;
    const Axes3 upright = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    DxfPlace place;
    place.outer = dxf.place;
    place.map = Compose(map, upright, {-block->base.x, -block->base.y, -block->base.z});
    place.block = block->begin;
    place.depth = depth;
    place.layer = look;
    place.pen = dxf.pen;
    const long long kept = depth == 1 ? dxf.budget.left / 2 : 0;
    dxf.budget.left -= kept;
    if (grid.columns > 1 || grid.rows > 1 || !CannotMatter(dxf, block, place)) DrawGrid(dxf, block, place, grid);
    dxf.budget.left += kept;
}

// Columns or rows: none are one, and so are those without a spacing.
int CountOf(const DxfGroups& groups, int code, double spacing) {
    return spacing == 0 ? 1 : std::max(groups.Integer(code), 1);
}

}  // namespace

void DrawDxfBlockAt(DxfDecoder& dxf, const DxfNames::Row& row, const PlaneMap& map, const DxfLook& look) {
    DrawBlock(dxf, row, map, look, {});
}

const DxfNames::Row* FindDxfBlockOf(DxfDecoder& dxf, std::uint32_t owner) {
    const std::vector<DxfNames::Row>& rows = dxf.tables.blocks.rows;
    if (owner == 0 || !dxf.budget.Charge(static_cast<long long>(rows.size() / 16))) return nullptr;
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const DxfNames::Row& at) { return at.owner == owner; });
    return row == rows.end() ? nullptr : &*row;
}

void DrawDxfInsert(DxfDecoder& dxf, DxfReader*) {
    const DxfGroups& groups = dxf.groups;
    // A scale of 0 is what broken writers make of an unset one.
    const auto scaleOf = [&](int code) {
        const double scale = groups.Number(code, 1);
        return scale == 0 ? 1 : scale;
    };
    const double sx = scaleOf(41), sy = scaleOf(42), sz = scaleOf(43);
    const double angle = Radians(groups.Number(50)), c = std::cos(angle), s = std::sin(angle);
    const Axes3 axes = {{sx * c, sx * s, 0}, {-sy * s, sy * c, 0}, {0, 0, sz}};
    const double columnSpacing = groups.Number(44), rowSpacing = groups.Number(45);
    Grid grid;
    grid.columns = CountOf(groups, 70, columnSpacing);
    grid.rows = CountOf(groups, 71, rowSpacing);
    grid.column = dxf.map.Direction({columnSpacing * c, columnSpacing * s, 0});
    grid.row = dxf.map.Direction({-rowSpacing * s, rowSpacing * c, 0});
    if (!IsDrawable(grid.column) || !IsDrawable(grid.row)) return;
    const PlaneMap map = Compose(dxf.map, axes, PointOf(groups, 10));
    const DxfLook look = LookOfEntityLayer(dxf);
    if (const DxfNames::Row* const row = dxf.tables.blocks.Find(dxf.form, groups.Text(2))) {
        DrawBlock(dxf, *row, map, look, grid);
    }
}

// A table's block stands at a point and along a direction.
void DrawDxfTable(DxfDecoder& dxf, DxfReader*) {
    const DxfGroups& groups = dxf.groups;
    const double angle = std::atan2(groups.Number(21), groups.Number(11, 1)), c = std::cos(angle), s = std::sin(angle);
    const PlaneMap map = Compose(dxf.map, {{c, s, 0}, {-s, c, 0}, {0, 0, 1}}, PointOf(groups, 10));
    const DxfLook look = LookOfEntityLayer(dxf);
    if (const DxfNames::Row* const row = dxf.tables.blocks.Find(dxf.form, groups.Text(2))) {
        DrawBlock(dxf, *row, map, look, {});
    }
}
