// What a decoder makes of a drawing and what it should.
#pragma once

#include <cstddef>
#include <string>

#include "generate/files.h"
#include "support/plot.h"

// ---- What is seen

// The comment of a file, in a buffer that ends at a guard page and must be zero behind the comment; labels are "<id>".
// No drawing is wanted unless `withSink`.
std::string CommentOf(Decoder decode, const std::string& file, std::size_t size, bool withSink = false);

// ---- What should be seen

Stroke PointStroke(double x, double y);
Stroke LineStroke(unsigned pen, double x1, double y1, double x2, double y2, std::uint32_t marks = 0);
Stroke ArcStroke(unsigned pen, double x, double y, double radius, double start, double end, std::uint32_t marks = 0);
Stroke FrameStroke(double x1, double y1, double x2, double y2, double centreX, double centreY, double angle = 0);
// `width` is a half-width character's.
Stroke TextStrokeOf(double x, double y, double height, double width, double spacing, double angle,
                    const std::string& text);
