// DXF: a text of lines in pairs, a group code and its value. Group codes stand right-aligned in three columns.
//
// Lengths are drawing units, angles degrees counter-clockwise. Lines are looked at one by one, without a notion of
// pairs: a keyword counts wherever it begins a line, and a group code says what the next line is.
#include "preview/formats/dxf.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

#include "kit/numbers.h"
#include "kit/sjis.h"
#include "preview/drawing/text_placement.h"

namespace {

enum Code : int {
    kNone = -1,
    kExtMin = 0,
    kExtMax = 1,
    kEntityPoint = 10,
    kEntityLine = 11,
    kEntityArc = 12,
    kEntityCircle = 13,
    kEntityText = 14,
    kGroup0 = 20,
    kGroup9 = 21,
    kTextString = 30,
    kLineType = 31,
    kLayer = 32,
    kRemark = 33,
    kFirstSlot = 40,  // 40 to 51 name the value slots 0 to 11
    kLastSlot = 51,
    kEndSection = 997,
    kEntities = 998,
    kEndOfFile = 999,
};

struct Keyword {
    char text[9];
    std::uint8_t length;
    short code;
    bool immediate;  // acts on its own line; the others name what the next line is
};

// A line that begins with a row's text is that row. No row begins with another one, so their order does not matter.
constexpr Keyword kKeywords[] = {
    {"EOF", 3, kEndOfFile, true},       {"ENTITIES", 8, kEntities, true},  {"ENDSEC", 6, kEndSection, true},
    {"$EXTMIN", 7, kExtMin, true},      {"$EXTMAX", 7, kExtMax, true},     {"POINT", 5, kEntityPoint, true},
    {"LINE", 4, kEntityLine, true},     {"ARC", 3, kEntityArc, true},      {"CIRCLE", 6, kEntityCircle, true},
    {"TEXT", 4, kEntityText, true},     {"  0", 3, kGroup0, true},         {"  9", 3, kGroup9, true},
    {"  1", 3, kTextString, false},     {"  6", 3, kLineType, false},      {"  8", 3, kLayer, false},
    {"999", 3, kRemark, false},         {" 10", 3, kFirstSlot + 0, false}, {" 20", 3, kFirstSlot + 1, false},
    {" 30", 3, kFirstSlot + 2, false},  {" 40", 3, kFirstSlot + 3, false}, {" 50", 3, kFirstSlot + 4, false},
    {" 11", 3, kFirstSlot + 5, false},  {" 21", 3, kFirstSlot + 6, false}, {" 31", 3, kFirstSlot + 7, false},
    {" 41", 3, kFirstSlot + 8, false},  {" 51", 3, kFirstSlot + 9, false}, {" 72", 3, kFirstSlot + 10, false},
    {" 73", 3, kFirstSlot + 11, false},
};
constexpr int kKeywordCount = static_cast<int>(std::size(kKeywords));

// Half of the lines are group codes and most are none of these, so a row is found by its first three characters, taken
// as one number. Rows whose numbers share a hash are chained.
constexpr std::uint32_t HeadOf(std::uint8_t a, std::uint8_t b, std::uint8_t c) {
    return a | static_cast<std::uint32_t>(b) << 8 | static_cast<std::uint32_t>(c) << 16;
}
constexpr std::uint32_t HashOf(std::uint32_t head) { return (head * 0x9E3779B1u) >> 24; }

struct KeywordIndex {
    bool begins[256];  // whether a row begins with the character: numbers, the other half of the lines, mostly do not
    std::int8_t first[256];
    struct {
        std::uint32_t head;
        std::int8_t next;
    } rows[kKeywordCount];
};
constexpr KeywordIndex MakeKeywordIndex() {
    KeywordIndex index = {};
    for (std::int8_t& row : index.first) row = -1;
    for (int row = 0; row < kKeywordCount; ++row) {
        const char* text = kKeywords[row].text;
        const std::uint32_t head = HeadOf(static_cast<std::uint8_t>(text[0]), static_cast<std::uint8_t>(text[1]),
                                          static_cast<std::uint8_t>(text[2]));
        index.begins[head & 0xFF] = true;
        index.rows[row] = {head, index.first[HashOf(head)]};
        index.first[HashOf(head)] = static_cast<std::int8_t>(row);
    }
    return index;
}
constexpr KeywordIndex kKeywordIndex = MakeKeywordIndex();

const Keyword* FindKeyword(ByteView line) {
    if (line.size < 3 || !kKeywordIndex.begins[line.data[0]]) return nullptr;
    const std::uint32_t head = HeadOf(line.data[0], line.data[1], line.data[2]);
    for (int row = kKeywordIndex.first[HashOf(head)]; row >= 0; row = kKeywordIndex.rows[row].next) {
        if (kKeywordIndex.rows[row].head != head) continue;
        const Keyword& keyword = kKeywords[row];
        if (keyword.length == 3 || MatchAt(line, 0, keyword.text, keyword.length)) return &keyword;
    }
    return nullptr;
}

struct LineTypeRow {
    const char* name;
    unsigned pen;
};
// A name that merely begins with a row's name is that row.
constexpr LineTypeRow kLineTypes[] = {
    {"CONTINUOUS", 1}, {"BORDER", 3}, {"CENTER", 3}, {"DASHDOT", 3}, {"DASHED", 2},
    {"DIVIDE", 4},     {"DOT", 5},    {"HIDDEN", 6}, {"PHANTOM", 4},
};

unsigned PenOfLineType(ByteView name) {
    for (const LineTypeRow& row : kLineTypes) {
        if (MatchAt(name, 0, row.name, std::strlen(row.name))) return row.pen;
    }
    return 0;
}

enum Slot : int {
    kX1 = 0,
    kY1 = 1,
    kRadius = 3,
    kHeight = 3,
    kStartAngle = 4,
    kRotation = 4,
    kX2 = 5,
    kY2 = 6,
    kWidthFactor = 8,
    kEndAngle = 9,
    kHorizontal = 10,
    kVertical = 11,
    kSlotCount = 12,
};
constexpr unsigned Bit(int slot) { return 1u << slot; }
constexpr unsigned kHasText = 0x8000;

// Most values are never asked for, so none is converted before; and none twice, as a slot may serve many elements.
struct SlotValue {
    ByteView line;
    bool isConverted = true;
    double number = 0;
};

struct DxfState {
    explicit DxfState(DrawingSink& target) : sink(target) {}
    DrawingSink& sink;
    SlotValue slots[kSlotCount];
    unsigned present = 0;  // Bit(slot), kHasText
    char text[128] = {};
    int pending = kNone;   // what waits for its groups
    int previous = kNone;  // what the line before has named
    unsigned pen = 0;
    bool inEntities = false;
    bool extentsFixed = false;
    WorldRect extents = {};
    LastText lastText;
    PreviewPrimitive primitive;

    bool Has(unsigned bits) const { return (present & bits) == bits; }
    double Value(int slot) {
        SlotValue& value = slots[slot];
        if (!value.isConverted) value = {value.line, true, ParseDecimal(value.line)};
        return value.number;
    }
    double Value(int slot, double missing) { return Has(Bit(slot)) ? Value(slot) : missing; }
    void Draw(unsigned withPen) { sink.draw(sink, primitive, withPen); }
};

// ---- Items

void TakeExtMin(DxfState& dxf) {
    if (!dxf.Has(Bit(kX1) | Bit(kY1)) || dxf.extentsFixed) return;
    dxf.extents.minX = dxf.Value(kX1);
    dxf.extents.minY = dxf.Value(kY1);
}

void TakeExtMax(DxfState& dxf) {
    if (!dxf.Has(Bit(kX1) | Bit(kY1)) || dxf.extentsFixed) return;
    dxf.extents.maxX = dxf.Value(kX1);
    dxf.extents.maxY = dxf.Value(kY1);
    dxf.sink.fit(dxf.sink, dxf.extents, DrawingSink::kWipe);
    dxf.extentsFixed = true;
}

void DrawPoint(DxfState& dxf) {
    if (!dxf.Has(Bit(kX1) | Bit(kY1))) return;
    dxf.primitive.SetPoint(dxf.Value(kX1), dxf.Value(kY1));
    dxf.Draw(0);
}

void DrawLine(DxfState& dxf) {
    if (!dxf.Has(Bit(kX1) | Bit(kY1) | Bit(kX2) | Bit(kY2))) return;
    dxf.primitive.SetLine(dxf.Value(kX1), dxf.Value(kY1), dxf.Value(kX2), dxf.Value(kY2));
    dxf.Draw(dxf.pen);
}

// Deliberate: the centre's x is not asked for; without it slot 0 holds what came before. Asked for, arcs and circles
// without one would vanish from pictures.
void DrawArc(DxfState& dxf, double start, double end) {
    dxf.primitive.SetArc(dxf.Value(kX1), dxf.Value(kY1), std::fabs(dxf.Value(kRadius)), start, end);
    dxf.Draw(dxf.pen);
}

void DrawPartArc(DxfState& dxf) {
    if (dxf.Has(Bit(kY1) | Bit(kRadius) | Bit(kStartAngle) | Bit(kEndAngle))) {
        DrawArc(dxf, dxf.Value(kStartAngle), dxf.Value(kEndAngle));
    }
}

void DrawCircle(DxfState& dxf) {
    if (dxf.Has(Bit(kY1) | Bit(kRadius))) DrawArc(dxf, 0, 360);
}

// The number of displayed characters: "%%" and a digit stand for one with the three bytes behind them, "%%" and
// anything else for one with that byte, every other byte for itself.
int CountTextCells(const char* text) {
    int cells = 0;
    for (std::size_t left = std::strlen(text); left > 0; ++cells) {
        std::size_t used = 1;
        if (left >= 3 && text[0] == '%' && text[1] == '%') used = text[2] >= '0' && text[2] <= '9' ? 5 : 3;
        if (used > left) used = left;
        text += used;
        left -= used;
    }
    return cells;
}

// Group 73 counts the base line and the bottom as two.
int VerticalJustification(int group73) { return group73 > 0 ? group73 - 1 : group73; }

void DrawTextEntity(DxfState& dxf) {
    if (!dxf.Has(Bit(kX1) | Bit(kY1) | Bit(kHeight) | kHasText)) return;
    TextPlacement placement;
    placement.x = dxf.Value(kX1);
    placement.y = dxf.Value(kY1);
    placement.height = dxf.Value(kHeight);
    const double cellWidth = placement.height * dxf.Value(kWidthFactor, 1.0);
    placement.length = CountTextCells(dxf.text) * cellWidth;
    placement.angleDegrees = dxf.Value(kRotation, 0);

    const bool asFrame = dxf.sink.textsAsFrames;
    if (!asFrame) {  // frames stand at the point
        placement.horizontal = TruncToInt32(dxf.Value(kHorizontal, 0));
        placement.vertical = VerticalJustification(TruncToInt32(dxf.Value(kVertical, 0)));
    }
    SetPlacedText(&dxf.primitive, &dxf.lastText, placement, cellWidth, 0, dxf.text, asFrame);
    dxf.Draw(kTextPen);
}

void CompleteItem(DxfState& dxf) {
    switch (dxf.pending) {
        case kExtMin: TakeExtMin(dxf); break;
        case kExtMax: TakeExtMax(dxf); break;
        default: break;
    }
    if (dxf.inEntities) {
        switch (dxf.pending) {
            case kEntityPoint: DrawPoint(dxf); break;
            case kEntityLine: DrawLine(dxf); break;
            case kEntityArc: DrawPartArc(dxf); break;
            case kEntityCircle: DrawCircle(dxf); break;
            case kEntityText: DrawTextEntity(dxf); break;
            default: break;
        }
    }
    dxf.pending = kNone;
    dxf.present = 0;
    dxf.pen = 0;
}

// ---- Lines

void TakeText(DxfState& dxf, ByteView line) {
    std::memset(dxf.text, 0, sizeof(dxf.text));
    std::memcpy(dxf.text, line.data, std::min(line.size, sizeof(dxf.text) - 1));
    dxf.present |= kHasText;
}

// Acts on a line that `code` stands for; false at the end of the drawing.
bool ActOnLine(DxfState& dxf, int code, ByteView line) {
    if (code >= kFirstSlot && code <= kLastSlot) {
        SlotValue& slot = dxf.slots[code - kFirstSlot];
        slot.line = line;
        slot.isConverted = false;
        dxf.present |= Bit(code - kFirstSlot);
        return true;
    }
    switch (code) {
        case kEndOfFile: return false;
        case kEndSection: return !dxf.inEntities;
        case kEntities: dxf.inEntities = true; break;
        case kTextString: TakeText(dxf, line); break;
        case kLineType: dxf.pen = PenOfLineType(line); break;
        case kGroup0:
        case kGroup9: CompleteItem(dxf); break;
        case kExtMin:
        case kExtMax:
        case kEntityPoint:
        case kEntityLine:
        case kEntityArc:
        case kEntityCircle:
        case kEntityText: dxf.pending = code; break;
        default: break;
    }
    return true;
}

bool TakeDxfLine(DxfState& dxf, ByteView line) {
    const Keyword* keyword = FindKeyword(line);
    const int code = keyword && keyword->immediate ? keyword->code : dxf.previous;
    dxf.previous = keyword ? keyword->code : int{kNone};
    return ActOnLine(dxf, code, line);
}

}  // namespace

bool DecodeDxf(ByteView file, Comment* comment, DrawingSink* sink) {
    if (!sink || !sink->fit(*sink, kDefaultSheet, DrawingSink::kWipe)) return false;
    DxfState dxf(*sink);
    LineWalk walk = {file.data, file.data + file.size};
    ByteView line;
    while (TakeLine(&walk, &line)) {
        AppendCommentLine(comment, line);
        if (line.size == 0 || line.data[0] == ';') continue;
        if (!sink->MayContinue()) return false;
        if (!TakeDxfLine(dxf, line)) break;
    }
    return true;  // a text that just ends has drawn what it holds
}
