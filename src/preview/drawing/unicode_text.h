// Lines of Unicode text on a device context: turned, mirrored, slanted and stretched as their drawing says, aligned by
// the face's own metrics. Everything is drawn in black.
//
// Texts wait until many have come and are then drawn size by size and angle by angle: the system makes a font of its
// own for each transform, which takes as long as a dozen texts. All ink is black, so their order does not matter.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "kit/handles.h"
#include "preview/formats/sink.h"

struct UnicodeTexts {
    // The fonts of the last texts, the last one first. None stays selected.
    struct Entry {
        std::int32_t em = 0;          // pixels
        INT advances[127 - 32] = {};  // of the printable ASCII characters that have come
        UniqueFont font;
    };
    Entry entries[8];
    double capital = 0;  // a capital's height, in ems; 0: not measured yet
    double area = 0;     // of all characters that have come, each the square of its em, in pixels

    // A text that waits: the transform is from its font's pixels, y downward, to the canvas's.
    struct Waiting {
        std::int32_t em;
        XFORM frame;
        int x;        // where the text begins, in font pixels from its anchor
        double base;  // the base line, likewise
        int width;    // font pixels
        bool underlined, overlined, struckOut;
        std::size_t offset;  // in `characters`
        int length;
    };
    std::vector<Waiting> waiting;
    std::u16string characters;
};

// Takes a text in; true when so many wait that they should be drawn.
bool KeepUnicodeText(HDC dc, const ViewTransform& view, const UnicodeText& text, UnicodeTexts* texts);

// Draws what waits, or less when the run is cancelled.
void DrawUnicodeTexts(HDC dc, const DrawingSink& run, UnicodeTexts* texts);
