#include "kit/dib.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "kit/dib_file.h"
#include "kit/handles.h"

static_assert(sizeof(DibHeader) == sizeof(BITMAPINFOHEADER));
static_assert(offsetof(Dib, colors) == sizeof(BITMAPINFOHEADER));  // together they are a BITMAPINFO

// Whether a picture in the screen's colours, and once more for the system's conversion, is within reason for a file of
// that size.
static bool AffordsScreenColors(const Dib& dib, std::size_t fileSize) {
    constexpr std::uint64_t kAllowance = std::uint64_t{64} << 20, kMostPerByte = 4, kScreenPixel = 4;
    const std::uint64_t pixels = static_cast<std::uint64_t>(dib.header.width) *
                                 static_cast<std::uint64_t>(std::abs(std::int64_t{dib.header.height}));
    return fileSize + 2 * kScreenPixel * pixels <= kMostPerByte * fileSize + kAllowance;
}

static HBITMAP CreateInScreenColors(const Dib& dib) {
    const WindowDc screen(nullptr);
    if (!screen.dc) return nullptr;
    return CreateDIBitmap(screen.dc, reinterpret_cast<const BITMAPINFOHEADER*>(&dib.header), CBM_INIT, dib.pixels.data,
                          reinterpret_cast<const BITMAPINFO*>(&dib), DIB_RGB_COLORS);
}

// The pixels stay as they are in the file; runs become pixels.
static HBITMAP CreateInOwnColors(Dib dib) {
    const DibRuns runs = HasRuns(dib) ? TakeRuns(&dib) : DibRuns();
    void* rows = nullptr;
    const HBITMAP bitmap =
        CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO*>(&dib), DIB_RGB_COLORS, &rows, nullptr, 0);
    if (!bitmap) return nullptr;
    if (runs.bytes.data) WriteRuns(runs, dib.header, static_cast<std::uint8_t*>(rows));
    else std::memcpy(rows, dib.pixels.data, dib.header.imageSize);
    return bitmap;
}

HBITMAP BitmapFromDibFile(ByteView file) {
    Dib dib = {};
    if (!ReadDib(file, &dib)) return nullptr;
    return AffordsScreenColors(dib, file.size) ? CreateInScreenColors(dib) : CreateInOwnColors(dib);
}
