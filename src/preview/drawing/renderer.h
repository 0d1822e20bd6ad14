// Elements on any device context: the strokes as GDI calls. Everything is drawn in black.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

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

// Level texts of one font that follow one another, as one call: a call takes as long as a dozen characters.
struct TextRun {
    GdiStrokes& gdi;
    // False for a text that must be drawn by itself, after Write.
    bool Take(const TextStroke& text);
    void Write();

    std::int32_t height = 0, width = 0;  // of the font
    INT advances[128] = {};              // of its characters, as far as they were asked for
    PixelPoint first = {}, last = {};    // where the run and its last character begin
    std::wstring characters = {};
    std::vector<INT> steps = {};  // from each character to the next, right and up
};

// Draws one element with the pen and the brush that are selected into `dc`, and leaves nothing behind there. Clipped
// line ends are written back. Always 1.
int DrawPreviewPrimitive(HDC dc, const ViewTransform& transform, PreviewPrimitive& primitive);
