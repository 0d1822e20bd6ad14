// Native drawings: a header of one of two editions, then 64-byte records; all numbers little-endian.
//
// The record count is compared with the file's size once, before the first record is read. Links between records are
// 1-based numbers; each is compared with the count where it is followed, and no chain has more links than there are
// records.
#include "preview/formats/native.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "kit/full_width.h"
#include "kit/sjis.h"
#include "preview/formats/element_record.h"
#include "preview/formats/title_block.h"

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
    ByteView records;
    ChainSkips skips;
    std::uint16_t currentLayer;
    std::uint16_t layers[kMaxLayers];  // not 0: shown
    WorldPoint shift;                  // added to positions
    WorldRect extents;
    LastText lastText;
    PreviewPrimitive primitive;

    unsigned Count() const { return static_cast<unsigned>(records.size / kRecordSize); }
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
        drawing->shift = {-sheet.originX, -sheet.originY};
        drawing->extents = {-sheet.originX, -sheet.originY, sheet.maxX - sheet.originX, sheet.maxY - sheet.originY};
    } else {
        drawing->extents = {sheet.minX, sheet.minY, sheet.maxX, sheet.maxY};
    }
}

// False when the file is no native drawing or announces more records than it holds.
bool ReadHeader(ByteView file, NativeDrawing* drawing) {
    const Edition* edition = file.size < kMinFileSize ? nullptr : FindEdition(file);
    if (!edition || file.size < edition->headerSize) return false;
    std::uint16_t count = 0;
    ReadAt(file, kRecordCountAt, &count);
    if (count > (file.size - edition->headerSize) / kRecordSize) return false;
    drawing->records = {file.data + edition->headerSize, count * kRecordSize};
    ReadAt(file, kCurrentLayerAt, &drawing->currentLayer);
    std::memcpy(drawing->layers, file.data + kLayersAt, edition->layerCount * sizeof(drawing->layers[0]));
    ReadExtents(file, drawing);
    return true;
}

// ---- Records

struct Record {
    std::uint8_t bytes[kRecordSize];
    ByteView View() const { return {bytes, kRecordSize}; }
    std::uint16_t Word(std::size_t at) const { return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8); }
};

bool HasStatusFiller(const std::uint8_t* record) { return record[0] == 0xA5 && record[1] == 0x25; }
bool HasTailFiller(const std::uint8_t* record) {
    const std::uint8_t* const tail = record + kFillerAt;
    return std::all_of(tail, tail + kFillerSize, [](std::uint8_t byte) { return byte == 0xA5; });
}

// Record `number` as it is seen while record `current` is drawn. Filler patterns stand for zeros, but only in records
// up to the current one: a text that looks ahead reads the patterns as they are.
Record RecordAt(ByteView records, unsigned number, unsigned current) {
    Record record;
    std::memcpy(record.bytes, records.data + (number - 1) * kRecordSize, kRecordSize);
    if (number > current) return record;
    if (HasStatusFiller(record.bytes)) std::memset(record.bytes, 0, 2);
    if (HasTailFiller(record.bytes)) std::memset(record.bytes + kFillerAt, 0, kFillerSize);
    return record;
}

std::uint32_t EndMarksOf(std::uint16_t attributes) {
    return EndMarkWord((attributes >> 8) & 3u, (attributes >> 11) & 3u);
}

// Deliberate: counted as full-width characters, whatever the text holds. Counted as they are, texts that could not be
// widened whole would have another length, and those that are centred or right-justified would move.
double CharacterCount(std::size_t length) {
    const std::size_t pairs = length / 2;
    return static_cast<double>(pairs);
}

void SetTextElement(NativeDrawing* drawing, unsigned number, const TextFields& fields, bool asFrame) {
    char text[256];
    const std::size_t length =
        GatherRecordText(number, drawing->Count(), drawing->records, text, sizeof(text), &drawing->skips);
    TextPlacement place = PlacementOf(fields, drawing->shift);
    const double cellWidth = fields.width / 2.0;
    place.length = (cellWidth + fields.spacing) * CharacterCount(length);
    SetPlacedText(&drawing->primitive, &drawing->lastText, place, cellWidth, fields.spacing, text, asFrame);
}

bool IsShown(const NativeDrawing& drawing, const RecordHead& head) {
    return !(head.status & kHiddenStatus) && (head.layer == drawing.currentLayer || drawing.layers[head.layer] != 0);
}

void DrawRecord(DrawingSink& sink, NativeDrawing* drawing, unsigned number) {
    const Record record = RecordAt(drawing->records, number, number);
    const auto head = FieldsAt<RecordHead>(record.View(), 0);
    if (!IsShown(*drawing, head)) return;
    PreviewPrimitive& primitive = drawing->primitive;
    std::uint16_t attributes = 0;
    if (SetShape(record.View(), drawing->shift, &primitive, &attributes)) {
        if (primitive.kind == kLine) primitive.SetLineMarks(EndMarksOf(attributes));
        if (primitive.kind == kArc) primitive.SetArcMarks(EndMarksOf(attributes));
        sink.draw(sink, primitive, PenOf(attributes));
    } else if (KindOf(head) == kTextElement) {
        SetTextElement(drawing, number, FieldsAt<TextFields>(record.View()), sink.textsAsFrames);
        sink.draw(sink, primitive, kTextPen);
    }
}

// ---- Texts

bool EndsChain(unsigned link, unsigned count) { return link == 0 || link == kLastLink || link > count; }

// A chain may pass over every record of the file, and every text may begin such a chain. So that this stays cheap,
// deleted continuations are passed over kSkipLength at a time where there are that many.
constexpr unsigned kSkipLength = 256;

ChainSkips MakeSkips(ByteView records, unsigned count) {
    ChainSkips skips(count + 1);
    for (unsigned number = 1; number <= count; ++number) {
        const Record record = RecordAt(records, number, 0);
        const unsigned link = record.Word(kLinkAt);
        if (!(record.Word(0) & kDeletedStatus) || EndsChain(link, count)) continue;
        const bool hasFiller = HasStatusFiller(record.bytes) || HasTailFiller(record.bytes);
        skips[number] = {link, hasFiller ? number : ~0u};
    }
    for (unsigned length = 1; length < kSkipLength; length *= 2) {
        const ChainSkips half = skips;
        for (ChainSkip& skip : skips) skip = {half[skip.to].to, std::min(skip.until, half[skip.to].until)};
    }
    return skips;
}

// Copies the text of a record and of its continuations to their fixed places; returns the room that is left.
std::size_t CopyChunks(unsigned number, unsigned count, ByteView records, char* buffer, std::size_t size,
                       ChainSkips* skips) {
    Record record = RecordAt(records, number, number);
    std::memcpy(buffer, record.bytes + kFirstTextAt, kFirstTextSize);
    std::size_t room = size - kFirstTextSize;
    char* end = buffer + kFirstTextSize;
    unsigned deleted = 0;
    for (unsigned hops = 0; hops < count && room > kMoreTextSize; ++hops) {
        unsigned link = record.Word(kLinkAt);
        if (EndsChain(link, count)) break;
        while (!skips->empty() && (*skips)[link].until > number && count - hops > kSkipLength) {
            link = (*skips)[link].to;
            hops += kSkipLength;
        }
        record = RecordAt(records, link, number);
        if (record.Word(0) & kDeletedStatus) {  // passed over, its link counts all the same
            if (++deleted == kSkipLength && skips->empty()) *skips = MakeSkips(records, count);
            continue;
        }
        std::memcpy(end, record.bytes + kMoreTextAt, kMoreTextSize);
        end += kMoreTextSize;
        room -= kMoreTextSize;
    }
    return room;
}

std::size_t CharacterSize(const char* at) { return IsLeadByte(static_cast<std::uint8_t>(at[0])) && at[1] ? 2 : 1; }

// Removes the marks of the drawing's own text layout. Deliberate: the scan moves on past the character that slid into
// the gap, so of two adjacent marks the second stays. Mended, texts that double a mark to show it would lose it.
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

std::size_t GatherRecordText(unsigned number, unsigned count, ByteView records, char* buffer, std::size_t size,
                             ChainSkips* skips) {
    std::memset(buffer, 0, size);
    if (size <= kFirstTextSize || number == 0 || number > count) return 0;
    ChainSkips own;
    const std::size_t room = CopyChunks(number, count, records, buffer, size, skips ? skips : &own);
    buffer[size - 1] = '\0';
    RemoveMarks(buffer);
    return Widen(buffer, room);
}

bool DecodeNative(ByteView file, Comment* comment, DrawingSink* sink) {
    NativeDrawing drawing = {};
    if (!ReadHeader(file, &drawing)) return false;
    AppendTitleBlock(comment, file, kNativeTitle);
    if (!sink || !sink->fit(*sink, drawing.extents, DrawingSink::kWipe)) return false;
    sink->textsAreShiftJis = true;
    for (unsigned number = 1; number <= drawing.Count(); ++number) {
        if (!sink->MayContinue()) return false;
        DrawRecord(*sink, &drawing, number);
    }
    return true;
}
