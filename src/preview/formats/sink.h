// What a format's decoder feeds: the few calls from bytes to a drawing. A sink need not be a canvas: one that only
// grows a box measures a drawing, one that records makes a benchmark's floor. Knows no Windows.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "kit/bytes.h"
#include "preview/drawing/element.h"
#include "preview/drawing/view.h"
#include "preview/formats/comment.h"

// Several lines of points, or the outlines of one filled area (even-odd: an outline inside another is an island).
struct Path {
    const WorldPoint* points;   // of all outlines, one behind the other
    const std::size_t* counts;  // of each outline
    std::size_t outlines;
    bool filled;  // outlines are closed by themselves then
};

// How far letters reach below the base line, in heights of a capital letter.
constexpr double kTextDescent = 0.28;

// A line of Unicode text. Lengths are drawing units.
struct UnicodeText {
    WorldPoint at;
    double height;       // of a capital letter
    double widthFactor;  // 1: as the face draws it
    double fitWidth;     // above 0: the text is made this wide, whatever the face gives
    double angleDegrees;
    double obliqueDegrees;  // 0: upright
    int horizontal;         // `at` stands 0: at the text's left end, 1: in its middle, 2: at its right end
    int vertical;  // and 0: on the base line, 1: at the descenders' end, 2: in the middle of a capital, 3: at its top
    bool backward, upsideDown;
    bool underlined, overlined, struckOut;
    const char16_t* text;
    std::size_t length;
};

struct DrawingSink {
    // Sets `view` to these extents. False when there is nothing to draw on: the decoder gives up.
    //   kWipe  what was drawn before goes; also opens the drawing, so it is a decoder's first call
    //   kKeep  what was drawn before stays as it is
    enum FitMode { kWipe, kKeep };
    bool (*fit)(DrawingSink& sink, const WorldRect& extents, FitMode mode) = nullptr;
    // One element with pen `pen` modulo kPenCount. Clipped line ends are written back.
    void (*draw)(DrawingSink& sink, PreviewPrimitive& element, unsigned pen) = nullptr;
    void (*path)(DrawingSink& sink, const Path& path, unsigned pen) = nullptr;
    void (*unicodeText)(DrawingSink& sink, const UnicodeText& text) = nullptr;

    ViewTransform view = {};                          // from the last fit
    bool textsAsFrames = false;                       // texts are wanted as their bounding frames
    const std::atomic<std::int32_t>* goOn = nullptr;  // 1 while nobody has cancelled the run
    bool textsAreShiftJis = false;                    // set by a decoder: else texts are in the system's code page

    bool MayContinue() const { return goOn->load(std::memory_order_relaxed) == 1; }
};

// Decodes a whole file. Without a sink the comment alone is wanted. True when the drawing is complete; a decoder that
// is cancelled, or finds no drawing of its format, gives false.
using Decoder = bool (*)(ByteView file, Comment* comment, DrawingSink* sink);
