// The 64-byte element record that the native and the backup drawings share; all numbers little-endian.
//
// Lengths are drawing units, angles degrees counter-clockwise. A record is a head, a part that depends on the kind,
// and, in native drawings, more text and a link in its last bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kit/bytes.h"
#include "preview/drawing/text_placement.h"
#include "preview/drawing/view.h"

constexpr std::size_t kRecordSize = 64;
constexpr std::size_t kFieldsAt = 16;  // the part that depends on the kind

enum ElementKind : unsigned { kPointElement = 1, kLineElement = 2, kArcElement = 4, kTextElement = 8 };

#pragma pack(push, 1)
struct RecordHead {
    std::uint16_t status;  //  0
    std::uint16_t unused;
    std::uint16_t type;  //  4  kind in the low 4 bits
    std::uint8_t unused6;
    std::uint8_t layer;  //  7
};
struct PointFields {
    double x, y;
};
struct LineFields {
    double x1, y1, x2, y2;     // 16
    std::uint16_t attributes;  // 48  pen in bits 4-7
};
struct ArcFields {
    double x, y, radius, startDegrees, endDegrees;  // 16
    std::uint16_t attributes;                       // 56  pen in bits 4-7
};
struct TextFields {
    float x, y, height, width, spacing, angleDegrees;  // 16  the width is a full-width character's
    std::uint32_t unused;
    std::uint16_t placement;  // 44  vertical justification in bits 5-6, horizontal in bits 7-8
    std::uint16_t length;     // 46  backup drawings: number of characters
};
#pragma pack(pop)
static_assert(sizeof(RecordHead) == 8 && offsetof(RecordHead, type) == 4);
static_assert(offsetof(LineFields, attributes) == 48 - kFieldsAt && offsetof(ArcFields, attributes) == 56 - kFieldsAt);
static_assert(sizeof(TextFields) == 32 && offsetof(TextFields, placement) == 44 - kFieldsAt);

inline unsigned KindOf(const RecordHead& head) { return head.type & 15u; }
inline unsigned PenOf(std::uint16_t attributes) { return (attributes >> 4) & 15u; }

// Fields of a whole record.
template <typename Fields>
Fields FieldsAt(ByteView record, std::size_t offset = kFieldsAt) {
    Fields fields = {};
    ReadAt(record, offset, &fields);
    return fields;
}

// Makes the primitive a record's point, line or arc, moved by `shift`; its end marks stay as they are. `attributes`
// receives the word with the pen, 0 for a point. False when the record is none of these.
bool SetShape(ByteView record, WorldPoint shift, PreviewPrimitive* primitive, std::uint16_t* attributes);

// A text's place; its length is the decoder's to add.
TextPlacement PlacementOf(const TextFields& text, WorldPoint shift);
