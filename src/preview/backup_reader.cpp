// Backup drawings: one flat header, then 64-byte records; all numbers little-endian.
//
// The record count is the only number that can lead outside the block; it is compared with the block's size once,
// before the first record is read.
#include "preview/backup_reader.h"

#include "preview/element_record.h"
#include "preview/text_placement.h"
#include "preview/title_block.h"

namespace {

constexpr char kSignature[] = "VEXTRON lumos Backup V2";
constexpr std::size_t kExtentsAt = 410;
constexpr std::size_t kRecordCountAt = 442;
constexpr std::size_t kHeaderSize = 446;
constexpr std::uint16_t kHiddenStatus = 0x4000 | 0x8000;
constexpr std::size_t kLayerCount = 16;

struct BackupDrawing {
    WorldRect extents;
    ByteView records;
    bool layers[kLayerCount];  // shown
};

bool ReadHeader(ByteView file, BackupDrawing* drawing) {
    std::uint32_t count = 0;
    if (!MatchAt(file, 0, kSignature) || !ReadAt(file, kRecordCountAt, &count)) return false;
    if (count > (file.size - kHeaderSize) / kRecordSize) return false;
    ReadAt(file, kExtentsAt, &drawing->extents);
    drawing->records = {file.data + kHeaderSize, count * kRecordSize};
    for (bool& layer : drawing->layers) layer = true;
    return true;
}

// The characters are not drawn, only the frame around them. Deliberate: an alignment that is none of the three keeps
// what the element before, of whatever kind, has left on its axis.
void DrawTextFrame(DrawingRun& run, const TextFields& text) {
    const PreviewPrimitive& before = run.canvas.primitive;
    LastText last = {0, 0, before.a, before.c, before.b, before.d};
    TextPlacement place = PlacementOf(text);
    place.length = (static_cast<double>(text.width) + text.spacing) * text.length;
    SetPlacedFrame(&run.canvas.primitive, &last, place);
    SelectCanvasPen(&run.canvas, kTextPen);
    DrawOnCanvas(&run.canvas);
}

// Deliberate: lines and arcs have no end marks of their own here and leave the end-mark word as it is.
void DrawRecord(DrawingRun& run, const BackupDrawing& drawing, ByteView record) {
    RecordHead head = {};
    ReadAt(record, 0, &head);
    if ((head.status & kHiddenStatus) || !drawing.layers[head.layer % kLayerCount]) return;
    PreviewPrimitive& primitive = run.canvas.primitive;
    switch (KindOf(head)) {
        case kPointElement: {
            const auto point = FieldsOf<PointFields>(record);
            primitive.SetPoint(point.x, point.y);
            break;
        }
        case kLineElement: {
            const auto line = FieldsOf<LineFields>(record);
            primitive.SetLine(line.x1, line.y1, line.x2, line.y2);
            SelectCanvasPen(&run.canvas, PenOf(line.attributes));
            break;
        }
        case kArcElement: {
            const auto arc = FieldsOf<ArcFields>(record);
            primitive.SetArc(arc.x, arc.y, arc.radius, arc.startDegrees, arc.endDegrees);
            SelectCanvasPen(&run.canvas, PenOf(arc.attributes));
            break;
        }
        case kTextElement: return DrawTextFrame(run, FieldsOf<TextFields>(record));
        default: return;
    }
    DrawOnCanvas(&run.canvas);
}

bool DecodeBackup(DrawingRun& run) {
    BackupDrawing drawing = {};
    if (!ReadHeader(run.file.Bytes(), &drawing)) return false;
    AppendTitleBlock(&run.comment, run.file.Bytes(), kBackupTitle);
    if (!run.target || !OpenCanvas(&run.canvas, run.renderMode, *run.target)) return false;
    FitCanvas(&run.canvas, drawing.extents);
    for (std::size_t at = 0; at < drawing.records.size; at += kRecordSize) {
        if (!MayContinue()) return false;
        DrawRecord(run, drawing, {drawing.records.data + at, kRecordSize});
    }
    return true;
}

}  // namespace

HBITMAP ReadBackupDrawing(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                          DWORD commentSize) {
    return RunDrawingReader(renderMode, fileName, target, commentOut, commentSize, DecodeBackup);
}
