#include "preview/drawing/canvas.h"

#include "frame/services.h"
#include "preview/drawing/path_strokes.h"

// Cosmetic pens: one pixel wide, black.
static constexpr DWORD kPenStyles[kPenCount] = {
    PS_SOLID, PS_SOLID, PS_DASH,  PS_DASHDOT, PS_DASHDOTDOT, PS_DOT,   PS_ALTERNATE, PS_SOLID,
    PS_SOLID, PS_SOLID, PS_SOLID, PS_SOLID,   PS_SOLID,      PS_SOLID, PS_SOLID,     PS_SOLID,
};

HBITMAP CreatePreviewBitmap(HDC screen, DWORD renderMode, const RECT& target) {
    const int width = target.right - target.left;
    const int height = target.bottom - target.top;
    return renderMode & kRenderColor ? CreateCompatibleBitmap(screen, width, height)
                                     : CreateBitmap(width, height, 1, 1, nullptr);
}

bool OpenCanvas(Canvas* canvas) {
    const WindowDc screen(nullptr);
    if (!screen.dc) return false;
    canvas->dc.reset(CreateCompatibleDC(screen.dc));
    canvas->bitmap.reset(CreatePreviewBitmap(screen.dc, canvas->renderMode, canvas->target));
    canvas->black.reset(CreateSolidBrush(RGB(0, 0, 0)));
    canvas->white.reset(CreateSolidBrush(RGB(255, 255, 255)));
    if (!canvas->dc || !canvas->bitmap || !canvas->black || !canvas->white) return false;

    const LOGBRUSH black = {BS_SOLID, RGB(0, 0, 0), 0};
    for (int i = 0; i < kPenCount; ++i) {
        canvas->pens[i].reset(ExtCreatePen(PS_COSMETIC | kPenStyles[i], 1, &black, 0, nullptr));
    }
    const HDC dc = canvas->dc.get();
    canvas->originalBitmap = SelectObject(dc, canvas->bitmap.get());
    FillRect(dc, &canvas->target, canvas->white.get());
    SelectObject(dc, canvas->black.get());  // fills arrowheads and dots
    SetTextColor(dc, RGB(0, 0, 0));
    SetBkMode(dc, TRANSPARENT);
    canvas->strokes.emplace(dc, &canvas->textFont, canvas->pens);
    canvas->strokes->shiftJisTexts = canvas->shiftJisTexts;
    return true;
}

static bool FitCanvas(DrawingSink& sink, const WorldRect& extents, DrawingSink::FitMode mode) {
    auto& canvas = static_cast<Canvas&>(sink);
    const RECT& target = canvas.target;
    if (!canvas.strokes) {
        if (!OpenCanvas(&canvas)) return false;
    } else if (mode == DrawingSink::kWipe) {
        FillRect(canvas.dc.get(), &target, canvas.white.get());
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
    DrawUnicodeText(canvas.dc.get(), sink.view, text, &canvas.unicodeFonts);
}

Canvas::Canvas(DWORD mode, const RECT& rect)
    : DrawingSink{FitCanvas,           DrawOnCanvas, PathOnCanvas,
                  UnicodeTextOnCanvas, {},           (mode & kRenderTextFrames) != 0,
                  &PreviewCancelFlag},
      renderMode(mode),
      target(rect) {}

HBITMAP ReleaseCanvasBitmap(Canvas* canvas) {
    if (!canvas->strokes) return nullptr;
    SelectObject(canvas->dc.get(), canvas->originalBitmap);
    return canvas->bitmap.release();
}
