#include "record.h"

#include <algorithm>
#include <iterator>

#include "frame/services.h"
#include "preview/drawing/canvas.h"
#include "preview/reader.h"

// ---- Recording

static void Add(StrokeTarget& target, RecordedStroke::Kind kind, unsigned pen, std::int32_t radius,
                std::initializer_list<PixelPoint> points) {
    RecordedStroke stroke = {kind, static_cast<std::uint8_t>(pen), radius, {}};
    std::copy(points.begin(), points.end(), stroke.points);
    static_cast<Recording::Strokes&>(target).strokes.push_back(stroke);
}

static void AddText(StrokeTarget& target, const TextStroke& text) {
    auto& texts = static_cast<Recording::Strokes&>(target).texts;
    const auto same = std::find_if(texts.begin(), texts.end(), [&](const RecordedText& earlier) {
        const TextStroke& stroke = earlier.stroke;
        return stroke.height == text.height && stroke.width == text.width && stroke.escapement == text.escapement;
    });
    const auto index = static_cast<std::int32_t>(texts.size());
    texts.push_back({text, static_cast<std::size_t>(same - texts.begin()), {text.text, text.length}});
    Add(target, RecordedStroke::kText, 0, index, {text.at});
}

Recording::Recording(const PixelRect& size) : DrawingSink{}, target(size) {
    using Kind = RecordedStroke;
    out.pixel = [](StrokeTarget& to, PixelPoint at) { Add(to, Kind::kPixel, 0, 0, {at}); };
    out.line = [](StrokeTarget& to, unsigned pen, PixelPoint a, PixelPoint b) { Add(to, Kind::kLine, pen, 0, {a, b}); };
    out.arc = [](StrokeTarget& to, unsigned pen, PixelPoint centre, std::int32_t radius, PixelPoint a, PixelPoint b) {
        Add(to, Kind::kArc, pen, radius, {centre, a, b});
    };
    out.polygon = [](StrokeTarget& to, unsigned pen, const PixelPoint* corners, std::size_t) {
        Add(to, Kind::kArrow, pen, 0, {corners[0], corners[1], corners[2]});
    };
    out.dot = [](StrokeTarget& to, unsigned pen, PixelPoint centre, std::int32_t radius) {
        Add(to, Kind::kDot, pen, radius, {centre});
    };
    out.text = AddText;
    fit = [](DrawingSink& sink, const WorldRect& extents, FitMode) {
        FitViewTransform(extents, static_cast<Recording&>(sink).target, &sink.view);
        return true;
    };
    draw = [](DrawingSink& sink, PreviewPrimitive& element, unsigned pen) {
        DrawElement(static_cast<Recording&>(sink).out, sink.view, element, pen % kPenCount);
    };
    goOn = &PreviewCancelFlag;
}

static bool Decode(const Drawing& drawing, DrawingSink* sink) {
    const PreviewFormat& format = FormatOf(drawing.format);
    const LoadedFile file(drawing.path.c_str());
    Comment comment;
    PreviewCancel(1);
    const bool good =
        file.data && format.decode(format.isText ? file.AsText() : ByteView{file.data, file.size}, &comment, sink);
    PreviewCancel(0);
    return good;
}

Recording RecordPreview(const Drawing& drawing, const PixelRect& target) {
    Recording recording(target);
    if (!Decode(drawing, &recording)) recording.out.strokes.clear();
    return recording;
}

bool DecodeOnly(const Drawing& drawing, const PixelRect& target) {
    Recording sink(target);
    sink.out.pixel = [](StrokeTarget&, PixelPoint) {};
    sink.out.line = [](StrokeTarget&, unsigned, PixelPoint, PixelPoint) {};
    sink.out.arc = [](StrokeTarget&, unsigned, PixelPoint, std::int32_t, PixelPoint, PixelPoint) {};
    sink.out.polygon = [](StrokeTarget&, unsigned, const PixelPoint*, std::size_t) {};
    sink.out.dot = [](StrokeTarget&, unsigned, PixelPoint, std::int32_t) {};
    sink.out.text = [](StrokeTarget&, const TextStroke&) {};
    return Decode(drawing, &sink);
}

// ---- Replaying

// The text strokes of a replay, on a device context.
struct TextReplay {
    HDC dc;
    Fonts manner;
    std::vector<UniqueFont> fonts;  // by the index of the first text
    std::size_t selected = SIZE_MAX;

    void Write(const RecordedText& text) {
        if (text.font != selected) {
            UniqueFont previous;  // to be deleted when it is no longer selected
            if (manner == Fonts::kMadeAtEachChange && selected != SIZE_MAX) previous = std::move(fonts[selected]);
            if (!fonts[text.font]) fonts[text.font] = MakeTextFont(text.stroke);
            SelectObject(dc, fonts[text.font].get());
            selected = text.font;
        }
        const int extra = SetTextCharacterExtra(dc, text.stroke.extra);
        TextOutA(dc, text.stroke.at.x, text.stroke.at.y, text.characters.data(),
                 static_cast<int>(text.characters.size()));
        SetTextCharacterExtra(dc, extra);
    }
};

HBITMAP Replay(const Recording& recording, Fonts fonts) {
    const RECT target = {recording.target.left, recording.target.top, recording.target.right, recording.target.bottom};
    const WindowDc screen(nullptr);
    UniqueBitmap bitmap(CreatePreviewBitmap(screen.dc, kRenderColor, target));
    UniquePen pens[kPenCount];
    TextReplay writer = {nullptr, fonts, std::vector<UniqueFont>(recording.out.texts.size())};
    const UniqueDc dc(CreateCompatibleDC(screen.dc));
    if (!bitmap || !dc) return nullptr;
    writer.dc = dc.get();
    const Selection selectBitmap(dc.get(), bitmap.get());
    const Selection selectBrush(dc.get(), GetStockObject(BLACK_BRUSH));
    FillRect(dc.get(), &target, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    SetBkMode(dc.get(), TRANSPARENT);
    GdiStrokes gdi(dc.get(), nullptr, pens);
    for (const RecordedStroke& stroke : recording.out.strokes) {
        const PixelPoint* points = stroke.points;
        switch (stroke.kind) {
            case RecordedStroke::kPixel: gdi.pixel(gdi, points[0]); break;
            case RecordedStroke::kLine: gdi.line(gdi, stroke.pen, points[0], points[1]); break;
            case RecordedStroke::kArc: gdi.arc(gdi, stroke.pen, points[0], stroke.radius, points[1], points[2]); break;
            case RecordedStroke::kArrow: gdi.polygon(gdi, stroke.pen, points, 3); break;
            case RecordedStroke::kDot: gdi.dot(gdi, stroke.pen, points[0], stroke.radius); break;
            case RecordedStroke::kText:
                writer.Write(recording.out.texts[static_cast<std::size_t>(stroke.radius)]);
                break;
        }
    }
    return bitmap.release();
}
