#include "preview/drawing/placeholder.h"

#include <cstring>

#include "frame/services.h"
#include "preview/drawing/canvas.h"

// The font of status bars, as the user has set it; none when the system does not say.
static UniqueFont StatusFont() {
    NONCLIENTMETRICSA metrics = {};
#ifndef _WIN64
    static_assert(sizeof(metrics) == 344);
#endif
    metrics.cbSize = sizeof(metrics);
    if (!SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0)) return nullptr;
    return UniqueFont(CreateFontIndirectA(&metrics.lfStatusFont));
}

static HBITMAP DrawPlaceholder(DWORD flags, const char* text, const RECT& target) {
    const WindowDc screen(nullptr);
    const UniqueBrush white(CreateSolidBrush(RGB(255, 255, 255)));
    const UniqueFont font = StatusFont();
    UniqueBitmap bitmap(screen.dc ? CreatePreviewBitmap(screen.dc, flags, target) : nullptr);
    const UniqueDc dc(CreateCompatibleDC(screen.dc));
    if (!white || !bitmap || !dc) return nullptr;

    {
        const Selection selectBitmap(dc.get(), bitmap.get());
        FillRect(dc.get(), &target, white.get());
        const Selection selectFont(dc.get(), font ? font.get() : GetStockObject(DEFAULT_GUI_FONT));
        SetTextColor(dc.get(), RGB(0, 0, 0));
        SetBkMode(dc.get(), TRANSPARENT);
        RECT area = target;
        if (text) {
            DrawTextA(dc.get(), text, static_cast<int>(std::strlen(text)), &area,
                      DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS);
        }
    }
    return bitmap.release();
}

HBITMAP CreatePlaceholderBitmap(DWORD flags, const char* text, const RECT& target) {
    PreviewCancel(1);
    const HBITMAP bitmap = DrawPlaceholder(flags, text, target);
    PreviewCancel(0);
    return bitmap;
}
