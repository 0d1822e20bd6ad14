#include "preview/formats/element_record.h"

bool SetShape(ByteView record, WorldPoint shift, PreviewPrimitive* primitive, std::uint16_t* attributes) {
    *attributes = 0;
    switch (KindOf(FieldsAt<RecordHead>(record, 0))) {
        case kPointElement: {
            const auto point = FieldsAt<PointFields>(record);
            primitive->SetPoint(point.x + shift.x, point.y + shift.y);
            return true;
        }
        case kLineElement: {
            const auto line = FieldsAt<LineFields>(record);
            primitive->SetLine(line.x1 + shift.x, line.y1 + shift.y, line.x2 + shift.x, line.y2 + shift.y);
            *attributes = line.attributes;
            return true;
        }
        case kArcElement: {
            const auto arc = FieldsAt<ArcFields>(record);
            primitive->SetArc(arc.x + shift.x, arc.y + shift.y, arc.radius, arc.startDegrees, arc.endDegrees);
            *attributes = arc.attributes;
            return true;
        }
        default: return false;
    }
}

TextPlacement PlacementOf(const TextFields& text, WorldPoint shift) {
    TextPlacement placement;
    placement.x = text.x + shift.x;
    placement.y = text.y + shift.y;
    placement.height = text.height;
    placement.angleDegrees = text.angleDegrees;
    placement.vertical = (text.placement >> 5) & 3;
    placement.horizontal = (text.placement >> 7) & 3;
    return placement;
}
