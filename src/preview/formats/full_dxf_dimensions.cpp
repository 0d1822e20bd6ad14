// What a dimension style rules: leaders and their arrowheads, and dimensions. These have a block that shows them; where
// a writer has left it out they are drawn from what they measure.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <string>

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

double Across(Vector3 unit, Vector3 from, Vector3 to) { return unit.x * (to.x - from.x) + unit.y * (to.y - from.y); }

Vector3 ToLeft(Vector3 unit) { return {-unit.y, unit.x, 0}; }

// The current entity's style, and what it has of its own: behind the mark DSTYLE, pairs of a style's code and a value.
DxfDimensionStyle StyleOfEntity(DxfDecoder& dxf) {
    DxfDimensionStyle style = dxf.tables.dimensionStyle;
    DxfPair pair;
    if (const DxfNames::Row* const row = dxf.tables.dimensionStyles.Find(dxf.form, dxf.groups.Text(3))) {
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

void DrawSegment(DxfDecoder& dxf, Vector3 from, Vector3 to) {
    DrawDxfLine(dxf, dxf.map.Point(from), dxf.map.Point(to));
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

// ---- Dimensions without a block

namespace {

enum DimensionKind { kRotated = 0, kAligned = 1, kAngular = 2, kDiameter = 3, kRadius = 4, kAngular3Points = 5 };

// The text that a dimension shows; "<>" in its own text stands for the number.
std::string TextOfDimension(const DxfGroups& groups, int kind, double measured) {
    if (groups.Number(42) > 0) measured = groups.Number(42);
    const bool isAngle = kind == kAngular || kind == kAngular3Points;
    if (isAngle) measured = Degrees(measured);
    char digits[64];
    char* end = std::to_chars(digits, std::end(digits), measured, std::chars_format::general, 6).ptr;
    std::string number = kind == kRadius ? "R" : kind == kDiameter ? "%%c" : "";
    number.append(digits, end);
    if (isAngle) number += "%%d";
    const ByteView own = groups.Text(1);
    constexpr std::size_t kMostBytes = 1024;
    std::string text(reinterpret_cast<const char*>(own.data), std::min(own.size, kMostBytes));
    const std::size_t mark = text.find("<>");
    if (text.empty()) return number;
    return mark == std::string::npos ? text : text.replace(mark, 2, number);
}

void DrawDimensionText(DxfDecoder& dxf, const std::string& text, Vector3 at, Vector3 along, double height) {
    if (along.x < -1e-9 || (std::fabs(along.x) <= 1e-9 && along.y < 0))
        along = Sum({}, along, -1);  // never on its head
    dxf.paragraphs.bytes.clear();
    AppendParagraphBytes(dxf, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    DxfParagraphPlace place;
    place.place = {at, AlongText(along), {}};
    place.place.up = UpFromText({0, 0, 1}, place.place.along);
    place.height = height;
    place.attachment = 5;
    DrawParagraphs(dxf, place);
}

// From near a measured point to a little beyond the line that tells the measure.
void DrawExtension(DxfDecoder& dxf, const DxfDimensionStyle& style, Vector3 from, Vector3 to) {
    const Vector3 along = Toward(from, to);
    DrawSegment(dxf, Sum(from, along, style.offset * style.scale), Sum(to, along, style.beyond * style.scale));
}

// Who writes no block mostly has no style for the drawing either: sizes are kept between what can be read and what
// would cover the picture.
DxfDimensionStyle StyleWithoutBlock(DxfDecoder& dxf) {
    constexpr double kMost = 1.0 / 40;  // of the picture's height
    DxfDimensionStyle style = StyleOfEntity(dxf);
    if (dxf.IsMeasuring()) return style;
    const double most = (dxf.sink->view.worldMaxY - dxf.sink->view.worldMinY) * kMost / style.scale;
    for (double* size : {&style.offset, &style.beyond}) *size = std::min(*size, most);
    for (double* size : {&style.arrow, &style.text}) *size = std::clamp(*size, most / 2, most);
    return style;
}

void DrawWithoutBlock(DxfDecoder& dxf) {
    if (dxf.PassesAside()) return;
    const DxfGroups& groups = dxf.groups;
    const DxfDimensionStyle style = StyleWithoutBlock(dxf);
    const int kind = groups.Integer(70) & 15;
    const Vector3 line = PointOf(groups, 10), first = PointOf(groups, 13), second = PointOf(groups, 14);
    const Vector3 other = PointOf(groups, 15);
    DxfArrow arrows[2] = {};
    int arrowCount = 2;
    Vector3 from = line, to = other;  // of the line that tells the measure
    if (kind == kRotated || kind == kAligned) {
        const double angle = Radians(groups.Number(50));
        const Vector3 along = kind == kAligned ? Toward(first, second) : Vector3{std::cos(angle), std::sin(angle), 0};
        const Vector3 up = ToLeft(along);
        from = Sum(first, up, Across(up, first, line));
        to = Sum(second, up, Across(up, second, line));
        DrawExtension(dxf, style, first, from);
        DrawExtension(dxf, style, second, to);
    } else if (kind == kAngular || kind == kAngular3Points) {
        from = kind == kAngular ? first : other;
        to = second;
        DrawSegment(dxf, kind == kAngular ? line : first, other);
        arrowCount = 0;
    } else if (kind != kDiameter && kind != kRadius) {
        from = first;  // an ordinate's leader
        to = second;
        arrowCount = 0;
    }
    DrawSegment(dxf, from, to);
    arrows[0] = {to, from};
    arrows[1] = {from, to};
    if (kind == kRadius) arrowCount = 1;
    const double measured = Length(to.x - from.x, to.y - from.y), size = style.arrow * style.scale;
    const std::string text = TextOfDimension(groups, kind, measured);
    const PlaneMap map = dxf.map;
    dxf.map = Compose(map, AxesOfNormal(NormalOf(groups)), {0, 0, 0});
    const Vector3 middle = {(from.x + to.x) / 2, (from.y + to.y) / 2, 0};
    DrawDimensionText(dxf, text, groups.Has(11) ? PointOf(groups, 11) : middle, Toward(from, to),
                      style.text * style.scale);
    dxf.map = map;
    if (measured > 2 * size) DrawDxfArrows(dxf, arrows, arrowCount, size, 0);
}

}  // namespace

// A dimension's block is drawn where it stands, unless the dimension is a copy that has been moved.
void DrawDxfDimension(DxfDecoder& dxf, DxfReader*) {
    const DxfNames::Row* const block = dxf.tables.blocks.Find(dxf.form, dxf.groups.Text(2));
    if (!block) return DrawWithoutBlock(dxf);
    const Axes3 axes = AxesOfNormal(NormalOf(dxf.groups)), upright = AxesOfNormal({0, 0, 1});
    const Vector3 p = PointOf(dxf.groups, 12);
    const Vector3 moved = Sum(Sum(Sum({}, axes.x, p.x), axes.y, p.y), axes.z, p.z);
    DrawDxfBlockAt(dxf, *block, Compose(dxf.map, upright, moved), LookOfEntityLayer(dxf));
}
