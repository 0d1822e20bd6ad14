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

struct StreamRelease {
    void operator()(IStream* stream) const { stream->Release(); }
};
using UniqueStream = std::unique_ptr<IStream, StreamRelease>;

// The picture as a PNG file in memory; null when there is none.
static UniqueStream Encode(HBITMAP bitmap) {
    static constexpr CLSID kPngEncoder = {0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
    static const GdiPlusSession session;  // starting it takes longer than to encode a picture
    if (!session.started) return nullptr;
    Gdiplus::GpBitmap* image = nullptr;
    if (api::GdipCreateBitmapFromHBITMAP(bitmap, nullptr, &image) != Gdiplus::Ok) return nullptr;
    const std::unique_ptr<Gdiplus::GpBitmap, ImageDispose> owner(image);
    IStream* memory = nullptr;
    if (CreateStreamOnHGlobal(nullptr, TRUE, &memory) != S_OK) return nullptr;
    UniqueStream stream(memory);
    if (api::GdipSaveImageToStream(image, memory, &kPngEncoder, nullptr) != Gdiplus::Ok) return nullptr;
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
