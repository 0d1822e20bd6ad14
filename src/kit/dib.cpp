// Windows bitmap files: a file header, an info header of several generations, a colour table, rows of pixels.
//
// Every header is turned into the 40-byte one with its masks or colours behind it, all sizes checked, before GDI sees
// anything of it.
#include "kit/dib.h"

#include <algorithm>
#include <cstdint>

#include "kit/handles.h"

namespace {

constexpr std::size_t kFileHeaderSize = 14;
constexpr std::size_t kPixelsOffsetAt = 10;
constexpr std::uint32_t kCoreHeaderSize = 12;
constexpr std::uint32_t kInfoHeaderSize = 40;
constexpr std::int32_t kMaxSide = 16384;
constexpr std::int64_t kMaxPixels = std::int64_t{1} << 26;  // a quarter of a gigabyte in screen colours

struct Dib {
    BITMAPINFOHEADER header;
    std::uint32_t colors[256];  // the colour table, or the three masks
    ByteView pixels;
};

// The 12-byte header, with 16-bit sizes.
bool ReadCoreHeader(ByteView file, BITMAPINFOHEADER* header) {
    std::uint16_t width, height, planes, depth;
    if (!ReadAt(file, kFileHeaderSize + 4, &width) || !ReadAt(file, kFileHeaderSize + 6, &height) ||
        !ReadAt(file, kFileHeaderSize + 8, &planes) || !ReadAt(file, kFileHeaderSize + 10, &depth)) {
        return false;
    }
    *header = {};
    header->biWidth = width;
    header->biHeight = height;
    header->biPlanes = planes;
    header->biBitCount = depth;
    return true;
}

bool IsKnownForm(const BITMAPINFOHEADER& header) {
    switch (header.biCompression) {
        case BI_RGB:
            switch (header.biBitCount) {
                case 1:
                case 4:
                case 8:
                case 16:
                case 24:
                case 32: return true;
                default: return false;
            }
        case BI_RLE8: return header.biBitCount == 8 && header.biHeight > 0;
        case BI_RLE4: return header.biBitCount == 4 && header.biHeight > 0;
        case BI_BITFIELDS: return header.biBitCount == 16 || header.biBitCount == 32;
        default: return false;
    }
}

bool HasSaneSize(const BITMAPINFOHEADER& header) {
    const std::int64_t width = header.biWidth;
    const std::int64_t height = std::abs(std::int64_t{header.biHeight});
    return width > 0 && width <= kMaxSide && height > 0 && height <= kMaxSide && width * height <= kMaxPixels;
}

// Reads the colour table or the masks that stand at `offset`.
bool ReadColors(ByteView file, std::size_t offset, bool core, Dib* dib) {
    BITMAPINFOHEADER& header = dib->header;
    std::uint32_t count = 0;
    if (header.biCompression == BI_BITFIELDS) {
        count = 3;
        header.biClrUsed = 0;
        offset = kFileHeaderSize + kInfoHeaderSize;  // inside the longer headers, behind the 40-byte one
    } else if (header.biBitCount <= 8) {
        const std::uint32_t most = 1u << header.biBitCount;
        count = header.biClrUsed == 0 ? most : std::min<std::uint32_t>(header.biClrUsed, most);
        header.biClrUsed = count;
    } else {
        header.biClrUsed = 0;
    }
    for (std::uint32_t i = 0; i < count; ++i, offset += core ? 3 : 4) {
        std::uint8_t triple[3];
        if (core && ReadAt(file, offset, &triple)) {
            dib->colors[i] = triple[0] | triple[1] << 8 | triple[2] << 16;
        } else if (core || !ReadAt(file, offset, &dib->colors[i])) {
            return false;
        }
    }
    return true;
}

// Finds the pixels and says how many bytes GDI may read.
bool FindPixels(ByteView file, Dib* dib) {
    BITMAPINFOHEADER& header = dib->header;
    std::uint32_t offset = 0;
    if (!ReadAt(file, kPixelsOffsetAt, &offset) || offset > file.size) return false;
    dib->pixels = {file.data + offset, file.size - offset};
    if (header.biCompression == BI_RLE8 || header.biCompression == BI_RLE4) {
        const bool isSaid = header.biSizeImage != 0 && header.biSizeImage < dib->pixels.size;
        if (!isSaid) header.biSizeImage = static_cast<DWORD>(dib->pixels.size);
        return header.biSizeImage != 0;
    }
    const std::uint64_t rowSize = (static_cast<std::uint64_t>(header.biWidth) * header.biBitCount + 31) / 32 * 4;
    const std::uint64_t size = rowSize * static_cast<std::uint64_t>(std::abs(std::int64_t{header.biHeight}));
    header.biSizeImage = static_cast<DWORD>(size);
    return size <= dib->pixels.size;
}

bool ReadDib(ByteView file, Dib* dib) {
    std::uint32_t headerSize = 0;
    if (!MatchAt(file, 0, "BM") || !ReadAt(file, kFileHeaderSize, &headerSize)) return false;
    const bool core = headerSize == kCoreHeaderSize;
    if (core) {
        if (!ReadCoreHeader(file, &dib->header)) return false;
    } else if (headerSize < kInfoHeaderSize || headerSize > file.size || !ReadAt(file, kFileHeaderSize, &dib->header)) {
        return false;
    }
    dib->header.biSize = kInfoHeaderSize;
    dib->header.biPlanes = 1;
    return IsKnownForm(dib->header) && HasSaneSize(dib->header) &&
           ReadColors(file, kFileHeaderSize + headerSize, core, dib) && FindPixels(file, dib);
}

}  // namespace

HBITMAP BitmapFromDibFile(ByteView file) {
    static_assert(offsetof(Dib, colors) == sizeof(BITMAPINFOHEADER));  // together they are a BITMAPINFO
    Dib dib = {};
    if (!ReadDib(file, &dib)) return nullptr;
    const WindowDc screen(nullptr);
    if (!screen.dc) return nullptr;
    return CreateDIBitmap(screen.dc, &dib.header, CBM_INIT, dib.pixels.data, reinterpret_cast<const BITMAPINFO*>(&dib),
                          DIB_RGB_COLORS);
}
