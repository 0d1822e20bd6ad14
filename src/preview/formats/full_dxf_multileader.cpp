// MULTILEADER: lines with arrowheads that lead to a text of several lines, or to a block. Its groups stand in braces of
// named parts, and mean something else in each and behind them.
#include <algorithm>
#include <cmath>

#include "preview/formats/full_dxf_decoder.h"

namespace {

constexpr int kMostArrows = 16;

// What stands outside of all parts, mostly behind them.
struct LeaderStyle {
    int lines = 1;  // 0: none, 2: smooth ones
    bool doglegs = true;
    std::uint32_t arrow = 0;  // the owner of its block
};

// What a leader's context holds.
struct LeaderWalk {
    DxfDecoder& dxf;
    LeaderStyle style;
    enum { kNone, kContext, kLeader, kLine } part = kNone;
    DxfParagraphPlace text = {};
    bool hasText = false;
    Vector3 normal = {0, 0, 1};
    double angle = 0;                // of the text, where it has no direction
    Vector3 last = {}, dogleg = {};  // where a leader's lines end, and the way to its text
    double doglegLength = 0;
    bool hasDogleg = true;
    Vector3 point = {}, first = {}, second = {};  // of the open line
    int points = 0;
    bool open = false;
    DxfArrow arrows[kMostArrows] = {};
    int arrowCount = 0;
    double arrowSize = 0;
    // A block instead of a text.
    bool hasBlock = false;
    std::uint32_t block = 0;  // its owner
    Vector3 blockAt = {}, blockScale = {1, 1, 1}, blockNormal = {0, 0, 1};
    double blockAngle = 0;

    void Take(const DxfPair& pair);
    void Flush();
    void EndLine();
    void EndLeader();
};

void SetCoordinate(Vector3* point, int tens, double value) {
    if (tens == 1) point->x = value;
    if (tens == 2) point->y = value;
    if (tens == 3) point->z = value;
}

void LeaderWalk::Flush() {
    if (!open) return;
    open = false;
    if (points == 0) first = point;
    if (points == 1) second = point;
    ++points;
    if (style.lines == 0) return;
    if (style.lines == 2 && dxf.spline.fits.size() < kMostSplinePoints) dxf.spline.fits.push_back(dxf.map.Point(point));
    else PathTo(dxf, dxf.map.Point(point));
}

void LeaderWalk::EndLine() {
    Flush();
    point = last;
    open = true;
    Flush();
    if (style.lines == 2) PathAlong(dxf, &dxf.spline);
    EndOutline(dxf);
    if (style.lines != 0 && points > 1 && arrowCount < kMostArrows) arrows[arrowCount++] = {first, second};
    points = 0;
    part = kLeader;
}

void LeaderWalk::EndLeader() {
    if (hasDogleg && style.doglegs && style.lines != 0 && doglegLength > 0 && IsDrawable(doglegLength)) {
        PathTo(dxf, dxf.map.Point(last));
        PathTo(dxf, dxf.map.Point({last.x + dogleg.x * doglegLength, last.y + dogleg.y * doglegLength,
                                   last.z + dogleg.z * doglegLength}));
        EndOutline(dxf);
    }
    doglegLength = 0;
    hasDogleg = true;
    part = kContext;
}

void LeaderWalk::Take(const DxfPair& pair) {
    const ByteView value = pair.value;
    const int tens = pair.code / 10, ones = pair.code % 10;
    const double number =
        pair.code < 60 || (pair.code >= 110 && pair.code < 150) ? DxfNumber(dxf.form, pair.code, value) : 0;
    if (part == kNone) {
        if (pair.code == 300) part = kContext;
    } else if (part == kContext) {
        if (pair.code == 301) part = kNone;
        else if (pair.code == 302) part = kLeader;
        else if (pair.code == 304) AppendParagraphBytes(dxf, value);
        else if (tens >= 1 && tens <= 3 && ones == 2) SetCoordinate(&text.place.at, tens, number);
        else if (tens >= 1 && tens <= 3 && ones == 3) SetCoordinate(&text.place.along, tens, number);
        else if (tens >= 1 && tens <= 3 && ones == 1) SetCoordinate(&normal, tens, number);
        else if (pair.code == 41) text.height = number;
        else if (pair.code == 42) angle = number;
        else if (pair.code == 43) text.width = std::max(number, 0.0);
        else if (pair.code == 45) text.spacing = number;
        else if (pair.code == 171)
            text.attachment = static_cast<int>(std::clamp(DxfInteger(dxf.form, 171, value), 1ll, 3ll));
        else if (pair.code == 290) hasText = DxfInteger(dxf.form, 290, value) != 0;
        else if (pair.code == 296) hasBlock = DxfInteger(dxf.form, 296, value) != 0;
        else if (pair.code == 140) arrowSize = number;
        else if (pair.code == 341) block = DxfHandle(value);
        else if (tens >= 1 && tens <= 3 && ones == 4) SetCoordinate(&blockNormal, tens, number);
        else if (tens >= 1 && tens <= 3 && ones == 5) SetCoordinate(&blockAt, tens, number);
        else if (tens >= 1 && tens <= 3 && ones == 6) SetCoordinate(&blockScale, tens, number);
        else if (pair.code == 46) blockAngle = number;
    } else if (part == kLeader) {
        if (pair.code == 303) EndLeader();
        else if (pair.code == 304) {
            part = kLine;
            dxf.spline.Clear();
        } else if (pair.code == 291) hasDogleg = DxfInteger(dxf.form, 291, value) != 0;
        else if (tens >= 1 && tens <= 3 && ones == 0) SetCoordinate(&last, tens, number);
        else if (tens >= 1 && tens <= 3 && ones == 1) SetCoordinate(&dogleg, tens, number);
        else if (pair.code == 40) doglegLength = number;
    } else {
        if (pair.code == 305) return EndLine();
        if (pair.code == 10) {
            Flush();
            open = true;
            point = {number, 0, 0};
        } else if (tens == 2 || tens == 3) {
            if (ones == 0) SetCoordinate(&point, tens, number);
        }
    }
}

LeaderStyle StyleOf(const DxfDecoder& dxf) {
    LeaderStyle style;
    DxfRecordWalk record(dxf.groups);
    DxfPair pair;
    bool inside = false;
    while (record.Next(&pair)) {
        if (pair.code == 300) inside = true;
        if (pair.code == 301) inside = false;
        if (inside) continue;
        if (pair.code == 170)
            style.lines = static_cast<int>(std::clamp(DxfInteger(dxf.form, 170, pair.value), 0ll, 2ll));
        if (pair.code == 291) style.doglegs = DxfInteger(dxf.form, 291, pair.value) != 0;
        if (pair.code == 342) style.arrow = DxfHandle(pair.value);
    }
    return style;
}

}  // namespace

void DrawDxfMultiLeader(DxfDecoder& dxf, DxfReader*) {
    LeaderWalk walk = {dxf, StyleOf(dxf)};
    dxf.paragraphs.bytes.clear();
    DxfRecordWalk record(dxf.groups);
    DxfPair pair;
    BeginPath(dxf);
    while (record.Next(&pair) && dxf.MayContinue()) walk.Take(pair);
    EndPath(dxf);
    const DxfLook look = LookOfEntityLayer(dxf);
    const PlaneMap map = dxf.map;
    const unsigned pen = dxf.pen;
    if (walk.hasText) {
        Vector3& along = walk.text.place.along;
        if (along.x == 0 && along.y == 0 && along.z == 0) along = {std::cos(walk.angle), std::sin(walk.angle), 0};
        along = AlongText(along);
        walk.text.place.up = UpFromText(AxesOfNormal(walk.normal).z, walk.text.place.along);
        DrawParagraphs(dxf, walk.text);
    }
    dxf.pen = pen;  // a text too small to be read changes it
    DrawDxfArrows(dxf, walk.arrows, walk.arrowCount, walk.arrowSize, walk.style.arrow);
    const DxfNames::Row* const block = walk.hasBlock ? FindDxfBlockOf(dxf, walk.block) : nullptr;
    if (!block) return;
    dxf.pen = pen;
    const Axes3 axes = AxesOfNormal(walk.blockNormal);
    const double c = std::cos(walk.blockAngle), s = std::sin(walk.blockAngle);
    const Vector3& scale = walk.blockScale;
    const Axes3 turned = {{scale.x * c, scale.x * s, 0}, {-scale.y * s, scale.y * c, 0}, {0, 0, scale.z}};
    DrawDxfBlockAt(dxf, *block, Compose(Compose(map, axes, walk.blockAt), turned, {0, 0, 0}), look);
}
