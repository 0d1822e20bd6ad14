#include "png_file.h"

#include <objidl.h>

// The GDI+ headers use the min and max macros that NOMINMAX leaves out.
#include <algorithm>
namespace Gdiplus {
using std::max;  // NOLINT(misc-unused-using-decls): some editions of the headers need them
using std::min;  // NOLINT(misc-unused-using-decls)
}  // namespace Gdiplus
#include <gdiplus.h>

#include <memory>
#include <string>

namespace api = Gdiplus::DllExports;

// GDI+ for the length of a scope.
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

static bool Encode(HBITMAP bitmap, const char* path) {
    static constexpr CLSID kPngEncoder = {0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
    wchar_t widePath[MAX_PATH];
    if (!MultiByteToWideChar(CP_ACP, 0, path, -1, widePath, MAX_PATH)) return false;
    const GdiPlusSession session;
    if (!session.started) return false;
    Gdiplus::GpBitmap* image = nullptr;
    if (api::GdipCreateBitmapFromHBITMAP(bitmap, nullptr, &image) != Gdiplus::Ok) return false;
    const std::unique_ptr<Gdiplus::GpBitmap, ImageDispose> owner(image);
    return api::GdipSaveImageToFile(image, widePath, &kPngEncoder, nullptr) == Gdiplus::Ok;
}

bool SavePng(HBITMAP bitmap, const char* path) {
    const std::string unfinished = std::string(path) + ".part";
    if (Encode(bitmap, unfinished.c_str()) && MoveFileExA(unfinished.c_str(), path, MOVEFILE_REPLACE_EXISTING)) {
        return true;
    }
    DeleteFileA(unfinished.c_str());
    return false;
}
