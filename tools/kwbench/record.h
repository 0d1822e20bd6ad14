// The strokes of a preview, recorded at the sink of the drawing's own decoder, and the same strokes as bare GDI calls.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kwbench.h"
#include "preview/drawing/renderer.h"
#include "preview/formats/sink.h"

struct Replay;

struct Recording : DrawingSink {
    explicit Recording(const RECT& rect);
    struct Stroke {
        void (*replay)(Replay& to, const Stroke& stroke);
        unsigned pen;
        std::int32_t number;   // a radius, or a text's index
        PixelPoint points[3];  // its ends; the centre and the ends; the corners
    };
    struct Text {
        TextStroke stroke;  // its `text` is not set
        std::size_t font;   // its number
        std::string characters;
    };
    struct Strokes : StrokeTarget {
        bool kept = true;
        std::vector<Stroke> strokes;
        std::vector<Text> texts;
        std::vector<TextStroke> fonts;  // the first text of each
    } out;
    const RECT target;
};

// The strokes of the drawing's preview.
Recording RecordPreview(const Drawing& drawing, const RECT& target);

// Puts texts behind the other strokes and like fonts together, as a canvas does: where the texts of a smooth face
// overlap, another order rounds otherwise.
void OrderAsCanvas(Recording* recording);

// Loads the drawing, decodes it and makes its strokes, but nobody keeps or draws them.
void DecodeAlone(const Drawing& drawing);

// Draws the strokes on a bitmap like a reader's, by the calls that the renderer makes of them. A pen is made once; so
// is a font, or anew at each change of it.
enum class FontUse { kMadeOnce, kMadeAtEachChange };
UniqueBitmap ReplayStrokes(const Recording& recording, FontUse fontUse);
