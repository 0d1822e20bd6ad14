// Native drawings: a header of one of two editions, then 64-byte records; all numbers little-endian.
//
// The record count is compared with the file's size once, before the first record is read. Links between records are
// 1-based numbers; each is compared with the count where it is followed, and no chain has more links than there are
// records.
#include "preview/native_reader.h"

#include <cstring>

#include "kit/full_width.h"
#include "kit/sjis.h"
#include "preview/element_record.h"
#include "preview/text_placement.h"
#include "preview/title_block.h"

namespace {

struct Edition {
    const char* signature;
    std::size_t headerSize;
    std::size_t layerCount;
};
constexpr Edition kEditions[] = {{"CAD ORVIL QA V4.0", 1024, 16}, {"LumosBase", 12704, 256}};
constexpr std::size_t kSignatureAt = 4;
constexpr std::size_t kMinFileSize = 1024;
constexpr std::size_t kRecordCountAt = 242, kCurrentLayerAt = 248, kLayersAt = 250;

#pragma pack(push, 1)
struct SheetFields {
    double maxX, maxY, minX, minY;
    double originX, originY;  // only with "LMOS" at the start of the file
};
#pragma pack(pop)
constexpr std::size_t kSheetAt = 32;

constexpr std::size_t kMaxLayers = 256;
constexpr std::uint16_t kHiddenStatus = 0x0001 | 0x4000 | 0x8000;
constexpr std::uint16_t kDeletedStatus = 0x0001 | 0x4000;  // of a continuation

constexpr std::size_t kFirstTextAt = 48, kFirstTextSize = 14;
constexpr std::size_t kMoreTextAt = 16, kMoreTextSize = 46;
constexpr std::size_t kLinkAt = 62;
constexpr std::uint16_t kLastLink = 65535;
constexpr std::size_t kFillerAt = 58, kFillerSize = 6;

struct NativeDrawing {
    std::uint8_t* records;
    unsigned count;
    std::uint16_t currentLayer;
    std::uint16_t layers[kMaxLayers];  // not 0: shown
    double shiftX, shiftY;             // added to positions
    WorldRect extents;
    LastText lastText;

    ByteView Records() const { return {records, count * kRecordSize}; }
};

const Edition* FindEdition(ByteView file) {
    for (const Edition& edition : kEditions) {
        if (MatchAt(file, kSignatureAt, edition.signature, std::strlen(edition.signature))) return &edition;
    }
    return nullptr;
}

void ReadExtents(ByteView file, NativeDrawing* drawing) {
    SheetFields sheet = {};
    ReadAt(file, kSheetAt, &sheet);
    if (MatchAt(file, 0, "LMOS")) {
        drawing->shiftX = -sheet.originX;
        drawing->shiftY = -sheet.originY;
        drawing->extents = {-sheet.originX, -sheet.originY, sheet.maxX - sheet.originX, sheet.maxY - sheet.originY};
    } else {
        drawing->extents = {sheet.minX, sheet.minY, sheet.maxX, sheet.maxY};
    }
}

// False when the file is no native drawing or announces more records than it holds.
bool ReadHeader(const LoadedFile& loaded, NativeDrawing* drawing) {
    const ByteView file = loaded.Bytes();
    const Edition* edition = file.size < kMinFileSize ? nullptr : FindEdition(file);
    if (!edition || file.size < edition->headerSize) return false;
    std::uint16_t count = 0;
    ReadAt(file, kRecordCountAt, &count);
    if (count > (file.size - edition->headerSize) / kRecordSize) return false;
    drawing->records = loaded.data + edition->headerSize;
    drawing->count = count;
    ReadAt(file, kCurrentLayerAt, &drawing->currentLayer);
    std::memcpy(drawing->layers, file.data + kLayersAt, edition->layerCount * sizeof(drawing->layers[0]));
    ReadExtents(file, drawing);
    return true;
}

// ---- Records

// Filler patterns stand for zeros.
void NormalizeFillers(std::uint8_t* record) {
    if (record[0] == 0xA5 && record[1] == 0x25) std::memset(record, 0, 2);
    std::uint8_t* const tail = record + kFillerAt;
    for (std::size_t i = 0; i < kFillerSize; ++i) {
        if (tail[i] != 0xA5) return;
    }
    std::memset(tail, 0, kFillerSize);
}

std::uint32_t EndMarksOf(std::uint16_t attributes) {
    return EndMarkWord((attributes >> 8) & 3u, (attributes >> 11) & 3u);
}

void DrawPoint(DrawingRun& run, const NativeDrawing& drawing, const PointFields& point) {
    run.canvas.primitive.SetPoint(point.x + drawing.shiftX, point.y + drawing.shiftY);
    DrawOnCanvas(&run.canvas);
}

void DrawLine(DrawingRun& run, const NativeDrawing& drawing, const LineFields& line) {
    run.canvas.primitive.SetLine(line.x1 + drawing.shiftX, line.y1 + drawing.shiftY, line.x2 + drawing.shiftX,
                                 line.y2 + drawing.shiftY);
    run.canvas.primitive.e.SetEndMarks(EndMarksOf(line.attributes));
    SelectCanvasPen(&run.canvas, PenOf(line.attributes));
    DrawOnCanvas(&run.canvas);
}

void DrawArc(DrawingRun& run, const NativeDrawing& drawing, const ArcFields& arc) {
    run.canvas.primitive.SetArc(arc.x + drawing.shiftX, arc.y + drawing.shiftY, arc.radius, arc.startDegrees,
                                arc.endDegrees);
    run.canvas.primitive.f.SetEndMarks(EndMarksOf(arc.attributes));
    SelectCanvasPen(&run.canvas, PenOf(arc.attributes));
    DrawOnCanvas(&run.canvas);
}

// Deliberate: counted as full-width characters, whatever the text holds.
double CharacterCount(std::size_t length) {
    const std::size_t pairs = length / 2;
    return static_cast<double>(pairs);
}

void DrawTextElement(DrawingRun& run, NativeDrawing* drawing, unsigned number, const TextFields& fields) {
    char text[256];
    const std::size_t length = GatherRecordText(number, drawing->count, drawing->Records(), text, sizeof(text));
    TextPlacement place = PlacementOf(fields);
    place.x += drawing->shiftX;
    place.y += drawing->shiftY;
    const double cellWidth = fields.width / 2.0;
    place.length = (cellWidth + fields.spacing) * CharacterCount(length);
    if (run.renderMode & kRenderTextFrames) {
        SetPlacedFrame(&run.canvas.primitive, &drawing->lastText, place);
    } else {
        SetPlacedText(&run.canvas.primitive, &drawing->lastText, place, cellWidth, fields.spacing, text);
    }
    SelectCanvasPen(&run.canvas, kTextPen);
    DrawOnCanvas(&run.canvas);
}

bool IsShown(const NativeDrawing& drawing, const RecordHead& head) {
    return !(head.status & kHiddenStatus) && (head.layer == drawing.currentLayer || drawing.layers[head.layer] != 0);
}

void DrawRecord(DrawingRun& run, NativeDrawing* drawing, unsigned number) {
    const std::size_t offset = (number - 1) * kRecordSize;
    NormalizeFillers(drawing->records + offset);
    const ByteView record = {drawing->records + offset, kRecordSize};
    RecordHead head = {};
    ReadAt(record, 0, &head);
    if (!IsShown(*drawing, head)) return;
    switch (KindOf(head)) {
        case kPointElement: DrawPoint(run, *drawing, FieldsOf<PointFields>(record)); break;
        case kLineElement: DrawLine(run, *drawing, FieldsOf<LineFields>(record)); break;
        case kArcElement: DrawArc(run, *drawing, FieldsOf<ArcFields>(record)); break;
        case kTextElement: DrawTextElement(run, drawing, number, FieldsOf<TextFields>(record)); break;
        default: break;
    }
}

bool DecodeNative(DrawingRun& run) {
    NativeDrawing drawing = {};
    if (!ReadHeader(run.file, &drawing)) return false;
    AppendTitleBlock(&run.comment, run.file.Bytes(), kNativeTitle);
    if (!run.target || !OpenCanvas(&run.canvas, run.renderMode, *run.target)) return false;
    FitCanvas(&run.canvas, drawing.extents);
    for (unsigned number = 1; number <= drawing.count; ++number) {
        if (!MayContinue()) return false;
        DrawRecord(run, &drawing, number);
    }
    return true;
}

// ---- Texts

// Copies the text of a record and of its continuations to their fixed places; returns the room that is left.
std::size_t CopyChunks(unsigned number, unsigned count, ByteView records, char* buffer, std::size_t size) {
    const std::uint8_t* record = records.data + (number - 1) * kRecordSize;
    std::memcpy(buffer, record + kFirstTextAt, kFirstTextSize);
    std::size_t room = size - kFirstTextSize;
    char* end = buffer + kFirstTextSize;
    for (unsigned hops = 0; hops < count && room > kMoreTextSize; ++hops) {
        std::uint16_t link = 0, status = 0;
        std::memcpy(&link, record + kLinkAt, sizeof(link));
        if (link == 0 || link == kLastLink || link > count) break;
        record = records.data + (link - 1) * kRecordSize;
        std::memcpy(&status, record, sizeof(status));
        if (status & kDeletedStatus) continue;  // passed over, its link counts all the same
        std::memcpy(end, record + kMoreTextAt, kMoreTextSize);
        end += kMoreTextSize;
        room -= kMoreTextSize;
    }
    return room;
}

std::size_t CharacterSize(const char* at) { return IsLeadByte(static_cast<std::uint8_t>(at[0])) && at[1] ? 2 : 1; }

// Removes the marks of the drawing's own text layout. Deliberate: the scan moves on past the character that slid into
// the gap, so of two adjacent marks the second stays.
void RemoveMarks(char* text) {
    while (*text) {
        if (std::strchr("|_[]", *text)) std::memmove(text, text + 1, std::strlen(text));
        if (*text) text += CharacterSize(text);
    }
}

// Widens single-byte characters one by one while the longer text still fits.
std::size_t Widen(char* text, std::size_t room) {
    std::size_t length = std::strlen(text);
    for (std::size_t at = 0; at < length && length + 1 < room; at += 2) {
        if (CharacterSize(text + at) == 2) continue;
        const std::uint16_t wide = ToFullWidth(static_cast<std::uint8_t>(text[at]));
        std::memmove(text + at + 2, text + at + 1, length - at);  // the ending zero too
        text[at] = static_cast<char>(wide >> 8);
        text[at + 1] = static_cast<char>(wide & 0xFF);
        ++length;
    }
    return length;
}

}  // namespace

std::size_t GatherRecordText(unsigned number, unsigned count, ByteView records, char* buffer, std::size_t size) {
    std::memset(buffer, 0, size);
    if (size <= kFirstTextSize || number == 0 || number > count) return 0;
    const std::size_t room = CopyChunks(number, count, records, buffer, size);
    buffer[size - 1] = '\0';
    RemoveMarks(buffer);
    return Widen(buffer, room);
}

HBITMAP ReadNativePreview(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                          DWORD commentSize) {
    return RunDrawingReader(renderMode, fileName, target, commentOut, commentSize, DecodeNative);
}
