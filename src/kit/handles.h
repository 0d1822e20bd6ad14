// Scope guards for the handles of the platform: one owner for each handle, released at the end of its scope.
//
// Declare what is selected into a device context before the context, or end its Selection first: GDI does not delete
// an object that is still selected.
#pragma once

#include <windows.h>

#include <memory>

template <typename Handle>
struct GdiDelete {
    using pointer = Handle;
    void operator()(Handle object) const { DeleteObject(object); }
};
using UniqueBitmap = std::unique_ptr<HBITMAP, GdiDelete<HBITMAP>>;
using UniqueBrush = std::unique_ptr<HBRUSH, GdiDelete<HBRUSH>>;
using UniquePen = std::unique_ptr<HPEN, GdiDelete<HPEN>>;
using UniqueFont = std::unique_ptr<HFONT, GdiDelete<HFONT>>;

// A memory device context of our own.
struct DcDelete {
    using pointer = HDC;
    void operator()(HDC dc) const { DeleteDC(dc); }
};
using UniqueDc = std::unique_ptr<HDC, DcDelete>;

// A window's device context, or the screen's for a null window.
struct WindowDc {
    const HWND window;
    const HDC dc;
    explicit WindowDc(HWND source) : window(source), dc(GetDC(source)) {}
    ~WindowDc() {
        if (dc) ReleaseDC(window, dc);
    }
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;
};

// Selects an object for the length of a scope.
struct Selection {
    const HDC dc;
    const HGDIOBJ previous;
    Selection(HDC target, HGDIOBJ object) : dc(target), previous(SelectObject(target, object)) {}
    ~Selection() { SelectObject(dc, previous); }
    Selection(const Selection&) = delete;
    Selection& operator=(const Selection&) = delete;
};

// A kernel handle whose "none" is null (threads) or INVALID_HANDLE_VALUE (files): test with IsOpen.
struct KernelHandleClose {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const {
        if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
    }
};
using UniqueHandle = std::unique_ptr<HANDLE, KernelHandleClose>;
inline bool IsOpen(const UniqueHandle& handle) { return handle && handle.get() != INVALID_HANDLE_VALUE; }

// A directory search.
struct FindDelete {
    using pointer = HANDLE;
    void operator()(HANDLE search) const {
        if (search != INVALID_HANDLE_VALUE) FindClose(search);
    }
};
using UniqueFind = std::unique_ptr<HANDLE, FindDelete>;

struct LocalDelete {
    void operator()(void* memory) const { LocalFree(memory); }
};
template <typename T>
using UniqueLocal = std::unique_ptr<T, LocalDelete>;

struct IconDelete {
    using pointer = HICON;
    void operator()(HICON icon) const { DestroyIcon(icon); }
};
using UniqueIcon = std::unique_ptr<HICON, IconDelete>;

// Shows the wait cursor for the length of a scope.
struct WaitCursor {
    const HCURSOR previous;
    WaitCursor() : previous(SetCursor(LoadCursorA(nullptr, IDC_WAIT))) {}
    ~WaitCursor() { SetCursor(previous); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

// Holds a flag up for the length of a scope: what handlers that let messages through do one at a time.
struct Raised {
    bool& flag;
    explicit Raised(bool& raised) : flag(raised) { flag = true; }
    ~Raised() { flag = false; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;
};
