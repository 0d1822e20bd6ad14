// MULTILEADER: lines that lead to a text of several lines. Its own groups stand in braces of named parts, and mean
// something else in each.
#include <algorithm>
#include <cmath>

#include "preview/formats/full_dxf_decoder.h"

namespace {

// What a leader's context holds; the groups mean something else in each of its braces.
struct LeaderWalk {
    DxfDecoder& dxf;
    enum { kNone, kContext, kLeader, kLine } part = kNone;
    DxfParagraphPlace text = {};
    bool hasText = false;
    Vector3 normal = {0, 0, 1};
    double angle = 0;
    Vector3 last = {}, dogleg = {};  // where a leader's lines end, and the way to its text
    double doglegLength = 0;
    Vector3 point = {};
    bool open = false;

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
    if (open) PathTo(dxf, dxf.map.Point(point));
    open = false;
}

void LeaderWalk::EndLine() {
    Flush();
    PathTo(dxf, dxf.map.Point(last));
    EndOutline(dxf);
    part = kLeader;
}

void LeaderWalk::EndLeader() {
    if (doglegLength > 0 && IsDrawable(doglegLength)) {
        PathTo(dxf, dxf.map.Point(last));
        PathTo(dxf, dxf.map.Point({last.x + dogleg.x * doglegLength, last.y + dogleg.y * doglegLength,
                                   last.z + dogleg.z * doglegLength}));
        EndOutline(dxf);
    }
    doglegLength = 0;
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
    } else if (part == kLeader) {
        if (pair.code == 303) EndLeader();
        else if (pair.code == 304) part = kLine;
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

}  // namespace

void DrawDxfMultiLeader(DxfDecoder& dxf, DxfReader*) {
    LeaderWalk walk = {dxf};
    walk.text.place.along = {1, 0, 0};
    dxf.paragraphs.bytes.clear();
    DxfRecordWalk record(dxf.groups);
    DxfPair pair;
    BeginPath(dxf);
    while (record.Next(&pair) && dxf.MayContinue()) walk.Take(pair);
    EndPath(dxf);
    if (!walk.hasText) return;
    walk.text.place.along = AlongText(walk.text.place.along);
    walk.text.place.up = UpFromText(AxesOfNormal(walk.normal).z, walk.text.place.along);
    DrawParagraphs(dxf, walk.text);
}
