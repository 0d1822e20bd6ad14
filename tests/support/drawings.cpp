#include "support/drawings.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "support/guard_block.h"
#include "support/samples.h"

static std::string Raw16(unsigned number) { return Raw(static_cast<std::uint16_t>(number)); }

std::string Put(std::string bytes, std::initializer_list<std::pair<std::size_t, std::string>> parts) {
    for (const auto& part : parts) bytes.replace(part.first, part.second.size(), part.second);
    return bytes;
}

std::string PointRecord(double x, double y) { return BytesAt(64, {{4, "\1"}, {16, Raw(x) + Raw(y)}}); }

std::string LineRecord(double x1, double y1, double x2, double y2, unsigned attributes) {
    return BytesAt(64, {{4, "\2"}, {16, Raw(x1) + Raw(y1) + Raw(x2) + Raw(y2)}, {48, Raw16(attributes)}});
}

std::string ArcRecord(double x, double y, double radius, double start, double end, unsigned attributes) {
    return BytesAt(64,
                   {{4, "\4"}, {16, Raw(x) + Raw(y) + Raw(radius) + Raw(start) + Raw(end)}, {56, Raw16(attributes)}});
}

static std::string LookFields(const TextLook& t) {
    return Raw(t.x) + Raw(t.y) + Raw(t.height) + Raw(t.width) + Raw(t.spacing) + Raw(t.angle);
}

std::string TextRecord(const TextLook& look, unsigned placement, const std::string& text, unsigned link) {
    return BytesAt(
        64, {{4, "\x8"}, {16, LookFields(look)}, {44, Raw16(placement)}, {48, text.substr(0, 14)}, {62, Raw16(link)}});
}

std::string ContinuationRecord(const std::string& text, unsigned link, unsigned status) {
    return BytesAt(64, {{0, Raw16(status)}, {16, text.substr(0, 46)}, {62, Raw16(link)}});
}

std::string CountedTextRecord(const TextLook& look, unsigned placement, unsigned count) {
    return BytesAt(64, {{4, "\x8"}, {16, LookFields(look)}, {44, Raw16(placement)}, {46, Raw16(count)}});
}

std::string NativeFile(NativeEdition edition, double width, double height, const std::string& records) {
    const std::string signature = edition == kEditionA ? "CAD ORVIL QA V4.0" : "LumosBase";
    return BytesAt(edition == kEditionA ? 1024 : 12704, {{4, signature},
                                                         {25, "\x5"},
                                                         {32, Raw(width) + Raw(height)},
                                                         {242, Raw16(static_cast<unsigned>(records.size() / 64))},
                                                         {248, Raw16(1)},
                                                         {250, Raw16(1)}}) +
           records;
}

std::string BackupFile(double width, double height, const std::string& records) {
    return BytesAt(446, {{0, "VEXTRON lumos Backup V2"},
                         {426, Raw(width) + Raw(height)},
                         {442, Raw(static_cast<std::uint32_t>(records.size() / 64))}}) +
           records;
}

std::string CommentOf(Decoder decode, const std::string& file, std::size_t size, bool withSink) {
    static std::atomic<std::int32_t> goOn = 1;
    const auto label = [](unsigned id, char* out, std::size_t room) { std::snprintf(out, room, "<%u>", id); };
    DrawingSink sink = {[](DrawingSink&, const WorldRect&, DrawingSink::FitMode) { return true; },
                        [](DrawingSink&, PreviewPrimitive&, unsigned) {},
                        nullptr,
                        nullptr,
                        {},
                        false,
                        &goOn};
    const GuardBlock block(file), out(std::string(size, '\0'));
    Comment comment;
    if (size > 0) comment = {out.Text(), static_cast<long long>(size), label};
    decode(block.View(), &comment, withSink ? &sink : nullptr);
    const std::string text(out.Text(), strnlen(out.Text(), size));
    EXPECT_EQ(std::string(out.Text(), size), text + std::string(size - text.size(), '\0'));
    return text;
}

// A stroke of what `set` makes of an element.
template <typename Set>
static Stroke StrokeOf(unsigned pen, Set set) {
    Stroke stroke = {pen, {}};
    set(stroke.primitive);
    return stroke;
}

Stroke PointStroke(double x, double y) {
    return StrokeOf(0, [=](PreviewPrimitive& out) { out.SetPoint(x, y); });
}

Stroke LineStroke(unsigned pen, double x1, double y1, double x2, double y2, std::uint32_t marks) {
    return StrokeOf(pen, [=](PreviewPrimitive& out) { out.SetLine(x1, y1, x2, y2), out.e.SetEndMarks(marks); });
}

Stroke ArcStroke(unsigned pen, double x, double y, double radius, double start, double end, std::uint32_t marks) {
    return StrokeOf(pen,
                    [=](PreviewPrimitive& out) { out.SetArc(x, y, radius, start, end), out.f.SetEndMarks(marks); });
}

Stroke FrameStroke(double x1, double y1, double x2, double y2, double centreX, double centreY, double angle) {
    return StrokeOf(kTextPen, [=](PreviewPrimitive& out) { out.SetFrame(x1, y1, x2, y2, centreX, centreY, angle); });
}

Stroke TextStrokeOf(double x, double y, double height, double width, double spacing, double angle,
                    const std::string& text) {
    return StrokeOf(kTextPen,
                    [&](PreviewPrimitive& out) { out.SetText(x, y, height, width, spacing, angle, text.c_str()); });
}
