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

DxfTextStyle TextStyleOf(const DxfDecoder& dxf, ByteView name) {
    DxfTextStyle style;
    const DxfNames::Row* const row = dxf.tables.styles.Find(dxf.form, name);
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
    return style;
}

// `verticalCode` names the vertical justification, which the kinds keep in different groups.
static void DrawLineOfText(DxfDecoder& dxf, ByteView bytes, int verticalCode) {
    const DxfGroups& groups = dxf.groups;
    std::u16string& text = dxf.text;
    text.clear();
    AppendUnicode(dxf.encoding, bytes, &text);
    const DxfLineMarks marks = ResolveLineCodes(&text);

    double height = groups.Number(40);
    if (!(height > 0)) height = TextStyleOf(dxf, groups.Text(7)).height;
    if (!(height > 0)) height = 1;
    // A text has its own width; its style's is only what new texts get.
    const double ownWidth = groups.Number(41, 1), widthFactor = ownWidth > 0 ? ownWidth : 1;
    const int horizontal = groups.Integer(72), vertical = groups.Integer(verticalCode), flags = groups.Integer(71);
    const Vector3 first = PointOf(groups, 10), second = groups.Has(11) ? PointOf(groups, 11) : first;
    double angle = Radians(groups.Number(50));
    UnicodeText out = {};
    double fitWidth = 0;
    DxfTextPlace place = {};
    if (horizontal == kAligned || horizontal == kFit) {
        place.at = first;
        const double dx = second.x - first.x, dy = second.y - first.y, length = Length(dx, dy);
        if (length > 0) {
            angle = std::atan2(dy, dx);
            fitWidth = length;
            if (flags & kBackward) place.at = second;
            const double width = WidthOfText(text.data(), text.size(), height) * widthFactor;
            if (horizontal == kAligned && width > 0) height *= length / width;
        }
    } else {
        const bool atFirst = horizontal == kLeft && vertical == 0;
        place.at = atFirst ? first : second;
        if (horizontal == kCentre || horizontal == kMiddle) out.horizontal = 1;
        if (horizontal == kRight) out.horizontal = 2;
        out.vertical = horizontal == kMiddle ? 2 : vertical >= 0 && vertical <= 3 ? vertical : 0;
    }
    place.along = {std::cos(angle), std::sin(angle), 0};
    place.up = {-std::sin(angle), std::cos(angle), 0};
    out.backward = flags & kBackward;
    out.upsideDown = flags & kUpsideDown;
    out.underlined = marks.underlined;
    out.overlined = marks.overlined;
    out.struckOut = marks.struckOut;
    out.text = text.data();
    out.length = text.size();
    if (PlaceText(dxf, place, height, widthFactor, fitWidth, groups.Number(51), &out)) DrawDxfText(dxf, out);
}

void DrawDxfTextEntity(DxfDecoder& dxf, DxfReader*) { DrawLineOfText(dxf, dxf.groups.Text(1), 73); }
void DrawDxfAttribute(DxfDecoder& dxf, DxfReader*) { DrawLineOfText(dxf, dxf.groups.Text(1), 74); }
void DrawDxfAttributeDefinition(DxfDecoder& dxf, DxfReader*) { DrawLineOfText(dxf, dxf.groups.Text(2), 74); }
