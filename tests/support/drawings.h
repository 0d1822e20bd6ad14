// Native and backup drawings, built record by record, what a decoder makes of them and what it should.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "support/plot.h"
#include "support/samples.h"

// `bytes` with other bytes put at their offsets.
std::string Put(std::string bytes, std::initializer_list<std::pair<std::size_t, std::string>> parts);

// ---- Records of 64 bytes, shown and on layer 0

std::string PointRecord(double x, double y);
std::string LineRecord(double x1, double y1, double x2, double y2, unsigned attributes = 0);
std::string ArcRecord(double x, double y, double radius, double start, double end, unsigned attributes = 0);

struct TextLook {
    float x, y, height, width, spacing, angle;  // the width is a full-width character's
};
constexpr unsigned Justified(unsigned horizontal, unsigned vertical) { return horizontal << 7 | vertical << 5; }

constexpr unsigned kNoLink = 65535;
// A native text; at most 14 bytes of it fit.
std::string TextRecord(const TextLook& look, unsigned placement, const std::string& text, unsigned link = kNoLink);
std::string ContinuationRecord(const std::string& text, unsigned link = kNoLink, unsigned status = 0);
// A backup drawing's text, of which only the length is known.
std::string CountedTextRecord(const TextLook& look, unsigned placement, unsigned count);

// ---- Files with a sheet (0,0)-(width,height)

enum NativeEdition { kEditionA, kEditionB };
// Layer 0 is shown, layer 1 is the current one, the others are hidden.
std::string NativeFile(NativeEdition edition, double width, double height, const std::string& records);
std::string BackupFile(double width, double height, const std::string& records);

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
