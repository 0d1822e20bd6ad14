// Drawings as text without a device: what a decoder or an element strokes, stroke by stroke and on a grid.
#pragma once

#include <string>
#include <vector>

#include "preview/formats/sink.h"

// What the decoder makes of a file: a grid of width x height pixels, those of the raster, in which each stroke leaves
// the hexadecimal digit of its pen, the higher above the lower, an area '#' below them and a point '*' above them; and
// a line for each text: its corner, size, space between characters, angle, letters; for Unicode its place,
// justification, height x width factor (or width), angle, slant, letters. Empty when it gives no drawing.
std::string PlotOf(Decoder decode, const std::string& file, int width, int height, bool textsAsFrames);

// The same for elements on a sheet of as many units.
struct Stroke {
    unsigned pen;
    PreviewPrimitive primitive;
};
std::string PlotOf(const std::vector<Stroke>& strokes, int width, int height);

// The picture of that name in tests/preview/pictures.txt.
std::string KeptPicture(const std::string& name);
