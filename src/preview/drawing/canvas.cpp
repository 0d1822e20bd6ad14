#include "preview/drawing/canvas.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "frame/services.h"
#include "preview/drawing/path_strokes.h"

HBITMAP CreatePreviewBitmap(HDC screen, DWORD renderMode, const RECT& target) {
    const int width = target.right - target.left;
    const int height = target.bottom - target.top;
    return renderMode & kRenderColor ? CreateCompatibleBitmap(screen, width, height)
                                     : CreateBitmap(width, height, 1, 1, nullptr);
}

// ---- Strokes

static void DrawWaitingTexts(CanvasStrokes& strokes) {
    const auto fontOf = [](const CanvasStrokes::WaitingText& text) {
        return std::tie(text.stroke.escapement, text.stroke.height, text.stroke.width);
    };
    strokes.gdi.textsAreShiftJis = strokes.run.textsAreShiftJis;
    std::stable_sort(strokes.texts.begin(), strokes.texts.end(),
                     [&](const auto& a, const auto& b) { return fontOf(a) < fontOf(b); });
    TextRun run = {strokes.gdi};
    for (CanvasStrokes::WaitingText& text : strokes.texts) {
        if (!strokes.run.MayContinue()) break;
        text.stroke.text = strokes.characters.data() + text.offset;
        if (run.Take(text.stroke)) continue;
        run.Write();
        strokes.gdi.text(strokes.gdi, text.stroke);
    }
    run.Write();
    strokes.texts.clear();
    strokes.characters.clear();
}

static void KeepText(StrokeTarget& target, const TextStroke& stroke) {
    auto& strokes = static_cast<CanvasStrokes&>(target);
    strokes.texts.push_back({stroke, strokes.characters.size()});
    strokes.characters.append(stroke.text, stroke.length);
    if (strokes.texts.size() >= CanvasStrokes::kMostTexts ||
        strokes.characters.size() >= CanvasStrokes::kMostCharacters) {
        DrawWaitingTexts(strokes);
    }
}

static void DrawDot(StrokeTarget& target, unsigned pen, PixelPoint centre, std::int32_t radius) {
    auto& strokes = static_cast<CanvasStrokes&>(target);
    if (IsSolidPen(pen)) return strokes.solidDot(target, pen, centre, radius);
    strokes.gdi.dot(strokes.gdi, pen, centre, radius);
}

CanvasStrokes::CanvasStrokes(HDC dc, TextFonts* fonts, UniquePen* pens, const DrawingSink& sink)
    : gdi(dc, fonts, pens), run(sink) {}

// ---- The bitmap

// How the bits stand: one a pixel or 32, from the top down.
struct SectionInfo {
    BITMAPINFOHEADER header;
    RGBQUAD colours[2];
};
static SectionInfo InfoOf(const Canvas& canvas) {
    // For a target without area CreatePreviewBitmap gives one pixel.
    const LONG width = std::max(canvas.target.right - canvas.target.left, 1L);
    const LONG height = std::max(canvas.target.bottom - canvas.target.top, 1L);
    const WORD depth = canvas.renderMode & kRenderColor ? 32 : 1;
    return {{sizeof(BITMAPINFOHEADER), width, -height, 1, depth, BI_RGB, 0, 0, 0, 0, 0}, {{}, {255, 255, 255, 0}}};
}

static void WipeCanvas(Canvas* canvas) {
    canvas->strokes->texts.clear();
    canvas->strokes->characters.clear();
    canvas->unicodeTexts.waiting.clear();
    canvas->unicodeTexts.characters.clear();
    FillRect(canvas->dc.get(), &canvas->target, canvas->white.get());
    GdiFlush();  // before any ink that GDI does not know of
}

bool OpenCanvas(Canvas* canvas) {
    const SectionInfo info = InfoOf(*canvas);
    void* bits = nullptr;
    canvas->dc.reset(CreateCompatibleDC(nullptr));
    canvas->section.reset(
        CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS, &bits, nullptr, 0));
    canvas->black.reset(CreateSolidBrush(RGB(0, 0, 0)));
    canvas->white.reset(CreateSolidBrush(RGB(255, 255, 255)));
    if (!canvas->dc || !canvas->section || !canvas->black || !canvas->white) return false;

    const HDC dc = canvas->dc.get();
    canvas->strokes.emplace(dc, &canvas->textFonts, canvas->pens, *canvas);
    if (!OpenRaster(&*canvas->strokes, bits, info.header.biWidth, -info.header.biHeight, info.header.biBitCount)) {
        canvas->strokes.reset();
        return false;
    }
    SelectObject(dc, canvas->section.get());
    canvas->strokes->solidDot = std::exchange(canvas->strokes->dot, DrawDot);
    canvas->strokes->text = KeepText;
    WipeCanvas(canvas);
    SelectObject(dc, canvas->black.get());  // fills arrowheads and dots
    SetTextColor(dc, RGB(0, 0, 0));
    SetBkMode(dc, TRANSPARENT);
    return true;
}

static bool FitCanvas(DrawingSink& sink, const WorldRect& extents, DrawingSink::FitMode mode) {
    auto& canvas = static_cast<Canvas&>(sink);
    const RECT& target = canvas.target;
    if (!canvas.strokes) {
        if (!OpenCanvas(&canvas)) return false;
    } else if (mode == DrawingSink::kWipe) {
        WipeCanvas(&canvas);
    }
    FitViewTransform(extents, {target.left, target.top, target.right, target.bottom}, &canvas.view);
    return true;
}

static void DrawOnCanvas(DrawingSink& sink, PreviewPrimitive& element, unsigned pen) {
    DrawElement(*static_cast<Canvas&>(sink).strokes, sink.view, element, pen % kPenCount);
}

static void PathOnCanvas(DrawingSink& sink, const Path& path, unsigned pen) {
    auto& canvas = static_cast<Canvas&>(sink);
    const auto draw = path.filled ? FillOutlines : DrawOutlines;
    draw(*canvas.strokes, sink.view, path.points, path.counts, path.outlines, pen % kPenCount, &canvas.pixels);
}

static void UnicodeTextOnCanvas(DrawingSink& sink, const UnicodeText& text) {
    auto& canvas = static_cast<Canvas&>(sink);
    const HDC dc = canvas.dc.get();
    if (KeepUnicodeText(dc, sink.view, text, &canvas.unicodeTexts)) DrawUnicodeTexts(dc, sink, &canvas.unicodeTexts);
}

Canvas::Canvas(DWORD mode, const RECT& rect)
    : DrawingSink{FitCanvas,           DrawOnCanvas, PathOnCanvas,
                  UnicodeTextOnCanvas, {},           (mode & kRenderTextFrames) != 0,
                  &PreviewCancelFlag},
      renderMode(mode),
      target(rect) {}

HBITMAP TakeCanvasBitmap(Canvas* canvas) {
    if (!canvas->strokes) return nullptr;
    DrawWaitingTexts(*canvas->strokes);
    DrawUnicodeTexts(canvas->dc.get(), *canvas, &canvas->unicodeTexts);
    const WindowDc screen(nullptr);
    if (!screen.dc || !canvas->MayContinue()) return nullptr;
    UniqueBitmap bitmap(CreatePreviewBitmap(screen.dc, canvas->renderMode, canvas->target));
    const SectionInfo info = InfoOf(*canvas);
    const Raster& raster = *canvas->strokes;
    GdiFlush();
    if (!bitmap || !SetDIBits(screen.dc, bitmap.get(), 0, static_cast<UINT>(raster.height), raster.bits,
                              reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS)) {
        return nullptr;
    }
    return bitmap.release();
}
