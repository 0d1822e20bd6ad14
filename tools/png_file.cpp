#include "png_file.h"

#include <objidl.h>

// The GDI+ headers use the min and max macros that NOMINMAX leaves out.
#include <algorithm>
namespace Gdiplus {
using std::max;  // NOLINT(misc-unused-using-decls): some editions of the headers need them
using std::min;  // NOLINT(misc-unused-using-decls)
}  // namespace Gdiplus
#include <gdiplus.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace api = Gdiplus::DllExports;

// GDI+ for as long as the record lives.
struct GdiPlusSession {
    ULONG_PTR token = 0;
    bool started = false;
    GdiPlusSession() {
        const Gdiplus::GdiplusStartupInput input;
        started = Gdiplus::GdiplusStartup(&token, &input, nullptr) == Gdiplus::Ok;
    }
    ~GdiPlusSession() {
        if (started) Gdiplus::GdiplusShutdown(token);
    }
    GdiPlusSession(const GdiPlusSession&) = delete;
    GdiPlusSession& operator=(const GdiPlusSession&) = delete;
};

struct ImageDispose {
    void operator()(Gdiplus::GpBitmap* image) const { api::GdipDisposeImage(image); }
};

using UniqueImage = std::unique_ptr<Gdiplus::GpBitmap, ImageDispose>;

static UniqueImage ImageOf(HBITMAP bitmap) {
    Gdiplus::GpBitmap* image = nullptr;
    api::GdipCreateBitmapFromHBITMAP(bitmap, nullptr, &image);
    return UniqueImage(image);
}

// The index of a colour in a palette, which grows by it; false when the palette is full.
static bool IndexOf(std::uint32_t color, Gdiplus::ColorPalette* palette, UINT capacity, std::uint8_t* index) {
    UINT at = 0;
    while (at < palette->Count && palette->Entries[at] != color) ++at;
    if (at == capacity) return false;
    if (at == palette->Count) palette->Entries[palette->Count++] = color;
    *index = static_cast<std::uint8_t>(at);
    return true;
}

// A drawing has a few colours, and the encoder's time is that of the bytes that it compresses: half a byte a pixel
// instead of three. Null for a bitmap of more than 16 colours, and for one of two, which is small already. The image
// looks at `indices`.
static UniqueImage ImageOfFewColors(HBITMAP bitmap, std::vector<std::uint8_t>* indices) {
    constexpr UINT kColors = 16;
    constexpr std::uint32_t kOpaque = 0xFF000000;
    BITMAP header = {};
    if (!GetObjectA(bitmap, sizeof(header), &header) || header.bmBitsPixel == 1) return nullptr;
    const auto width = static_cast<std::size_t>(header.bmWidth), height = static_cast<std::size_t>(header.bmHeight);
    const std::size_t stride = (width + 7) / 8 * 4;
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(info.bmiHeader), header.bmWidth, -header.bmHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    std::vector<std::uint32_t> pixels(width * height);
    const HDC screen = GetDC(nullptr);
    const int lines =
        GetDIBits(screen, bitmap, 0, static_cast<UINT>(header.bmHeight), pixels.data(), &info, DIB_RGB_COLORS);
    ReleaseDC(nullptr, screen);
    if (lines != header.bmHeight) return nullptr;

    alignas(Gdiplus::ColorPalette)
        std::uint8_t storage[sizeof(Gdiplus::ColorPalette) + kColors * sizeof(Gdiplus::ARGB)] = {};
    auto* const palette = reinterpret_cast<Gdiplus::ColorPalette*>(storage);
    indices->assign(stride * height, 0);
    std::uint32_t last = 0;
    std::uint8_t index = 0;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const std::uint32_t color = pixels[i] | kOpaque;
        if (color != last && !IndexOf(color, palette, kColors, &index)) return nullptr;
        last = color;
        const std::size_t x = i % width;
        (*indices)[i / width * stride + x / 2] |= static_cast<std::uint8_t>(x % 2 ? index : index << 4);
    }
    Gdiplus::GpBitmap* image = nullptr;
    api::GdipCreateBitmapFromScan0(header.bmWidth, header.bmHeight, static_cast<INT>(stride), PixelFormat4bppIndexed,
                                   indices->data(), &image);
    if (image) api::GdipSetImagePalette(image, palette);
    return UniqueImage(image);
}

struct StreamRelease {
    void operator()(IStream* stream) const { stream->Release(); }
};
using UniqueStream = std::unique_ptr<IStream, StreamRelease>;

// The picture as a PNG file in memory; null when there is none.
static UniqueStream Encode(HBITMAP bitmap) {
    static constexpr CLSID kPngEncoder = {0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
    static const GdiPlusSession session;  // starting it takes longer than to encode a picture
    if (!session.started) return nullptr;
    std::vector<std::uint8_t> indices;
    UniqueImage image = ImageOfFewColors(bitmap, &indices);
    if (!image) image = ImageOf(bitmap);
    if (!image) return nullptr;
    IStream* memory = nullptr;
    if (CreateStreamOnHGlobal(nullptr, TRUE, &memory) != S_OK) return nullptr;
    UniqueStream stream(memory);
    if (api::GdipSaveImageToStream(image.get(), memory, &kPngEncoder, nullptr) != Gdiplus::Ok) return nullptr;
    return stream;
}

// Written by our own hand: the encoder does not tell of a disk that is full. Makes a new file only; what cannot be
// written whole is removed. 0, or the system's error code.
static DWORD WriteNew(IStream* stream, const wchar_t* path) {
    STATSTG status = {};
    HGLOBAL block = nullptr;
    if (stream->Stat(&status, STATFLAG_NONAME) != S_OK || GetHGlobalFromStream(stream, &block) != S_OK) {
        return ERROR_WRITE_FAULT;
    }
    const HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return GetLastError();
    DWORD written = 0;
    WriteFile(file, GlobalLock(block), status.cbSize.LowPart, &written, nullptr);
    GlobalUnlock(block);
    if (CloseHandle(file) && written == status.cbSize.LowPart) return ERROR_SUCCESS;
    DeleteFileW(path);
    return ERROR_WRITE_FAULT;
}

bool SavePng(HBITMAP bitmap, const wchar_t* path) {
    const UniqueStream stream = Encode(bitmap);
    if (!stream) return false;
    const DWORD error = WriteNew(stream.get(), path);
    if (error != ERROR_FILE_EXISTS) return error == ERROR_SUCCESS;
    const std::wstring unfinished = std::wstring(path) + L".part";
    DeleteFileW(unfinished.c_str());  // left by a run that was killed
    if (WriteNew(stream.get(), unfinished.c_str()) != ERROR_SUCCESS) return false;
    if (MoveFileExW(unfinished.c_str(), path, MOVEFILE_REPLACE_EXISTING)) return true;
    DeleteFileW(unfinished.c_str());
    return false;
}

bool SavePng(HBITMAP bitmap, const char* path) {
    wchar_t widePath[MAX_PATH];
    return MultiByteToWideChar(CP_ACP, 0, path, -1, widePath, MAX_PATH) && SavePng(bitmap, widePath);
}
