// Lines of Unicode text on a device context: turned, mirrored, slanted and stretched as their drawing says, aligned by
// the face's own metrics. Everything is drawn in black.
#pragma once

#include <windows.h>

#include <cstdint>

#include "kit/handles.h"
#include "preview/formats/sink.h"

// The fonts of the last texts, kept so that a like text need not make its own. None stays selected.
struct UnicodeFonts {
    struct Entry {
        std::int32_t em = 0;  // pixels
        UniqueFont font;
    };
    Entry entries[8];
    double capital = 0;  // a capital's height, in ems; 0: not measured yet
    double area = 0;     // of all characters that have been drawn, each the square of its em, in pixels
};

void DrawUnicodeText(HDC dc, const ViewTransform& view, const UnicodeText& text, UnicodeFonts* fonts);
