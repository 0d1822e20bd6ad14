// What the parts of the full DXF decoder share: the run, where an entity stands, and the calls that draw.
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "preview/formats/full_dxf_box.h"
#include "preview/formats/full_dxf_geometry.h"
#include "preview/formats/full_dxf_tables.h"
#include "preview/formats/full_dxf_unicode.h"
#include "preview/formats/sink.h"

// Work that a file may cost. It grows with the file; a unit is an element, a segment or a group that is read again.
//
// What stands in the drawing itself is drawn in any case, since that cannot grow faster than the file: without budget
// only inserts are left out, curves become coarse, and styles are no longer read.
struct DxfBudget {
    long long left = 0;
    bool Charge(long long units) {
        if (left < units) {
            left = 0;
            return false;
        }
        left -= units;
        return true;
    }
};

constexpr unsigned kSolidPen = 0;

// What an entity takes from its layer, or from the insert that its block stands in.
struct DxfLook {
    bool frozen = false, off = false;
    unsigned pen = kSolidPen;
};

// Where the entities of a block stand; the drawing itself is the outermost place.
struct DxfPlace {
    const DxfPlace* outer = nullptr;
    PlaneMap map = kFromAbove;
    std::uint32_t block = 0;  // where its entities begin: a block that holds itself is known by that
    int depth = 0;
    DxfLook layer;             // of the insert, for what stands on layer 0
    unsigned pen = kSolidPen;  // of the insert, for what is drawn "by block"
};

constexpr int kDeepestInsert = 32;

// Points on their way to the sink: lines, or the outlines of an area.
struct DxfPoints {
    std::vector<WorldPoint> points;
    std::vector<std::size_t> counts;  // of the outlines that are complete
    std::size_t begin = 0;            // of the open one
    bool area = false;
    bool skipped = false;  // `last` is not among the points, being too near to the one before
    WorldPoint last = {};
};

// A curve being gathered, in the drawing's plane. An entity may not hold more points than `kMostSplinePoints`.
constexpr std::size_t kMostSplinePoints = 1 << 17;
struct DxfSpline {
    int degree = 3;
    bool closed = false;
    std::vector<WorldPoint> controls, fits;
    std::vector<double> weights, knots;
    WorldPoint startTangent = {}, endTangent = {};
    void Clear();
};

// Where a line of a hatch pattern crosses the boundary.
struct DxfCrossing {
    long long line;
    double along;
};

// Text of several lines as it is being laid out: its characters, how they look, and the lines.
struct DxfParagraphs {
    struct Look {
        double height;       // times that of the text
        double widthFactor;  // times that of the style
        double obliqueDegrees;
        int align;  // -1: as the text says; else as UnicodeText::horizontal
        int level;  // of a stacked fraction, 1: its upper part, 2: its lower part, 3: that with a line above
        bool underlined, overlined, struckOut;
    };
    struct Line {
        std::size_t begin, end;
        double height;   // of its largest capital, as a Look's
        bool newColumn;  // begins one
        double x, y;     // of its base
    };
    std::string bytes;  // as the file holds it
    std::u16string characters;
    std::vector<std::uint16_t> lookOf;  // of each character
    std::vector<Look> looks;
    std::vector<Line> lines;
};

// What an entity draws, so that it need not be read again: the numbers of a simple one, as they stand in the drawing or
// in its block, or the place of any other one, which is.
struct DxfStep {
    enum What : std::uint8_t { kNothing, kPoint, kLine, kCircle, kPolyline, kSpline, kText, kEntity } what = kNothing;
    std::uint8_t pen = 0;        // kPenOfInsert, kPenOfInsertLayer or its own
    bool onInsertLayer = false;  // it is not drawn where that is hidden
    std::uint8_t detail = 0;     // an entity's row of the table of kinds; the form of a polyline, spline or text
    std::uint32_t begin = 0;     // of an entity's pairs; of a text's bytes
    std::uint32_t cost = 0;      // that a block is charged for it
    std::uint32_t count = 0;
    // point: x, y; line: x1, y1, x2, y2; circle: centre, radius, start, sweep; others are their own functions' matter
    const double* numbers = nullptr;
};
constexpr std::uint8_t kPenOfInsert = 16, kPenOfInsertLayer = 17;

// Items that stay where they are, in parts that double. What a part takes goes off the room, in bytes, that is left.
template <typename T>
struct DxfStore {
    std::vector<std::vector<T>> parts;  // none grows beyond its capacity

    // Copies so many items, one behind the other; null when there is no room.
    T* Add(const T* items, std::size_t count, std::size_t* room) {
        constexpr std::size_t kFirst = 16, kMost = 1 << 13;
        if (parts.empty() || parts.back().capacity() - parts.back().size() < count) {
            const std::size_t next = parts.empty() ? kFirst : std::min(parts.back().capacity() * 2, kMost);
            const std::size_t size = std::max(next, count);
            if (size > *room / sizeof(T)) return nullptr;
            *room -= size * sizeof(T);
            parts.emplace_back().reserve(size);
        }
        std::vector<T>& last = parts.back();
        last.insert(last.end(), items, items + count);
        return last.data() + last.size() - count;
    }
};

struct DxfSteps {
    DxfStore<DxfStep> steps;
    DxfStore<double> numbers;
    bool Add(DxfStep step, std::size_t* room);  // copies its numbers; false when there is no room
};

// A block that has been drawn. Most inserts lie where they cannot matter to the drawing's box, and all others draw the
// same steps again.
struct DxfBlock {
    std::uint32_t begin = 0;  // of its record
    std::size_t entities = 0;
    Vector3 base = {};
    bool external = false;                           // stands in another file, which is never opened
    bool isRead = false;                             // what follows is known
    bool isKept = false;                             // as steps; else there was no room
    std::size_t part = 0, first = 0, stepCount = 0;  // among all blocks' steps
    bool isMeasured = false;
    WorldRect box = {};  // in its own coordinates
    std::size_t elements = 0;
};

// Lines without end do not count when a drawing is measured, unless it has nothing else.
enum class DxfAside { kNone, kMet, kMeasured };

struct DxfDecoder {
    DxfForm form;
    DxfTables tables;
    DxfEncoding encoding;
    DrawingSink* sink = nullptr;
    BoxSink* box = nullptr;  // the sink while the drawing is measured
    DxfBudget budget;
    double pixel = 0;             // drawing units; 0 while the drawing is measured
    bool paperSpace = false;      // which of the two is drawn
    std::size_t entityCount = 0;  // of the drawing itself, met so far
    // What the first walk has met in the drawing itself, so that the second need not go through the file again, and
    // what stands in blocks. What was beyond the room is read again.
    DxfSteps steps, blockSteps;
    std::size_t stepRoom = 0;            // bytes that are left
    std::size_t behindSteps = kNowhere;  // where the entities begin that are not among the steps
    std::deque<DxfBlock> blocks;         // a block's row of the table holds its number here, from 1
    DxfAside aside = DxfAside::kNone;

    const DxfPlace* place = nullptr;
    PlaneMap map = kFromAbove;      // of the current entity's coordinates
    unsigned pen = kSolidPen;       // of the current entity
    bool attributesHidden = false;  // those that follow an insert that is hidden

    // Used again by entity after entity.
    DxfGroups groups;
    PreviewPrimitive element;
    DxfPoints path;
    DxfSpline spline;
    std::vector<double> numbers;      // of a step
    std::vector<WorldPoint> corners;  // of meshes
    std::vector<int> outlineFlags;    // of hatches
    std::vector<DxfCrossing> crossings;
    std::u16string text;
    DxfParagraphs paragraphs;
    struct {
        ByteView name;
        DxfLook look;
    } layers[64];  // met last, by length and end of their names

    bool MayContinue() const { return sink->MayContinue(); }
    bool IsMeasuring() const { return box != nullptr; }
    // Whether an entity is passed by as it is such a one.
    bool PassesAside() {
        if (!IsMeasuring() || aside == DxfAside::kMeasured) return false;
        aside = DxfAside::kMet;
        return true;
    }
};

// ---- What draws (full_dxf_strokes.cpp); all in the drawing's plane

void DrawDxfPoint(DxfDecoder& dxf, WorldPoint at);
void DrawDxfLine(DxfDecoder& dxf, WorldPoint from, WorldPoint to);
void DrawDxfConic(DxfDecoder& dxf, const Conic& conic, double start, double sweep);
void DrawDxfText(DxfDecoder& dxf, const UnicodeText& text);

// A line or an outline, point by point. Areas keep all their outlines until they are filled.
void BeginPath(DxfDecoder& dxf, bool area = false);
void PathTo(DxfDecoder& dxf, WorldPoint p);
void PathAlong(DxfDecoder& dxf, const ConicArc& arc);  // both ends included
void PathAlong(DxfDecoder& dxf, DxfSpline* spline);    // full_dxf_splines.cpp
void EndOutline(DxfDecoder& dxf);
void EndPath(DxfDecoder& dxf);

// Into how many segments a curve is cut so that it stays within half a pixel.
int SegmentsOfTurn(DxfDecoder& dxf, double radius, double sweep);

// ---- Entities (full_dxf_walk.cpp)

// Draws the entities from `begin` to the end of their section or block, and tells where that is.
std::size_t DrawDxfEntities(DxfDecoder& dxf, std::size_t begin);

// Draws the entities of the drawing itself once more, as dxf.steps has kept them.
void DrawDxfSteps(DxfDecoder& dxf);

// Draws a block's entities where dxf.place stands.
void DrawDxfBlock(DxfDecoder& dxf, DxfBlock* block);

// Forgets all steps and blocks, with so much room for new ones.
void ClearDxfSteps(DxfDecoder& dxf, std::size_t room);

// What the layer of the entity in dxf.groups says; layer 0 of a block is that of the insert.
DxfLook LookOfEntityLayer(DxfDecoder& dxf);

inline Vector3 PointOf(const DxfGroups& groups, int code) {
    return {groups.Number(code), groups.Number(code + 10), groups.Number(code + 20)};
}
inline Vector3 NormalOf(const DxfGroups& groups) {
    return {groups.Number(210), groups.Number(220), groups.Number(230, 1)};
}

// ---- Kinds (full_dxf_entities.cpp)

struct DxfKind {
    char name[24];
    // Draws the entity in dxf.groups; the reader stands behind it.
    void (*draw)(DxfDecoder& dxf, DxfReader* reader);
    enum class Space { kWorld, kObject } space;  // that its points are in
    // Instead, makes a step of it, with its numbers in dxf.numbers; false when it cannot be one. Then dxf.groups may be
    // lost. Null for a kind that is always drawn.
    bool (*take)(DxfDecoder& dxf, DxfReader* reader, DxfStep* step) = nullptr;
    bool isPart = false;  // of an insert: not counted
};
extern const DxfKind kDxfKinds[];
const DxfKind* FindDxfKind(ByteView name);  // null for one that is not in the table

void DrawDxfCircleArc(DxfDecoder& dxf, Vector3 centre, double radius, double start, double sweep);

// The kinds that have a file of their own.
bool TakeDxfPolyline(DxfDecoder& dxf, DxfReader* reader, DxfStep* step);
bool TakeDxfLwPolyline(DxfDecoder& dxf, DxfReader* reader, DxfStep* step);
bool TakeDxfSpline(DxfDecoder& dxf, DxfReader* reader, DxfStep* step);
bool TakeDxfText(DxfDecoder& dxf, DxfReader* reader, DxfStep* step);
void DrawDxfPolylineStep(DxfDecoder& dxf, const DxfStep& step);
void DrawDxfSplineStep(DxfDecoder& dxf, const DxfStep& step);
void DrawDxfTextStep(DxfDecoder& dxf, const DxfStep& step);
void DrawDxfPolyline(DxfDecoder& dxf, DxfReader* reader);
void DrawDxfLwPolyline(DxfDecoder& dxf, DxfReader* reader);
void DrawDxfSpline(DxfDecoder& dxf, DxfReader* reader);
void DrawDxfHatch(DxfDecoder& dxf, DxfReader* reader);
void DrawDxfMPolygon(DxfDecoder& dxf, DxfReader* reader);
void DrawDxfTextEntity(DxfDecoder& dxf, DxfReader* reader);
void DrawDxfAttribute(DxfDecoder& dxf, DxfReader* reader);
void DrawDxfAttributeDefinition(DxfDecoder& dxf, DxfReader* reader);
void DrawDxfMText(DxfDecoder& dxf, DxfReader* reader);
void DrawDxfInsert(DxfDecoder& dxf, DxfReader* reader);
void DrawDxfDimension(DxfDecoder& dxf, DxfReader* reader);
void DrawDxfTable(DxfDecoder& dxf, DxfReader* reader);
void DrawDxfLeader(DxfDecoder& dxf, DxfReader* reader);
void DrawDxfMultiLeader(DxfDecoder& dxf, DxfReader* reader);

// Draws a block where `map` maps its coordinates; `look` is that of the layer of what it stands for. The groups, the
// map and the pen are no longer those of the entity afterwards. (full_dxf_inserts.cpp)
void DrawDxfBlockAt(DxfDecoder& dxf, const DxfNames::Row& row, const PlaneMap& map, const DxfLook& look);
const DxfNames::Row* FindDxfBlockOf(DxfDecoder& dxf, std::uint32_t owner);  // null where there is none

// Arrowheads of the current entity, the last that is drawn of it: the block that `head` owns, or a triangle.
struct DxfArrow {
    Vector3 tip, from;  // where its line comes from
};
void DrawDxfArrows(DxfDecoder& dxf, const DxfArrow* arrows, int count, double size, std::uint32_t head);

// ---- Texts (full_dxf_texts.cpp, full_dxf_mtext.cpp)

// A text's frame in the current entity's coordinates: directions are units unless the text is stretched.
struct DxfTextPlace {
    Vector3 at, along, up;
};

struct DxfTextStyle {
    double widthFactor = 1;
    double height = 0;  // 0: each text has its own
    double obliqueDegrees = 0;
};
DxfTextStyle TextStyleOf(DxfDecoder& dxf, ByteView name);

// Fills what depends on the frame and maps it to the plane; false when the text would have no height.
bool PlaceText(const DxfDecoder& dxf, const DxfTextPlace& place, double height, double widthFactor, double fitWidth,
               double obliqueDegrees, UnicodeText* out);

// Columns that the lines of a text go through; a height of 0 has room for all.
constexpr int kMostTextColumns = 16;
struct DxfTextColumns {
    int count = 1;
    double gutter = 0;
    double heights[kMostTextColumns] = {};
    bool reversed = false;  // from right to left
};

// Lays out and draws dxf.paragraphs.bytes.
struct DxfParagraphPlace {
    DxfTextPlace place;
    double height = 1;   // of a capital
    double width = 0;    // that lines are wrapped at; 0: they are not
    double spacing = 1;  // times the usual distance of lines
    double widthFactor = 1, obliqueDegrees = 0;
    DxfTextColumns columns = {};
    int attachment = 1;  // the place stands 1 to 9: at the upper left to the lower right of the lines, row by row
};
void DrawParagraphs(DxfDecoder& dxf, const DxfParagraphPlace& place);
void AppendParagraphBytes(DxfDecoder& dxf, ByteView bytes);

// A unit along `a` where it has a length, else along the x axis; and upward from a text along it.
Vector3 AlongText(Vector3 a);
Vector3 UpFromText(Vector3 normal, Vector3 along);
