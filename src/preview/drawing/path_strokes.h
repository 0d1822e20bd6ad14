// Lines of many points and filled areas as strokes. Knows no Windows.
#pragma once

#include <vector>

#include "preview/drawing/strokes.h"

// The outlines lie one behind the other in `points`, `counts` says how many each has. What lies outside the window is
// left out of lines; `scratch` is used again from call to call.
void DrawOutlines(StrokeTarget& target, const ViewTransform& view, const WorldPoint* points, const std::size_t* counts,
                  std::size_t outlines, unsigned pen, std::vector<PixelPoint>* scratch);

// Fills what an odd number of outlines encloses, and draws the outlines, so that what is thinner than a pixel shows.
void FillOutlines(StrokeTarget& target, const ViewTransform& view, const WorldPoint* points, const std::size_t* counts,
                  std::size_t outlines, unsigned pen, std::vector<PixelPoint>* scratch);
