// Elements on any device context: the strokes as GDI calls. Everything is drawn in black.
#pragma once

#include <windows.h>

#include "kit/handles.h"
#include "preview/drawing/strokes.h"

// The font of the last text, kept so that a like text need not make it again. It stays selected into its device
// context, so it must outlive that context or its selection.
struct TextFont {
    std::int32_t height = 0, width = 0, escapement = 0;  // pixels, pixels, tenths of a degree
    UniqueFont font;
};

// Strokes on a device context.
struct GdiStrokes : StrokeTarget {
    GdiStrokes(HDC context, TextFont* textFont, const UniquePen* sixteenPens = nullptr);
    const HDC dc;
    TextFont* const font;
    const UniquePen* const pens;  // kPenCount of them, or null: strokes take the pen that is selected already
    unsigned selected = kPenCount;
    bool shiftJisTexts = false;  // drawn as such whatever the system's code page is; else they are in that page
};

// Draws one element with the pen and the brush that are selected into `dc`, and leaves nothing behind there. Clipped
// line ends are written back. Always 1.
int DrawPreviewPrimitive(HDC dc, const ViewTransform& transform, PreviewPrimitive& primitive);
