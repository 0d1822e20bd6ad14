// Files of every format, built from what they hold: by the tests where they need one, by the attacks, by kwbench.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>

using Parts = std::initializer_list<std::pair<std::size_t, std::string>>;  // texts at their offsets

// The bytes of a number, as a file has them.
template <typename T>
std::string Raw(const T& number) {
    return {reinterpret_cast<const char*>(&number), sizeof(number)};
}

// `bytes` with parts put in; as many zeros with them.
std::string Put(std::string bytes, Parts parts);
std::string BytesAt(std::size_t size, Parts parts);

// DXF text from group pairs: "0 LINE|10 5" becomes "  0\r\nLINE\r\n 10\r\n5\r\n".
std::string Dxf(const std::string& pairs);

// The same inside a header with the extents (0,0)-(width,height) and an entities section.
std::string DxfDrawing(int width, int height, const std::string& entities);

// A Windows bitmap file with a header of 40 bytes; rows bottom up, padded by the caller, or runs.
std::string BitmapFile(int width, int height, int bitsPerPixel, const std::string& palette, const std::string& pixels,
                       int compression = 0);

// ---- Native and backup drawings: records of 64 bytes, shown and on layer 0

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

// With a sheet (0,0)-(width,height).
enum NativeEdition { kEditionA, kEditionB };
// Layer 0 is shown, layer 1 is the current one, the others are hidden.
std::string NativeFile(NativeEdition edition, double width, double height, const std::string& records);
std::string BackupFile(double width, double height, const std::string& records);
