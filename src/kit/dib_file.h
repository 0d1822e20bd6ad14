// Windows bitmap files, as bytes: headers, colour table and pixels, all checked. Knows no Windows.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kit/bytes.h"

// The 40-byte header; the system's BITMAPINFOHEADER field for field.
struct DibHeader {
    std::uint32_t size;
    std::int32_t width, height;  // a negative height: top row first
    std::uint16_t planes, depth;
    std::uint32_t compression, imageSize;
    std::int32_t xPerMeter, yPerMeter;
    std::uint32_t colorsUsed, colorsImportant;
};
static_assert(sizeof(DibHeader) == 40);

// Forms of `compression`.
constexpr std::uint32_t kPlainPixels = 0, kRunsOf8 = 1, kRunsOf4 = 2, kMaskedPixels = 3;

struct Dib {
    DibHeader header;
    std::uint32_t colors[256];  // the colour table, or the three masks; with the header it makes a BITMAPINFO
    ByteView pixels;            // at least as many as the header asks for
};

// False when the headers, the colour table or the pixels do not fit the bytes given.
bool ReadDib(ByteView file, Dib* dib);

inline bool HasRuns(const Dib& dib) { return dib.header.compression == kRunsOf8 || dib.header.compression == kRunsOf4; }

// The runs of a picture that is to be of plain pixels.
struct DibRuns {
    ByteView bytes;
    bool halves;             // two pixels in a byte
    std::uint8_t exchanged;  // the index that has changed places with 0
};

// Makes the header of a picture of runs one of plain pixels, 8 bits each. Where no run has been its memory stays
// untouched, so index 0 becomes black, or the darkest colour of a table that is full.
DibRuns TakeRuns(Dib* dib);

// Writes them, below the header that TakeRuns has left, into `header.imageSize` bytes that are zero.
void WriteRuns(const DibRuns& runs, const DibHeader& header, std::uint8_t* rows);
