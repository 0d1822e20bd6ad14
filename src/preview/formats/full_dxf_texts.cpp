// TEXT, ATTRIB and ATTDEF: one line of text, justified at a point or between two.
#include <algorithm>
#include <cmath>

#include "preview/formats/full_dxf_box.h"
#include "preview/formats/full_dxf_decoder.h"

bool PlaceText(const DxfDecoder& dxf, const DxfTextPlace& place, double height, double widthFactor, double fitWidth,
               double obliqueDegrees, UnicodeText* out) {
    const WorldPoint along = dxf.map.Direction(place.along), up = dxf.map.Direction(place.up);
    const double length = Length(along.x, along.y), area = along.x * up.y - along.y * up.x;
    if (!(length > 0) || !(std::fabs(area) > 0) || !IsDrawable(length)) return false;
    const double upright = std::fabs(area) / length;  // what a unit of height becomes
    const double lean = (along.x * up.x + along.y * up.y) / length;
    out->at = dxf.map.Point(place.at);
    out->height = height * upright;
    out->widthFactor = widthFactor * length / upright;
    out->fitWidth = fitWidth * length;
    out->angleDegrees = Degrees(std::atan2(along.y, along.x));
    out->obliqueDegrees = Degrees(std::atan2(lean + std::tan(Radians(obliqueDegrees)) * length, upright));
    if (area < 0) out->upsideDown = !out->upsideDown;  // a mirrored block
    return true;
}

enum Justification { kLeft = 0, kCentre = 1, kRight = 2, kAligned = 3, kMiddle = 4, kFit = 5 };
enum Generation { kBackward = 2, kUpsideDown = 4 };

DxfTextStyle TextStyleOf(DxfDecoder& dxf, ByteView name) {
    DxfTextStyle style;
    const DxfNames::Row* const row = dxf.budget.left ? dxf.tables.styles.Find(dxf.form, name) : nullptr;
    if (!row) return style;
    DxfReader reader = {&dxf.form, row->begin};
    DxfPair pair;
    while (NextInRecord(&reader, &pair)) {
        if (pair.code == 40) style.height = DxfNumber(dxf.form, 40, pair.value);
        if (pair.code == 50) style.obliqueDegrees = std::clamp(DxfNumber(dxf.form, 50, pair.value), -85.0, 85.0);
        if (pair.code != 41) continue;
        const double width = DxfNumber(dxf.form, 41, pair.value);
        if (width > 0.01 && width < 100) style.widthFactor = width;
    }
    dxf.budget.Charge(static_cast<long long>((reader.at - row->begin) / 16));
    return style;
}

// A line of text as its entity has it.
struct LineOfText {
    ByteView bytes;
    DxfTextPlace place;
    double height, widthFactor, fitWidth, obliqueDegrees;
    int horizontal, vertical;  // as UnicodeText's
    int generation;
};

// To dxf.text.
static DxfLineMarks ResolveText(DxfDecoder& dxf, ByteView bytes) {
    dxf.text.clear();
    AppendUnicode(dxf.encoding, bytes, &dxf.text);
    return ResolveLineCodes(&dxf.text);
}

// `verticalCode` names the vertical justification, which the kinds keep in different groups.
static LineOfText ReadLineOfText(DxfDecoder& dxf, ByteView bytes, int verticalCode) {
    const DxfGroups& groups = dxf.groups;
    LineOfText line = {};
    line.bytes = bytes;
    line.height = groups.Number(40);
    if (!(line.height > 0)) line.height = TextStyleOf(dxf, groups.Text(7)).height;
    if (!(line.height > 0)) line.height = 1;
    // A text has its own width; its style's is only what new texts get.
    const double ownWidth = groups.Number(41, 1);
    line.widthFactor = ownWidth > 0 ? ownWidth : 1;
    line.obliqueDegrees = groups.Number(51);
    line.generation = groups.Integer(71) & (kBackward | kUpsideDown);
    const int horizontal = groups.Integer(72), vertical = groups.Integer(verticalCode);
    const Vector3 first = PointOf(groups, 10), second = groups.Has(11) ? PointOf(groups, 11) : first;
    double angle = Radians(groups.Number(50));
    if (horizontal == kAligned || horizontal == kFit) {
        line.place.at = first;
        const double dx = second.x - first.x, dy = second.y - first.y, length = Length(dx, dy);
        if (length > 0) {
            angle = std::atan2(dy, dx);
            line.fitWidth = length;
            if (line.generation & kBackward) line.place.at = second;
            ResolveText(dxf, bytes);
            const double width = WidthOfText(dxf.text.data(), dxf.text.size(), line.height) * line.widthFactor;
            if (horizontal == kAligned && width > 0) line.height *= length / width;
        }
    } else {
        const bool atFirst = horizontal == kLeft && vertical == 0;
        line.place.at = atFirst ? first : second;
        if (horizontal == kCentre || horizontal == kMiddle) line.horizontal = 1;
        if (horizontal == kRight) line.horizontal = 2;
        line.vertical = horizontal == kMiddle ? 2 : vertical >= 0 && vertical <= 3 ? vertical : 0;
    }
    line.place.along = {std::cos(angle), std::sin(angle), 0};
    line.place.up = {-line.place.along.y, line.place.along.x, 0};
    return line;
}

static void DrawLineOfText(DxfDecoder& dxf, const LineOfText& line) {
    const DxfLineMarks marks = ResolveText(dxf, line.bytes);
    UnicodeText out = {};
    out.horizontal = line.horizontal;
    out.vertical = line.vertical;
    out.backward = line.generation & kBackward;
    out.upsideDown = line.generation & kUpsideDown;
    out.underlined = marks.underlined;
    out.overlined = marks.overlined;
    out.struckOut = marks.struckOut;
    out.text = dxf.text.data();
    out.length = dxf.text.size();
    if (PlaceText(dxf, line.place, line.height, line.widthFactor, line.fitWidth, line.obliqueDegrees, &out)) {
        DrawDxfText(dxf, out);
    }
}

void DrawDxfTextEntity(DxfDecoder& dxf, DxfReader*) {
    DrawLineOfText(dxf, ReadLineOfText(dxf, dxf.groups.Text(1), 73));
}
void DrawDxfAttribute(DxfDecoder& dxf, DxfReader*) { DrawLineOfText(dxf, ReadLineOfText(dxf, dxf.groups.Text(1), 74)); }
void DrawDxfAttributeDefinition(DxfDecoder& dxf, DxfReader*) {
    DrawLineOfText(dxf, ReadLineOfText(dxf, dxf.groups.Text(2), 74));
}

// The characters of a step stay in the file.
bool TakeDxfText(DxfDecoder& dxf, DxfReader*, DxfStep* step) {
    const LineOfText line = ReadLineOfText(dxf, dxf.groups.Text(1), 73);
    if (line.bytes.size == 0) return true;
    step->what = DxfStep::kText;
    step->detail = static_cast<std::uint8_t>(line.horizontal | line.vertical << 2 | line.generation << 4);
    step->begin = static_cast<std::uint32_t>(line.bytes.data - dxf.form.file.data);
    const DxfTextPlace& place = line.place;
    dxf.numbers = {place.at.x,    place.at.y,          place.along.x,
                   place.along.y, line.height,         line.widthFactor,
                   line.fitWidth, line.obliqueDegrees, static_cast<double>(line.bytes.size)};
    return true;
}

void DrawDxfTextStep(DxfDecoder& dxf, const DxfStep& step) {
    const double* const n = step.numbers;
    const DxfTextPlace place = {{n[0], n[1], 0}, {n[2], n[3], 0}, {-n[3], n[2], 0}};
    const ByteView bytes = {dxf.form.file.data + step.begin, static_cast<std::size_t>(n[8])};
    dxf.budget.Charge(static_cast<long long>(bytes.size / 16));  // of which not all need come out as characters
    DrawLineOfText(dxf,
                   {bytes, place, n[4], n[5], n[6], n[7], step.detail & 3, step.detail >> 2 & 3, step.detail >> 4});
}
