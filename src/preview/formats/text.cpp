// Text drawings: a key at the start of each line, numbers behind it, one separator of any kind between two of them.
//
// Lengths are drawing units, angles degrees counter-clockwise. A number is read as far as its line reaches; a line that
// has fewer than its key needs draws nothing.
#include "preview/formats/text.h"

#include <algorithm>
#include <cstring>

#include "kit/numbers.h"
#include "kit/sjis.h"
#include "preview/drawing/text_placement.h"
#include "resources/resource.h"

namespace {

struct TextDrawing {
    Comment& comment;
    DrawingSink& sink;
    bool areaKnown = false;  // what comes before the drawing's area is never drawn
    LastText lastText = {};
    PreviewPrimitive primitive = {};

    void Draw(unsigned pen) { sink.draw(sink, primitive, pen); }
};

// ---- Numbers of a line

struct Scanner {
    const std::uint8_t* at;
    const std::uint8_t* end;
    bool ok;  // false from the first number that is missing
};

void SkipBlanks(Scanner* in) {
    while (in->at < in->end && *in->at == ' ') ++in->at;
}

double TakeDouble(Scanner* in) {
    std::size_t used = 0;
    const double value = ParseDecimal({in->at, static_cast<std::size_t>(in->end - in->at)}, &used);
    if (used == 0) in->ok = false;
    in->at += used;
    return value;
}

void SkipSeparator(Scanner* in) {
    if (in->at < in->end) ++in->at;
}

// A whole number that only has to be there: the layer, which is not used.
void SkipWhole(Scanner* in) {
    SkipBlanks(in);
    if (in->at < in->end && (*in->at == '-' || *in->at == '+')) ++in->at;
    const std::uint8_t* const digits = in->at;
    while (in->at < in->end && *in->at >= '0' && *in->at <= '9') ++in->at;
    if (in->at == digits) in->ok = false;
}

// Reads `count` numbers with a separator between any two of them.
void TakeDoubles(Scanner* in, double* out, std::size_t count) {
    for (std::size_t i = 0; i < count && in->ok; ++i) {
        if (i > 0) SkipSeparator(in);
        out[i] = TakeDouble(in);
    }
}

int HexDigit(std::uint8_t c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// The hexadecimal attribute word behind a separator; 0 when it is missing.
std::uint32_t TakeAttributes(Scanner* in) {
    SkipSeparator(in);
    SkipBlanks(in);
    if (in->end - in->at > 1 && in->at[0] == '0' && (in->at[1] | 0x20) == 'x') in->at += 2;
    std::uint32_t value = 0;
    for (; in->at < in->end && HexDigit(*in->at) >= 0; ++in->at) {
        value = value << 4 | static_cast<std::uint32_t>(HexDigit(*in->at));
    }
    return value;
}

// ---- Attribute words: pen in bits 0-3, end marks in bits 4-5 and 7-8

unsigned PenOf(std::uint32_t attributes) { return attributes & 15u; }

// The file's codes for arrowhead and dot are the renderer's the other way round.
std::uint32_t RendererMark(std::uint32_t code) { return code == 1 ? kMarkDot : code == 2 ? kMarkArrow : code; }

std::uint32_t EndMarksOf(std::uint32_t attributes) {
    return EndMarkWord(RendererMark((attributes >> 4) & 3), RendererMark((attributes >> 7) & 3));
}

// ---- Records. Each takes its line's values; what is incomplete is passed over.

void TakeTitle(TextDrawing& drawing, ByteView line) {
    constexpr std::size_t kTitleAt = 9;
    Comment& comment = drawing.comment;
    if (comment.room < 4) return;
    char label[kLabelSize];
    // Deliberate: one label for all three title lines, whichever key the line carries. With labels of their own the
    // comments beside all text drawings would change.
    CopyLabel(comment, IDS_DESIGNER, label);
    AppendComment(&comment, label);
    AppendComment(&comment, "\r\r\n");
    AppendComment(&comment, ByteView{line.data + kTitleAt, line.size - kTitleAt});
    AppendComment(&comment, "\r\r\n\r\r\n");
}

void TakeArea(TextDrawing& drawing, Scanner in) {
    double area[4];
    TakeDoubles(&in, area, 4);
    if (!in.ok) return;
    const WorldRect extents = {area[0], area[1], area[2], area[3]};
    drawing.areaKnown = drawing.sink.fit(drawing.sink, extents, DrawingSink::kKeep);
}

// The numbers of a geometry line, behind the whole number that leads it.
template <std::size_t N>
bool TakeGeometry(Scanner* in, double (&out)[N]) {
    SkipWhole(in);
    SkipSeparator(in);
    TakeDoubles(in, out, N);
    return in->ok;
}

void TakePoint(TextDrawing& drawing, Scanner in) {
    double point[2];
    if (!TakeGeometry(&in, point)) return;
    drawing.primitive.SetPoint(point[0], point[1]);
    drawing.Draw(0);
}

void TakeLineElement(TextDrawing& drawing, Scanner in) {
    double line[4];
    if (!TakeGeometry(&in, line)) return;
    const std::uint32_t attributes = TakeAttributes(&in);
    drawing.primitive.SetLine(line[0], line[1], line[2], line[3]);
    drawing.primitive.SetLineMarks(EndMarksOf(attributes));
    drawing.Draw(PenOf(attributes));
}

void TakeArc(TextDrawing& drawing, Scanner in) {
    enum { kX, kY, kRadius, kStart, kEnd, kCount };  // the order of an arc's numbers in the file
    double arc[kCount];
    if (!TakeGeometry(&in, arc)) return;
    const std::uint32_t attributes = TakeAttributes(&in);
    drawing.primitive.SetArc(arc[kX], arc[kY], arc[kRadius], arc[kStart], arc[kEnd]);
    drawing.primitive.SetArcMarks(EndMarksOf(attributes));
    drawing.Draw(PenOf(attributes));
}

// The text between the first apostrophe and the next one, at most 255 bytes; false without both.
bool FindText(const Scanner& in, char (&out)[256]) {
    const std::uint8_t* const first = std::find(in.at, in.end, '\'');
    if (first == in.end) return false;
    const std::uint8_t* const last = std::find(first + 1, in.end, '\'');
    if (last == in.end) return false;
    const std::size_t length = std::min(static_cast<std::size_t>(last - first - 1), sizeof(out) - 1);
    std::memcpy(out, first + 1, length);
    out[length] = '\0';
    return true;
}

void TakeText(TextDrawing& drawing, Scanner in) {
    enum { kX, kY, kWidth, kHeight, kSpacing, kAngle, kUnused, kCount };  // the order of a text's numbers in the file
    double numbers[kCount];
    char text[256];
    TakeDoubles(&in, numbers, kCount);
    if (!in.ok || !FindText(in, text)) return;
    const double cellWidth = numbers[kWidth] / 2;  // the file gives a full-width character's
    TextPlacement place;
    place.x = numbers[kX];
    place.y = numbers[kY];
    place.height = numbers[kHeight];
    place.angleDegrees = numbers[kAngle];
    place.length = (cellWidth + numbers[kSpacing]) * static_cast<double>(std::strlen(text));
    SetPlacedText(&drawing.primitive, &drawing.lastText, place, cellWidth, numbers[kSpacing], text,
                  drawing.sink.textsAsFrames);
    drawing.Draw(kTextPen);
}

// ---- Lines

constexpr char kTitleKeys[][10] = {"FIGRNAME ", "FIGRNUMB ", "DESIGNER "};
constexpr char kAreaKey[] = "AR ";

struct GeometryKey {
    char key[4];
    void (*take)(TextDrawing& drawing, Scanner in);
};
constexpr GeometryKey kGeometryKeys[] = {
    {"GP ", TakePoint}, {"GL ", TakeLineElement}, {"GA ", TakeArc}, {"GT ", TakeText}};

void TakeDrawingLine(TextDrawing& drawing, ByteView line) {
    const Scanner values = {line.data + std::min<std::size_t>(3, line.size), line.data + line.size, true};
    for (const auto& key : kTitleKeys) {
        if (MatchAt(line, 0, key)) return TakeTitle(drawing, line);
    }
    if (MatchAt(line, 0, kAreaKey)) return TakeArea(drawing, values);
    if (!drawing.areaKnown) return;
    for (const GeometryKey& row : kGeometryKeys) {
        if (MatchAt(line, 0, row.key)) return row.take(drawing, values);
    }
}

}  // namespace

bool DecodeTextDrawing(ByteView file, Comment* comment, DrawingSink* sink) {
    if (!sink || !sink->fit(*sink, kDefaultSheet, DrawingSink::kWipe)) return false;
    TextDrawing drawing = {*comment, *sink};
    LineWalk walk = {file.data, file.data + file.size};
    ByteView line;
    while (TakeLine(&walk, &line)) {
        if (line.size == 0 || line.data[0] == ';') continue;
        if (!sink->MayContinue()) return false;
        TakeDrawingLine(drawing, line);
    }
    return true;
}
