#include "preview/canvas.h"

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

bool OpenCanvas(Canvas* canvas, DWORD renderMode, const RECT& target) {
    const WindowDc screen(nullptr);
    if (!screen.dc) return false;
    canvas->target = target;
    canvas->dc.reset(CreateCompatibleDC(screen.dc));
    canvas->bitmap.reset(CreatePreviewBitmap(screen.dc, renderMode, target));
    canvas->black.reset(CreateSolidBrush(RGB(0, 0, 0)));
    canvas->white.reset(CreateSolidBrush(RGB(255, 255, 255)));
    if (!canvas->dc || !canvas->bitmap || !canvas->black || !canvas->white) return false;

    const LOGBRUSH black = {BS_SOLID, RGB(0, 0, 0), 0};
    for (int i = 0; i < kPenCount; ++i) {
        canvas->pens[i].reset(ExtCreatePen(PS_COSMETIC | kPenStyles[i], 1, &black, 0, nullptr));
    }
    const HDC dc = canvas->dc.get();
    canvas->originalBitmap = SelectObject(dc, canvas->bitmap.get());
    FillRect(dc, &target, canvas->white.get());
    SelectObject(dc, canvas->black.get());  // fills arrowheads and dots
    SetTextColor(dc, RGB(0, 0, 0));
    SetBkMode(dc, TRANSPARENT);
    return true;
}

void FitCanvas(Canvas* canvas, const WorldRect& extents) {
    FitViewTransform(extents, canvas->target, &canvas->view);
    FillRect(canvas->dc.get(), &canvas->target, canvas->white.get());
}

void SelectCanvasPen(Canvas* canvas, unsigned index) { canvas->wantedPen = static_cast<int>(index % kPenCount); }

static void SelectWantedPen(Canvas* canvas) {
    const int pen = canvas->wantedPen;
    if (pen == canvas->selectedPen || !canvas->pens[pen]) return;
    SelectObject(canvas->dc.get(), canvas->pens[pen].get());
    canvas->selectedPen = pen;
}

void DrawOnCanvas(Canvas* canvas) {
    const std::uint32_t kind = canvas->primitive.kind;
    if (kind != kPoint && kind != kText) SelectWantedPen(canvas);
    DrawPreviewPrimitive(canvas->dc.get(), canvas->view, canvas->primitive, &canvas->textFont);
}

HBITMAP ReleaseCanvasBitmap(Canvas* canvas) {
    if (!canvas->bitmap) return nullptr;
    SelectObject(canvas->dc.get(), canvas->originalBitmap);
    return canvas->bitmap.release();
}
