// Elements on any device context: the strokes as GDI calls. Everything is drawn in black.
#pragma once

#include <windows.h>

#include "kit/handles.h"
#include "preview/drawing/strokes.h"

// The fonts of the last texts, the last one first: drawings go to and fro between a few sizes and angles. The first
// stays selected into its device context, so they must outlive that context or its selection.
struct TextFonts {
    struct Entry {
        std::int32_t height = 0, width = 0, escapement = 0;  // pixels, pixels, tenths of a degree
        bool isShiftJis = false;                             // a Japanese face on a system of another code page
        UniqueFont font;
    };
    Entry entries[8];
    double area = 0;  // of the texts that have wanted a new one: the square of the height for each character
};

// A canvas's pen, and whether it draws without gaps.
UniquePen MakePen(unsigned pen);
bool IsSolidPen(unsigned pen);

// Null when it cannot be made.
UniqueFont MakeTextFont(const TextStroke& text, bool isShiftJis = false);

// Strokes on a device context.
struct GdiStrokes : StrokeTarget {
    // With `sixteenPens`, which are made as they are needed, strokes select their pen; without, they take the one that
    // is selected already.
    GdiStrokes(HDC context, TextFonts* textFonts, UniquePen* sixteenPens = nullptr);
    const HDC dc;
    TextFonts* const fonts;
    UniquePen* const pens;
    unsigned selected = kPenCount;
    bool textsAreShiftJis = false;  // else they are in the system's code page
};

// Draws one element with the pen and the brush that are selected into `dc`, and leaves nothing behind there. Clipped
// line ends are written back. Always 1.
int DrawPreviewPrimitive(HDC dc, const ViewTransform& transform, PreviewPrimitive& primitive);
