#include "generate/drawings.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "generate/files.h"

// An A0 sheet in millimetres.
static constexpr double kSheetWidth = 1189, kSheetHeight = 841;

// ---- Numbers

std::uint32_t Random::Next() {  // splitmix64, its upper half
    state += 0x9E3779B97F4A7C15;
    std::uint64_t z = state;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
    return static_cast<std::uint32_t>((z ^ (z >> 31)) >> 32);
}

std::uint32_t Random::Below(std::uint32_t bound) {
    return static_cast<std::uint32_t>((static_cast<std::uint64_t>(Next()) * bound) >> 32);
}

double Random::Between(double low, double high) { return low + (high - low) * (Next() / 4294967296.0); }

template <typename T, std::size_t N>
static const T& Pick(Random* random, const T (&choices)[N]) {
    return choices[random->Below(N)];
}

// As drawing programs write a number: no zeros at the end, but always a digit behind the point.
static std::string TextOf(double number, int digits = 6) {
    char text[64];
    int places = digits;
    for (double whole = std::max(number, -number); whole >= 1 && digits > 6; whole /= 10) --places;
    char* end = std::to_chars(text, text + sizeof(text), number, std::chars_format::fixed, places).ptr;
    while (end[-1] == '0' && end[-2] != '.') --end;
    return {text, end};
}

// ---- Elements

namespace {

struct LineType {
    const char* name;
    unsigned pen;
};

enum ElementKind { kPoint, kLine, kArc, kCircle, kText };

struct Element {
    ElementKind kind;
    double x, y, toX, toY;            // the point, the ends, the centre, where a text is inserted
    double size;                      // radius or text height
    double startDegrees, endDegrees;  // the first one is a text's angle
    double widthFactor;
    unsigned horizontal, vertical;  // a text's justification
    const char* text;
    int digits;                // of a number, as it was typed or computed
    const LineType* lineType;  // null: the layer's
};

struct ElementStream {
    Random random;
    Mix mix;
    unsigned count = 0;
    double penX = 0, penY = 0;                // where the contour that is being drawn has come to
    unsigned contourLeft = 0, textsLeft = 0;  // lines of it; texts of the same size and angle
    Element lastText = {kText, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, "", 6, nullptr};
};

}  // namespace

static constexpr LineType kLineTypes[] = {{"CONTINUOUS", 1}, {"BYLAYER", 0}, {"DASHED", 2}, {"CENTER", 3},
                                          {"HIDDEN", 6},     {"PHANTOM", 4}, {"DOT", 5}};

// What was typed has few digits, what was computed all that a double holds.
static Element AnyElement(Random* random, ElementKind kind) {
    static constexpr int kDigits[] = {1, 1, 4, 6, 16, 16, 16, 17};
    Element element = {};
    element.kind = kind;
    element.digits = Pick(random, kDigits);
    element.x = random->Between(0, kSheetWidth);
    element.y = random->Between(0, kSheetHeight);
    return element;
}

static Element NextLine(ElementStream* stream) {
    Random* random = &stream->random;
    Element line = AnyElement(random, kLine);
    if (stream->contourLeft == 0) {
        stream->contourLeft = 1 + random->Below(12);
        stream->penX = line.x;
        stream->penY = line.y;
    }
    --stream->contourLeft;
    // A step of a contour: mostly short against the sheet, a few long ones. It may leave the sheet by a little.
    const auto step = [&](double from, double limit) {
        const double reach = 0.5 * (1 << random->Below(8));
        return std::clamp(from + random->Between(-reach, reach), -10.0, limit + 10);
    };
    line.x = stream->penX, line.y = stream->penY;
    const std::uint32_t direction = random->Below(4);  // along an axis, or aslant
    if (direction != 0) stream->penX = step(line.x, kSheetWidth);
    if (direction != 1) stream->penY = step(line.y, kSheetHeight);
    line.toX = stream->penX, line.toY = stream->penY;
    return line;
}

static Element NextText(ElementStream* stream) {
    static constexpr double kHeights[] = {5, 7, 10, 14, 20}, kAngles[] = {0, 0, 0, 90, 90, 45, 330};
    static constexpr const char* kTexts[] = {"M8x1.25",    "R12.5", "%%c25 H7", "SECTION A-A",
                                             "SCALE 1:50", "2000",  "45%%d"};
    Random* random = &stream->random;
    Element* text = &stream->lastText;
    if (stream->mix == Mix::kTexts) {
        text->size = stream->count % 2 ? 14 : 20;
        text->startDegrees = stream->count / 2 % 2 ? 90 : 0;
    } else if (stream->textsLeft > 0) {  // texts of one size stand together: a table, a chain of dimensions
        --stream->textsLeft;
    } else {
        stream->textsLeft = random->Below(8);
        text->size = Pick(random, kHeights);
        text->widthFactor = random->Below(4) == 0 ? random->Below(2) ? 0.8 : 0.7 : 1;
        text->startDegrees = Pick(random, kAngles);
        text->horizontal = random->Below(3) == 0 ? 1 + random->Below(2) : 0;
        text->vertical = text->horizontal ? random->Below(4) : 0;
    }
    text->x = random->Between(0, kSheetWidth);
    text->y = random->Between(0, kSheetHeight);
    text->text = Pick(random, kTexts);
    return *text;
}

static Element NextRound(Random* random, ElementKind kind, double largest) {
    Element round = AnyElement(random, kind);
    round.size = random->Between(largest / 40, largest);
    round.startDegrees = random->Between(0, 359);
    round.endDegrees = random->Between(0, 359);
    return round;
}

static Element NextElement(ElementStream* stream) {
    Random* random = &stream->random;
    ++stream->count;
    if (stream->mix == Mix::kCircles) return NextRound(random, kCircle, 800);
    if (stream->mix == Mix::kTexts) return NextText(stream);
    const std::uint32_t share = random->Below(100);
    const double largest = 1 << random->Below(6);
    Element element = share < 82   ? NextLine(stream)
                      : share < 90 ? NextRound(random, kArc, largest)
                      : share < 94 ? NextRound(random, kCircle, largest)
                      : share < 97 ? NextText(stream)
                                   : AnyElement(random, kPoint);
    element.lineType = random->Below(8) == 0 ? &Pick(random, kLineTypes) : nullptr;
    return element;
}

// ---- The formats: an element, and a whole file of them

static std::string Pair(int code, double value, int digits = 6) {
    return "|" + std::to_string(code) + " " + TextOf(value, digits);
}

static std::string Point(int code, double x, double y, int digits = 6) {
    return Pair(code, x, digits) + Pair(code + 10, y, digits) + "|30 0.0";
}

static std::string DxfElement(ElementStream* stream) {
    static constexpr const char* kNames[] = {"POINT", "LINE", "ARC", "CIRCLE", "TEXT"};
    static constexpr const char* kLayers[] = {"0", "WALLS", "DIMENSIONS", "AXES", "HATCH-2", "TITLE"};
    const Element e = NextElement(stream);
    char head[64];
    std::snprintf(head, sizeof(head), "0 %s|5 %X|8 %s", kNames[e.kind], stream->count + 0x100,
                  kLayers[stream->count / 7 % std::size(kLayers)]);
    std::string pairs = head;
    if (e.lineType) pairs += std::string("|6 ") + e.lineType->name;
    if (stream->count % 3 == 0) pairs += "|62      " + std::to_string(stream->count / 3 % 7 + 1);
    pairs += Point(10, e.x, e.y, e.digits);
    if (e.kind == kLine) pairs += Point(11, e.toX, e.toY, e.digits);
    if (e.size > 0) pairs += Pair(40, e.size, e.digits);
    if (e.kind == kArc) pairs += Pair(50, e.startDegrees, e.digits) + Pair(51, e.endDegrees, e.digits);
    if (e.kind == kText) {
        pairs += std::string("|1 ") + e.text;
        if (e.startDegrees != 0) pairs += Pair(50, e.startDegrees);
        if (e.widthFactor != 1) pairs += Pair(41, e.widthFactor);
        if (e.horizontal) {
            pairs += "|72      " + std::to_string(e.horizontal) + Point(11, e.x, e.y) + "|73      " +
                     std::to_string(e.vertical);
        }
    }
    return Dxf(pairs);
}

static std::string WholeDxf(const std::string& elements) {
    const std::string size = TextOf(kSheetWidth) + "|20 " + TextOf(kSheetHeight);
    return Dxf("0 SECTION|2 HEADER|9 $EXTMIN|10 0.0|20 0.0|30 0.0|9 $EXTMAX|10 " + size +
               "|30 0.0|0 ENDSEC|0 SECTION|2 ENTITIES") +
           elements + Dxf("0 ENDSEC|0 EOF");
}

static float FullWidthOf(const Element& text) { return static_cast<float>(2 * text.size * text.widthFactor); }

template <bool kIsNative>
static std::string Record(ElementStream* stream) {
    const Element e = NextElement(stream);
    const unsigned attributes = e.lineType ? e.lineType->pen << 4 : 0;
    switch (e.kind) {
        case kPoint: return PointRecord(e.x, e.y);
        case kLine: return LineRecord(e.x, e.y, e.toX, e.toY, attributes);
        case kArc: return ArcRecord(e.x, e.y, e.size, e.startDegrees, e.endDegrees, attributes);
        case kCircle: return ArcRecord(e.x, e.y, e.size, 0, 360, attributes);
        case kText: break;
    }
    const TextLook look = {
        static_cast<float>(e.x),           static_cast<float>(e.y), static_cast<float>(e.size), FullWidthOf(e), 0,
        static_cast<float>(e.startDegrees)};
    const unsigned placement = Justified(e.horizontal, std::max(e.vertical, 1u) - 1);
    if (kIsNative) return TextRecord(look, placement, e.text);
    return CountedTextRecord(look, placement, static_cast<unsigned>(std::strlen(e.text)));
}

static std::string WholeNative(const std::string& records) {
    return NativeFile(kEditionA, kSheetWidth, kSheetHeight, records);
}

static std::string WholeBackup(const std::string& records) { return BackupFile(kSheetWidth, kSheetHeight, records); }

static std::string TextElement(ElementStream* stream) {
    static constexpr const char* kKeys[] = {"GP ", "GL ", "GA ", "GA ", "GT "};
    const Element e = NextElement(stream);
    std::string line = kKeys[e.kind];
    const auto add = [&](std::initializer_list<double> values) {
        for (const double value : values) line += TextOf(value, e.digits) + ",";
    };
    if (e.kind != kText) line += std::to_string(stream->count / 7 % 16) + ",";
    add({e.x, e.y});
    switch (e.kind) {
        case kPoint: break;
        case kLine: add({e.toX, e.toY}); break;
        case kCircle: add({e.size, 0, 360}); break;
        case kArc: add({e.size, e.startDegrees, e.endDegrees}); break;
        case kText: add({FullWidthOf(e), e.size, 0, e.startDegrees, 0}); break;
    }
    line += std::to_string(e.lineType ? e.lineType->pen : 0);
    if (e.kind == kText) line += std::string(",'") + e.text + "'";
    return line + "\r\n";
}

static std::string WholeText(const std::string& elements) {
    return "; generated\r\nAR 0.0,0.0," + TextOf(kSheetWidth) + "," + TextOf(kSheetHeight) + "\r\n" + elements;
}

// ---- What only the full DXF reader knows

static std::string FullDxfElement(ElementStream* stream) {
    Random& random = stream->random;
    const auto below = [&](double bound) { return random.Between(0, bound); };
    const std::string layer = "|8 LAYER" + std::to_string(random.Below(30));
    double x = below(1000), y = below(1000);
    std::string pairs;
    switch (random.Below(6)) {
        case 0:
            pairs = "0 LWPOLYLINE" + layer;
            for (int i = 0; i < 20; ++i) {
                x += below(3), y += below(2) - 1;
                pairs += Pair(10, x) + Pair(20, y) + (i % 5 == 0 ? "|42 0.3" : "");
            }
            break;
        case 1:
            pairs = "0 SPLINE" + layer + "|71 3";
            for (int i = 0; i < 14; ++i) pairs += Pair(40, std::clamp(i - 3, 0, 7));
            for (int i = 0; i < 10; ++i) {
                x += below(4), y += below(6) - 3;
                pairs += Point(10, x, y);
            }
            break;
        case 2: pairs = "0 INSERT" + layer + "|2 BLOCK" + Point(10, x, y) + Pair(50, below(360)); break;
        case 3:
            pairs = "0 TEXT" + layer + Point(10, x, y) + "|40 2.5|1 Text " + std::to_string(random.Below(100000));
            break;
        default:
            pairs = "0 LINE" + layer + Point(10, x, y);
            x += below(20), y += below(20);
            pairs += Point(11, x, y);
            break;
    }
    return Dxf(pairs);
}

static std::string WholeFullDxf(const std::string& elements) {
    std::string layers, lines;
    for (int i = 0; i < 30; ++i) layers += "|0 LAYER|2 LAYER" + std::to_string(i);
    for (int i = 0; i < 10; ++i) lines += "|0 LINE|8 LAYER3" + Point(10, i, i % 3) + Point(11, 2 * i, 9);
    return Dxf("0 SECTION|2 TABLES" + layers + "|0 ENDSEC|0 SECTION|2 BLOCKS|0 BLOCK|2 BLOCK" + lines +
               "|0 ENDBLK|0 ENDSEC|0 SECTION|2 ENTITIES") +
           elements + Dxf("0 ENDSEC|0 EOF");
}

std::string MakeDrawing(const DrawingPlan& plan) {
    static constexpr struct {
        std::string (*next)(ElementStream*);
        std::string (*whole)(const std::string& elements);
    } kFormats[] = {
        // in the order of DrawingFormat
        {DxfElement, WholeDxf},   {Record<true>, WholeNative},    {Record<false>, WholeBackup},
        {TextElement, WholeText}, {FullDxfElement, WholeFullDxf},
    };
    const auto& format = kFormats[static_cast<int>(plan.format)];
    ElementStream stream = {{plan.seed}, plan.mix};
    std::string elements;
    for (std::size_t i = 0; i < plan.count && elements.size() < plan.size; ++i) elements += format.next(&stream);
    return format.whole(elements);
}
