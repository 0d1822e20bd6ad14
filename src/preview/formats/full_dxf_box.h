// A sink that only grows a box, and leaves strays out of it.
//
// An element is a stray when it stands far apart: at most one element in twenty (and one of a few, from four on) may
// lie beyond a gap of 32 times what remains without them. A picture of all would show the rest as a dot; what is left
// out is clipped. Lines that reach from the rest to far away are no strays.
#pragma once

#include "preview/formats/sink.h"

struct BoxSink : DrawingSink {
    BoxSink();

    void Clear();
    // The box of all that was drawn but strays; false when nothing was.
    bool Box(WorldRect* box);
    void Grow(const WorldRect& element);
    // Whether elements that all lie in the box could change the result otherwise than by their number.
    bool Matters(const WorldRect& box) const;

    std::size_t count = 0;
    WorldRect all = {};

private:
    static constexpr int kMost = 32;
    // The elements that reach farthest to one side, the farthest first.
    struct Extremes {
        WorldRect rows[kMost] = {};
        int count = 0;
    } extremes[4];    // left, right, bottom, top
    double least[4];  // how far an element must reach to become one; below all until there are enough

    void Keep(Extremes* side, int which, const WorldRect& element);
};

// The box of a text, by the widths of a common face: a decoder cannot ask a font.
WorldRect BoxOfText(const UnicodeText& text);
double WidthOfText(const char16_t* text, std::size_t length, double height);  // as the face draws it

// The corners of a text's box, lower left first, counter-clockwise before mirroring.
void FrameOfText(const UnicodeText& text, WorldPoint corners[4]);
