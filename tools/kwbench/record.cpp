#include "record.h"

#include <algorithm>
#include <tuple>

#include "frame/services.h"

// ---- Replaying

// Members leave in reverse order: the device context goes before what is selected into it.
struct Replay {
    const Recording& recording;
    const FontUse fontUse;
    UniquePen pens[kPenCount];
    std::vector<TextFonts> fonts;  // one for each font, which stays in it
    std::size_t selected = SIZE_MAX;
    const UniqueDc dc;
    GdiStrokes gdi;

    Replay(const Recording& of, FontUse use, HDC screen)
        : recording(of),
          fontUse(use),
          fonts(of.out.fonts.size()),
          dc(CreateCompatibleDC(screen)),
          gdi(dc.get(), nullptr, pens) {}
};

static void ReplayText(Replay& to, const Recording::Stroke& stroke) {
    const Recording::Text& text = to.recording.out.texts[static_cast<std::size_t>(stroke.number)];
    TextFonts& font = to.fonts[text.font];
    if (text.font != to.selected) {
        if (to.fontUse == FontUse::kMadeAtEachChange) font = {};
        if (font.entries[0].font) SelectObject(to.dc.get(), font.entries[0].font.get());
        to.selected = text.font;
    }
    GdiStrokes gdi(to.dc.get(), &font);
    gdi.textsAreShiftJis = to.recording.textsAreShiftJis;
    TextStroke written = text.stroke;
    written.text = text.characters.c_str();
    gdi.text(gdi, written);
}

UniqueBitmap ReplayStrokes(const Recording& recording, FontUse fontUse) {
    const WindowDc screen(nullptr);
    UniqueBitmap bitmap(CreatePreviewBitmap(screen.dc, kRenderColor, recording.target));
    Replay to(recording, fontUse, screen.dc);
    Require(bitmap && to.dc, "no bitmap for a replay");
    const Selection selectBitmap(to.dc.get(), bitmap.get());
    const Selection selectBrush(to.dc.get(), GetStockObject(BLACK_BRUSH));
    FillRect(to.dc.get(), &recording.target, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    SetBkMode(to.dc.get(), TRANSPARENT);
    for (const Recording::Stroke& stroke : recording.out.strokes) stroke.replay(to, stroke);
    return bitmap;
}

// ---- Recording

static void Add(StrokeTarget& target, const Recording::Stroke& stroke) {
    auto& out = static_cast<Recording::Strokes&>(target);
    if (out.kept) out.strokes.push_back(stroke);
}

static void AddText(StrokeTarget& target, const TextStroke& text) {
    auto& out = static_cast<Recording::Strokes&>(target);
    if (!out.kept) return;
    const auto font = std::find_if(out.fonts.begin(), out.fonts.end(), [&](const TextStroke& other) {
        return other.height == text.height && other.width == text.width && other.escapement == text.escapement;
    });
    const auto number = static_cast<std::size_t>(font - out.fonts.begin());
    if (font == out.fonts.end()) out.fonts.push_back(text);
    Add(target, {ReplayText, 0, static_cast<std::int32_t>(out.texts.size()), {}});
    out.texts.push_back({text, number, {text.text, text.length}});
}

using Stroke = Recording::Stroke;

Recording::Recording(const RECT& rect) : DrawingSink{}, target(rect) {
    out.pixel = [](StrokeTarget& to, PixelPoint at) {
        Add(to, {[](Replay& in, const Stroke& s) { in.gdi.pixel(in.gdi, s.points[0]); }, 0, 0, {at}});
    };
    out.line = [](StrokeTarget& to, unsigned pen, PixelPoint a, PixelPoint b) {
        Add(to, {[](Replay& in, const Stroke& s) { in.gdi.line(in.gdi, s.pen, s.points[0], s.points[1]); },
                 pen,
                 0,
                 {a, b}});
    };
    out.arc = [](StrokeTarget& to, unsigned pen, PixelPoint centre, std::int32_t radius, PixelPoint a, PixelPoint b) {
        Add(to, {[](Replay& in, const Stroke& s) {
                     in.gdi.arc(in.gdi, s.pen, s.points[0], s.number, s.points[1], s.points[2]);
                 },
                 pen,
                 radius,
                 {centre, a, b}});
    };
    out.polygon = [](StrokeTarget& to, unsigned pen, const PixelPoint* corners, std::size_t) {  // an arrowhead
        Add(to, {[](Replay& in, const Stroke& s) { in.gdi.polygon(in.gdi, s.pen, s.points, 3); },
                 pen,
                 0,
                 {corners[0], corners[1], corners[2]}});
    };
    out.dot = [](StrokeTarget& to, unsigned pen, PixelPoint centre, std::int32_t radius) {
        Add(to, {[](Replay& in, const Stroke& s) { in.gdi.dot(in.gdi, s.pen, s.points[0], s.number); },
                 pen,
                 radius,
                 {centre}});
    };
    out.text = AddText;
    fit = [](DrawingSink& sink, const WorldRect& extents, FitMode) {
        const RECT& to = static_cast<Recording&>(sink).target;
        FitViewTransform(extents, {to.left, to.top, to.right, to.bottom}, &sink.view);
        return true;
    };
    draw = [](DrawingSink& sink, PreviewPrimitive& element, unsigned pen) {
        DrawElement(static_cast<Recording&>(sink).out, sink.view, element, pen % kPenCount);
    };
    goOn = &PreviewCancelFlag;
}

static void Decode(const Drawing& drawing, DrawingSink* sink) {
    const LoadedFile file(drawing.path.c_str());
    Require(file.data, "cannot load " + drawing.path);
    Comment comment;
    PreviewCancel(1);
    const ByteView bytes = drawing.format->isText ? file.AsText() : ByteView{file.data, file.size};
    const bool good = drawing.format->decode(bytes, &comment, sink);
    PreviewCancel(0);
    Require(good, "no drawing in " + drawing.path);
}

Recording RecordPreview(const Drawing& drawing, const RECT& target) {
    Recording recording(target);
    Decode(drawing, &recording);
    return recording;
}

void OrderAsCanvas(Recording* recording) {
    auto& strokes = recording->out.strokes;
    auto text = std::stable_partition(strokes.begin(), strokes.end(),
                                      [](const Stroke& stroke) { return stroke.replay != ReplayText; });
    const auto fontOf = [&](const Stroke& stroke) {
        const TextStroke& look = recording->out.texts[static_cast<std::size_t>(stroke.number)].stroke;
        return std::tie(look.escapement, look.height, look.width);
    };
    while (text != strokes.end()) {
        const auto end = text + std::min<std::ptrdiff_t>(strokes.end() - text, CanvasStrokes::kMostTexts);
        std::stable_sort(text, end, [&](const Stroke& a, const Stroke& b) { return fontOf(a) < fontOf(b); });
        text = end;
    }
}

void DecodeAlone(const Drawing& drawing) {
    Recording sink(kPane);
    sink.out.kept = false;
    Decode(drawing, &sink);
}
