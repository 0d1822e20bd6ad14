// Windows bitmap files: a file header, an info header of several generations, a colour table, rows of pixels.
//
// Every header is turned into the 40-byte one with its masks or colours behind it, all sizes checked, before GDI sees
// anything of it.
#include "kit/dib_file.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

constexpr std::size_t kFileHeaderSize = 14;
constexpr std::size_t kPixelsOffsetAt = 10;
constexpr std::uint32_t kCoreHeaderSize = 12;
constexpr std::uint32_t kInfoHeaderSize = 40;
constexpr std::int32_t kMaxSide = 16384;
constexpr std::int64_t kMaxPixels = std::int64_t{1} << 26;  // a quarter of a gigabyte in screen colours

// The 12-byte header, with 16-bit sizes.
bool ReadCoreHeader(ByteView file, DibHeader* header) {
    std::uint16_t width, height, planes, depth;
    if (!ReadAt(file, kFileHeaderSize + 4, &width) || !ReadAt(file, kFileHeaderSize + 6, &height) ||
        !ReadAt(file, kFileHeaderSize + 8, &planes) || !ReadAt(file, kFileHeaderSize + 10, &depth)) {
        return false;
    }
    *header = {};
    header->width = width;
    header->height = height;
    header->planes = planes;
    header->depth = depth;
    return true;
}

bool IsKnownForm(const DibHeader& header) {
    switch (header.compression) {
        case kPlainPixels:
            switch (header.depth) {
                case 1:
                case 4:
                case 8:
                case 16:
                case 24:
                case 32: return true;
                default: return false;
            }
        case kRunsOf8: return header.depth == 8 && header.height > 0;
        case kRunsOf4: return header.depth == 4 && header.height > 0;
        case kMaskedPixels: return header.depth == 16 || header.depth == 32;
        default: return false;
    }
}

bool HasSaneSize(const DibHeader& header) {
    const std::int64_t width = header.width;
    const std::int64_t height = std::abs(std::int64_t{header.height});
    return width > 0 && width <= kMaxSide && height > 0 && height <= kMaxSide && width * height <= kMaxPixels;
}

// Reads the colour table or the masks that stand at `offset`.
bool ReadColors(ByteView file, std::size_t offset, bool core, Dib* dib) {
    DibHeader& header = dib->header;
    std::uint32_t count = 0;
    if (header.compression == kMaskedPixels) {
        count = 3;
        header.colorsUsed = 0;
        offset = kFileHeaderSize + kInfoHeaderSize;  // inside the longer headers, behind the 40-byte one
    } else if (header.depth <= 8) {
        const std::uint32_t most = 1u << header.depth;
        count = header.colorsUsed == 0 ? most : std::min<std::uint32_t>(header.colorsUsed, most);
        header.colorsUsed = count;
    } else {
        header.colorsUsed = 0;
    }
    for (std::uint32_t i = 0; i < count; ++i, offset += core ? 3 : 4) {
        std::uint8_t triple[3];
        if (core && ReadAt(file, offset, &triple)) {
            dib->colors[i] = static_cast<std::uint32_t>(triple[0] | triple[1] << 8 | triple[2] << 16);
        } else if (core || !ReadAt(file, offset, &dib->colors[i])) {
            return false;
        }
    }
    return true;
}

// Finds the pixels and says how many bytes GDI may read.
bool FindPixels(ByteView file, Dib* dib) {
    DibHeader& header = dib->header;
    std::uint32_t offset = 0;
    if (!ReadAt(file, kPixelsOffsetAt, &offset) || offset > file.size) return false;
    dib->pixels = {file.data + offset, file.size - offset};
    if (HasRuns(*dib)) {
        const bool isSaid = header.imageSize != 0 && header.imageSize < dib->pixels.size;
        if (!isSaid) header.imageSize = static_cast<std::uint32_t>(dib->pixels.size);
        return header.imageSize != 0;
    }
    const std::uint64_t rowSize = (static_cast<std::uint64_t>(header.width) * header.depth + 31) / 32 * 4;
    const std::uint64_t size = rowSize * static_cast<std::uint64_t>(std::abs(std::int64_t{header.height}));
    header.imageSize = static_cast<std::uint32_t>(size);
    return size <= dib->pixels.size;
}

}  // namespace

bool ReadDib(ByteView file, Dib* dib) {
    std::uint32_t headerSize = 0;
    if (!MatchAt(file, 0, "BM") || !ReadAt(file, kFileHeaderSize, &headerSize)) return false;
    const bool core = headerSize == kCoreHeaderSize;
    if (core) {
        if (!ReadCoreHeader(file, &dib->header)) return false;
    } else if (headerSize < kInfoHeaderSize || headerSize > file.size || !ReadAt(file, kFileHeaderSize, &dib->header)) {
        return false;
    }
    dib->header.size = kInfoHeaderSize;
    dib->header.planes = 1;
    return IsKnownForm(dib->header) && HasSaneSize(dib->header) &&
           ReadColors(file, kFileHeaderSize + headerSize, core, dib) && FindPixels(file, dib);
}

// ---- Pictures of runs

static int Brightness(std::uint32_t color) {
    return static_cast<int>((color & 0xFF) + (color >> 8 & 0xFF) + (color >> 16 & 0xFF));
}

DibRuns TakeRuns(Dib* dib) {
    DibHeader& header = dib->header;
    const DibRuns runs = {{dib->pixels.data, header.imageSize}, header.compression == kRunsOf4, 0};
    if (header.colorsUsed < 256) dib->colors[header.colorsUsed++] = 0;
    std::uint32_t* const darkest =
        std::min_element(dib->colors, dib->colors + header.colorsUsed,
                         [](std::uint32_t a, std::uint32_t b) { return Brightness(a) < Brightness(b); });
    std::swap(*dib->colors, *darkest);
    header.compression = kPlainPixels;
    header.depth = 8;
    header.imageSize = static_cast<std::uint32_t>((header.width + 3) / 4 * 4 * header.height);
    return {runs.bytes, runs.halves, static_cast<std::uint8_t>(darkest - dib->colors)};
}

void WriteRuns(const DibRuns& runs, const DibHeader& header, std::uint8_t* rows) {
    const ByteView bytes = runs.bytes;
    const std::size_t width = static_cast<std::size_t>(header.width), height = static_cast<std::size_t>(header.height),
                      stride = (width + 3) / 4 * 4;
    std::size_t x = 0, y = 0;  // the bottom row first
    const auto put = [&](unsigned byte, std::size_t position) {
        const unsigned index = !runs.halves ? byte : position % 2 ? byte & 15 : byte >> 4;
        const unsigned moved = index == runs.exchanged ? 0 : index == 0 ? runs.exchanged : index;
        if (x < width) rows[y * stride + x++] = static_cast<std::uint8_t>(moved);
    };
    for (std::size_t at = 0; y < height && bytes.size - at >= 2;) {
        const std::size_t count = bytes.data[at];
        const std::uint8_t value = bytes.data[at + 1];
        at += 2;
        if (count > 0) {
            for (std::size_t i = 0; i < count; ++i) put(value, i);
        } else if (value == 0) {  // the row's end
            x = 0;
            ++y;
        } else if (value == 1) {  // the picture's end
            return;
        } else if (value == 2) {  // a step to the right and up
            if (bytes.size - at < 2) return;
            x = std::min(x + bytes.data[at], width);
            y += bytes.data[at + 1];
            at += 2;
        } else {  // so many pixels one by one, filled up to an even number of bytes
            const std::size_t size = runs.halves ? (value + 1u) / 2 : value;
            if (bytes.size - at < size) return;
            for (std::size_t i = 0; i < value; ++i) put(bytes.data[at + (runs.halves ? i / 2 : i)], i);
            at += std::min(size + size % 2, bytes.size - at);
        }
    }
}
