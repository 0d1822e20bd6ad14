// What a dimension style rules: leaders and their arrowheads; and dimensions, which have a block that shows them.
#include <algorithm>
#include <cmath>

#include "preview/formats/full_dxf_decoder.h"

namespace {

Vector3 Sum(Vector3 a, Vector3 b, double times = 1) {
    return {a.x + b.x * times, a.y + b.y * times, a.z + b.z * times};
}

// A unit from one point to another as they are seen from above; without a length where they are one.
Vector3 Toward(Vector3 from, Vector3 to) {
    const double x = to.x - from.x, y = to.y - from.y, length = Length(x, y);
    return length > 0 && IsDrawable(length) ? Vector3{x / length, y / length, 0} : Vector3{};
}

Vector3 ToLeft(Vector3 unit) { return {-unit.y, unit.x, 0}; }

// The current entity's style, and what it has of its own: behind the mark DSTYLE, pairs of a style's code and a value.
DxfDimensionStyle StyleOfEntity(DxfDecoder& dxf) {
    DxfDimensionStyle style = dxf.tables.dimensionStyle;
    DxfPair pair;
    const DxfNames::Row* const row =
        dxf.budget.left ? dxf.tables.dimensionStyles.Find(dxf.form, dxf.groups.Text(3)) : nullptr;
    if (row) {
        DxfReader reader = {&dxf.form, row->begin};
        while (NextInRecord(&reader, &pair)) TakeDimensionValue(dxf.form, pair.code, pair, &style);
        dxf.budget.Charge(static_cast<long long>((reader.at - row->begin) / 16));
    }
    DxfRecordWalk record(dxf.groups);
    bool own = false;
    int code = 0;
    while (record.Next(&pair)) {
        if (pair.code == 1000) own = IsName(Trimmed(pair.value), "DSTYLE");
        if (!own) continue;
        if (pair.code == 1070 && code == 0) {
            code = static_cast<int>(std::clamp(DxfInteger(dxf.form, 1070, pair.value), 0ll, 999ll));
        } else if (pair.code != 1002) {
            TakeDimensionValue(dxf.form, code, pair, &style);
            code = 0;
        }
    }
    if (!(style.scale > 0)) style.scale = 1;
    return style;
}

void DrawTriangle(DxfDecoder& dxf, const DxfArrow& arrow, double size) {
    const Vector3 back = Toward(arrow.tip, arrow.from), side = ToLeft(back);
    const Vector3 end = Sum(arrow.tip, back, size);
    BeginPath(dxf, true);
    PathTo(dxf, dxf.map.Point(arrow.tip));
    PathTo(dxf, dxf.map.Point(Sum(end, side, size / 6)));
    PathTo(dxf, dxf.map.Point(Sum(end, side, -size / 6)));
    EndPath(dxf);
}

}  // namespace

void DrawDxfArrows(DxfDecoder& dxf, const DxfArrow* arrows, int count, double size, std::uint32_t head) {
    if (!(size > 0) || !IsDrawable(size)) return;
    const PlaneMap map = dxf.map;
    const unsigned pen = dxf.pen;
    const DxfLook look = LookOfEntityLayer(dxf);
    const DxfNames::Row* const block = FindDxfBlockOf(dxf, head);
    for (int i = 0; i < count; ++i) {
        dxf.pen = pen;
        const Vector3 along = Toward(arrows[i].from, arrows[i].tip), side = ToLeft(along);
        if (along.x == 0 && along.y == 0) continue;
        if (!block) {
            DrawTriangle(dxf, arrows[i], size);
            continue;
        }
        const Axes3 axes = {Sum({}, along, size), Sum({}, side, size), {0, 0, size}};
        DrawDxfBlockAt(dxf, *block, Compose(map, axes, arrows[i].tip), look);
    }
}

// Lines from point to point, or a smooth curve through them, and the line that leads on to a text.
void DrawDxfLeader(DxfDecoder& dxf, DxfReader*) {
    constexpr std::size_t kMostPoints = 1 << 12;
    const DxfGroups& groups = dxf.groups;
    const DxfDimensionStyle style = StyleOfEntity(dxf);
    std::vector<Vector3> points;
    DxfRecordWalk record(groups);
    DxfPair pair;
    while (record.Next(&pair)) {
        if (pair.code == 10 && points.size() < kMostPoints) {
            points.push_back({DxfNumber(dxf.form, 10, pair.value), 0, 0});
        }
        if (points.empty()) continue;
        if (pair.code == 20) points.back().y = DxfNumber(dxf.form, 20, pair.value);
        if (pair.code == 30) points.back().z = DxfNumber(dxf.form, 30, pair.value);
    }
    if (points.empty()) return;
    const double textWidth = groups.Number(41);
    if (groups.Integer(73, 3) == 0 && groups.Integer(75) && style.textAbove && textWidth > 0) {
        const Vector3 along =
            groups.Has(211) ? Vector3{groups.Number(211), groups.Number(221), groups.Number(231)} : Vector3{1, 0, 0};
        const double length = style.gap * style.scale + textWidth;
        points.push_back(Sum(points.back(), along, groups.Integer(74) == 1 ? -length : length));
    }
    BeginPath(dxf);
    if (groups.Integer(72) == 1 && points.size() > 2) {
        DxfSpline& spline = dxf.spline;
        spline.Clear();
        for (const Vector3& point : points) spline.fits.push_back(dxf.map.Point(point));
        spline.startTangent = dxf.map.Direction(Sum(points[1], points[0], -1));
        spline.endTangent = dxf.map.Direction(Sum(points.back(), points[points.size() - 2], -1));
        PathAlong(dxf, &spline);
    } else {
        for (const Vector3& point : points) PathTo(dxf, dxf.map.Point(point));
    }
    EndPath(dxf);
    if (points.size() < 2 || groups.Integer(71, 1) == 0) return;
    const DxfArrow arrow = {points[0], points[1]};
    DrawDxfArrows(dxf, &arrow, 1, style.arrow * style.scale, style.leaderArrow);
}

// A dimension's block is drawn where it stands, unless the dimension is a copy that has been moved.
void DrawDxfDimension(DxfDecoder& dxf, DxfReader*) {
    const DxfNames::Row* const block = dxf.tables.blocks.Find(dxf.form, dxf.groups.Text(2));
    if (!block) return;  // a writer that has left it out shows nothing of them
    const Axes3 axes = AxesOfNormal(NormalOf(dxf.groups)), upright = AxesOfNormal({0, 0, 1});
    const Vector3 p = PointOf(dxf.groups, 12);
    const Vector3 moved = Sum(Sum(Sum({}, axes.x, p.x), axes.y, p.y), axes.z, p.z);
    DrawDxfBlockAt(dxf, *block, Compose(dxf.map, upright, moved), LookOfEntityLayer(dxf));
}
