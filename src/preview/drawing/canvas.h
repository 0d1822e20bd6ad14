// The memory bitmap that a drawing becomes, with its pens and brushes, as the sink of a decoder.
#pragma once

#include <windows.h>

#include <optional>
#include <vector>

#include "kit/handles.h"
#include "preview/drawing/renderer.h"
#include "preview/drawing/unicode_text.h"
#include "preview/formats/sink.h"

// Bits of a reader's renderMode.
constexpr DWORD kRenderTextFrames = 1;  // texts as their bounding frames
constexpr DWORD kRenderColor = 2;       // a bitmap like the screen's, else one bit a pixel
constexpr DWORD kRenderFullDxf = 4;     // DXF by the full reader

// An empty bitmap of the target's size in the form that renderMode asks for; null when it cannot be made.
HBITMAP CreatePreviewBitmap(HDC screen, DWORD renderMode, const RECT& target);

// Everything of one run. Members leave in reverse order: the device context goes before what is selected into it.
struct Canvas : DrawingSink {
    Canvas(DWORD mode, const RECT& rect);  // opened by the first fit
    const DWORD renderMode;
    const RECT target;
    bool shiftJisTexts = false;  // see GdiStrokes; set before the first fit
    UniqueBitmap bitmap;
    UniqueBrush white, black;
    UniquePen pens[kPenCount];
    TextFont textFont;
    UnicodeFonts unicodeFonts;
    std::vector<PixelPoint> pixels;  // of a path, used again
    UniqueDc dc;
    HGDIOBJ originalBitmap = nullptr;
    std::optional<GdiStrokes> strokes;  // once it is open
};

// Makes a white canvas; false when a context, the bitmap or a brush cannot be made.
bool OpenCanvas(Canvas* canvas);

// Gives the bitmap to the caller; the canvas draws no more. Null when it was never opened.
HBITMAP ReleaseCanvasBitmap(Canvas* canvas);
