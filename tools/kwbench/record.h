// The strokes of a preview, recorded at the sink of the drawing's own decoder, and the same strokes as bare GDI calls.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "inputs.h"
#include "preview/formats/sink.h"

struct RecordedStroke {
    enum Kind : std::uint8_t { kPixel, kLine, kArc, kArrow, kDot, kText } kind;
    std::uint8_t pen;
    std::int32_t radius;   // or a text's index
    PixelPoint points[3];  // its ends; the centre and the ends; the corners
};

struct RecordedText {
    TextStroke stroke;  // its `text` is not set
    std::size_t font;   // index of the first text with the same font
    std::string characters;
};

struct Recording : DrawingSink {
    explicit Recording(const PixelRect& size);
    struct Strokes : StrokeTarget {
        std::vector<RecordedStroke> strokes;
        std::vector<RecordedText> texts;
    } out;
    PixelRect target;
};

// The strokes of the drawing's preview, or none when it cannot be read.
Recording RecordPreview(const Drawing& drawing, const PixelRect& target);

// Loads the drawing, decodes it and makes its strokes, but nobody draws them. False when it cannot be read.
bool DecodeOnly(const Drawing& drawing, const PixelRect& target);

// Draws the strokes on a bitmap like a reader's, which is the caller's; null when it cannot be made. A pen is made
// once; so is a font, or anew at each change of it.
enum class Fonts { kMadeOnce, kMadeAtEachChange };
HBITMAP Replay(const Recording& recording, Fonts fonts);
