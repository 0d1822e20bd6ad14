// Backup drawings: one flat header, then 64-byte records; all numbers little-endian.
//
// The record count is the only number that can lead outside the block; it is compared with the block's size once,
// before the first record is read.
#include "preview/formats/backup.h"

#include "preview/formats/element_record.h"
#include "preview/formats/title_block.h"

namespace {

constexpr char kSignature[] = "VEXTRON lumos Backup V2";
constexpr std::size_t kExtentsAt = 410;
constexpr std::size_t kRecordCountAt = 442;
constexpr std::size_t kHeaderSize = 446;
constexpr std::uint16_t kHiddenStatus = 0x4000 | 0x8000;

struct BackupDrawing {
    WorldRect extents;
    ByteView records;
};

bool ReadHeader(ByteView file, BackupDrawing* drawing) {
    std::uint32_t count = 0;
    if (!MatchAt(file, 0, kSignature) || !ReadAt(file, kRecordCountAt, &count)) return false;
    if (count > (file.size - kHeaderSize) / kRecordSize) return false;
    ReadAt(file, kExtentsAt, &drawing->extents);
    drawing->records = {file.data + kHeaderSize, count * kRecordSize};
    return true;
}

// The characters are not drawn, only the frame around them. Deliberate: an alignment that is none of the three keeps
// what the element before, of whatever kind, has left on its axis. Mended, such texts would get a frame of their own in
// the pictures of backups.
void SetTextFrame(PreviewPrimitive* primitive, const TextFields& text) {
    const FrameElement before = FrameOf(*primitive);
    LastText last = {0, 0, before.x1, before.x2, before.y1, before.y2};
    TextPlacement place = PlacementOf(text, {0, 0});
    place.length = (static_cast<double>(text.width) + text.spacing) * text.length;
    SetPlacedFrame(primitive, &last, place);
}

// Deliberate: lines and arcs leave the end-mark word as it is. Wiped, the arrowheads and dots would go that a line gets
// when the number behind the word happens to spell one.
void DrawRecord(DrawingSink& sink, ByteView record, PreviewPrimitive* primitive) {
    const auto head = FieldsAt<RecordHead>(record, 0);
    if (head.status & kHiddenStatus) return;  // every layer is shown
    std::uint16_t attributes = 0;
    if (SetShape(record, {0, 0}, primitive, &attributes)) {
        sink.draw(sink, *primitive, PenOf(attributes));
    } else if (KindOf(head) == kTextElement) {
        SetTextFrame(primitive, FieldsAt<TextFields>(record));
        sink.draw(sink, *primitive, kTextPen);
    }
}

}  // namespace

bool DecodeBackup(ByteView file, Comment* comment, DrawingSink* sink) {
    BackupDrawing drawing = {};
    if (!ReadHeader(file, &drawing)) return false;
    AppendTitleBlock(comment, file, kBackupTitle);
    if (!sink || !sink->fit(*sink, drawing.extents, DrawingSink::kWipe)) return false;
    PreviewPrimitive primitive;
    for (std::size_t at = 0; at < drawing.records.size; at += kRecordSize) {
        if (!sink->MayContinue()) return false;
        DrawRecord(*sink, {drawing.records.data + at, kRecordSize}, &primitive);
    }
    return true;
}
