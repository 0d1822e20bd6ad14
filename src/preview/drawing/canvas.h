// The memory bitmap that a drawing becomes, as the sink of a decoder.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "kit/handles.h"
#include "preview/drawing/raster.h"
#include "preview/drawing/renderer.h"
#include "preview/drawing/unicode_text.h"
#include "preview/formats/sink.h"

// Bits of a reader's renderMode.
constexpr DWORD kRenderTextFrames = 1;  // texts as their bounding frames
constexpr DWORD kRenderColor = 2;       // a bitmap like the screen's, else one bit a pixel
constexpr DWORD kRenderFullDxf = 4;     // DXF by the full reader

// An empty bitmap of the target's size in the form that renderMode asks for; null when it cannot be made.
HBITMAP CreatePreviewBitmap(HDC screen, DWORD renderMode, const RECT& target);

// The strokes of one drawing, straight into its bits. Texts wait until many have come and are then drawn by GDI, font
// by font, since a change of the font takes as long as ten texts. All ink is black, so the order of strokes does not
// matter.
struct CanvasStrokes : Raster {
    CanvasStrokes(HDC dc, TextFonts* fonts, UniquePen* pens, const DrawingSink& sink);
    static constexpr std::size_t kMostTexts = 2048, kMostCharacters = 1 << 16;  // that wait
    struct WaitingText {
        TextStroke stroke;   // its `text` is not set
        std::size_t offset;  // in `characters`
    };
    decltype(StrokeTarget::dot) solidDot = nullptr;  // the raster's; others are GDI's too
    GdiStrokes gdi;
    std::vector<WaitingText> texts;
    std::string characters;
    const DrawingSink& run;  // which may be cancelled
};

// Everything of one run. Members leave in reverse order: the device context goes before what is selected into it.
struct Canvas : DrawingSink {
    Canvas(DWORD mode, const RECT& rect);  // opened by the first fit
    const DWORD renderMode;
    const RECT target;
    UniqueBitmap section;  // whose bits are within reach
    UniqueBrush white, black;
    UniquePen pens[kPenCount];
    TextFonts textFonts;
    UnicodeTexts unicodeTexts;
    std::vector<PixelPoint> pixels;  // of a path, used again
    UniqueDc dc;
    std::optional<CanvasStrokes> strokes;  // once it is open
};

// Makes a white canvas; false when a context, the bitmap or a brush cannot be made.
bool OpenCanvas(Canvas* canvas);

// The drawing as CreatePreviewBitmap's kind of bitmap, which is the caller's; the canvas draws no more. Null when it
// was never opened, the bitmap cannot be made, or the run is cancelled meanwhile.
HBITMAP TakeCanvasBitmap(Canvas* canvas);
