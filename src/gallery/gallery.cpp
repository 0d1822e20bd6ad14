#include "gallery/gallery.h"

#include <commctrl.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <string>

#include "frame/dialog_icons.h"
#include "frame/module.h"
#include "frame/services.h"
#include "gallery/gallery_grid.h"
#include "gallery/gallery_items.h"
#include "kit/guard.h"
#include "kit/handles.h"
#include "kit/layout.h"
#include "kit/paths.h"
#include "preview/dispatch.h"
#include "preview/drawing/placeholder.h"
#include "resources/resource.h"

namespace {

constexpr UINT_PTR kProgressTimer = 1;
constexpr UINT kProgressMilliseconds = 40;
constexpr UINT kAllFinished = WM_APP;  // posted by the worker
constexpr int kProgressRange = 100;

constexpr std::size_t kPoolSlack = 1024;

// What a caller asks for, see ShowGallery.
struct GalleryRequest {
    int listMode;
    const char* folder;
    const char* names;
    char* result;
    DWORD resultSize;
    DWORD renderMode;
};

RememberedSize rememberedSize;

// A running gallery. The worker reads names and fills thumbnails.
struct Gallery {
    GalleryRequest request = {};
    HWND dialog = nullptr, list = nullptr;
    GalleryItems items;
    GalleryGrid grid;
    UniqueLocal<std::uint8_t> pool;
    std::size_t poolSize = 0, poolUsed = 0;
    UniqueBitmap loading, noPreview, scratch;
    DialogIcons icons;
    Worker worker;
    std::atomic<int> finished = 0;  // items that the worker has done with
    int shown = 0;                  // those of them that the dialog has drawn
    bool isClosing = false;  // by the first word that the user has said; waiting for the worker lets more through
    LayoutRow rows[1] = {{IDC_GALLERY_LIST, kAnchorRight | kAnchorBottom}};
    DialogLayout layout = {rows, 1, &rememberedSize};
};

void WaitGalleryWorker(Gallery& gallery) { StopWorkerAndPump(&gallery.worker, gallery.dialog); }

// ---- Worker

// Keeps a thumbnail's bits; one that no longer fits the pool is dropped.
void StoreThumbnail(Gallery& gallery, GalleryItem& item, HBITMAP bitmap) {
    BITMAP shape = {};
    GetObjectA(bitmap, sizeof(shape), &shape);
    const auto size = static_cast<std::size_t>(shape.bmWidthBytes) * static_cast<std::size_t>(shape.bmHeight) *
                      static_cast<std::size_t>(shape.bmPlanes);
    if (size > gallery.poolSize - gallery.poolUsed) return;
    std::uint8_t* const bits = gallery.pool.get() + gallery.poolUsed;
    if (GetBitmapBits(bitmap, static_cast<LONG>(size), bits) == 0) return;
    gallery.poolUsed += size;
    item.bits = bits;
    item.bitsSize = size;  // the dialog may draw it from here on
}

// A run that gave nothing is made again when its cancel flag was not the reader's alone: it may have been stopped by a
// word that was meant for another reader.
UniqueBitmap ReadUndisturbed(const Gallery& gallery, const char* path) {
    for (;;) {
        const unsigned stores = PreviewCancelStores;
        UniqueBitmap bitmap(PreviewForGallery(gallery.request.renderMode, path, gallery.grid.thumbnail));
        if (bitmap || gallery.worker.stopRequested || PreviewCancelStores - stores <= kReaderStores) return bitmap;
    }
}

void MakeThumbnail(Gallery& gallery, GalleryItem& item) {
    const std::string path = JoinPath(gallery.request.folder, item.name);
    const UniqueBitmap bitmap = ReadUndisturbed(gallery, path.c_str());
    if (bitmap) StoreThumbnail(gallery, item, bitmap.get());
}

// Sends the dialog nothing, since waiting for it at each file would take longer than the thumbnails: the dialog looks
// at `finished` by its timer.
void FillGallery(void* argument) {
    Gallery& gallery = *static_cast<Gallery*>(argument);
    for (int i = 0; i < gallery.items.count && !gallery.worker.stopRequested; ++i) {
        GalleryItem& item = gallery.items[i];
        Guarded(0, [&] { return MakeThumbnail(gallery, item), 0; });
        item.flags |= kItemFinished;
        gallery.finished = i + 1;
    }
    PostMessageA(gallery.dialog, kAllFinished, 0, 0);
}

// ---- Progress

void RedrawItem(const Gallery& gallery, int index) {
    RECT cell, client, visible;
    GetClientRect(gallery.list, &client);
    if (SendMessageA(gallery.list, LB_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&cell)) ==
            LB_ERR ||
        !IntersectRect(&visible, &cell, &client)) {
        return;
    }
    InvalidateRect(gallery.list, &cell, FALSE);
}

// Shows how far the worker is and the thumbnails that it has finished since the last time.
void ShowProgress(Gallery& gallery) {
    const bool runs = gallery.worker.runs;
    const int finished = gallery.finished;
    while (gallery.shown < finished) RedrawItem(gallery, gallery.shown++);
    UpdateWindow(gallery.list);
    const HWND progress = GetDlgItem(gallery.dialog, IDC_GALLERY_PROGRESS);
    const HWND status = GetDlgItem(gallery.dialog, IDC_GALLERY_STATUS);
    if (!runs || finished == gallery.items.count) {
        KillTimer(gallery.dialog, kProgressTimer);
        ShowWindow(progress, SW_HIDE);
        ShowWindow(status, SW_HIDE);
    } else {
        const int position = MulDiv(finished + 1, kProgressRange, gallery.items.count);
        SendMessageA(progress, PBM_SETPOS, static_cast<WPARAM>(position), 0);
        SetWindowTextA(status, gallery.items[finished].name);
    }
}

void StartFilling(Gallery& gallery) {
    const HWND progress = GetDlgItem(gallery.dialog, IDC_GALLERY_PROGRESS);
    SendMessageA(progress, PBM_SETSTEP, 1, 0);
    SendMessageA(progress, PBM_SETRANGE, 0, MAKELPARAM(0, kProgressRange));
    SetTimer(gallery.dialog, kProgressTimer, kProgressMilliseconds, nullptr);
    StartWorker(&gallery.worker, FillGallery, &gallery);
    ShowProgress(gallery);
}

// ---- Opening

bool ListItems(Gallery& gallery) {
    const GalleryRequest& request = gallery.request;
    if (request.listMode) return ListNames(&gallery.items, request.names);
    const WaitCursor wait;
    return ListFolder(&gallery.items, request.folder, request.names);
}

bool MakePool(Gallery& gallery) {
    BITMAP shape = {};
    GetObjectA(gallery.loading.get(), sizeof(shape), &shape);
    const std::uint64_t size = static_cast<std::uint64_t>(shape.bmWidthBytes) *
                                   static_cast<std::uint64_t>(shape.bmHeight) * shape.bmPlanes *
                                   static_cast<std::uint64_t>(gallery.items.count) +
                               kPoolSlack;
    if (size > 0x7FFFFFFF) return false;
    gallery.poolSize = static_cast<std::size_t>(size);
    gallery.pool.reset(static_cast<std::uint8_t*>(LocalAlloc(LPTR, gallery.poolSize)));
    return gallery.pool != nullptr;
}

void MakeBitmaps(Gallery& gallery) {
    const RECT& size = gallery.grid.thumbnail;
    gallery.loading.reset(CreatePlaceholderBitmap(0, LoadResString(ThisModule(), IDS_LOADING), size));
    gallery.noPreview.reset(CreatePlaceholderBitmap(0, LoadResString(ThisModule(), IDS_NO_PREVIEW), size));
    gallery.scratch.reset(CreateBitmap(size.right, size.bottom, 1, 1, nullptr));
}

// One entry for each item, with its name as text so that typing finds it.
void FillList(Gallery& gallery) {
    SendMessageA(gallery.list, LB_INITSTORAGE, static_cast<WPARAM>(gallery.items.count), 32);
    for (int i = 0; i < gallery.items.count; ++i) {
        SendMessageA(gallery.list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(gallery.items[i].name));
        SendMessageA(gallery.list, LB_SETITEMDATA, static_cast<WPARAM>(i), i);
    }
    const int current = std::max(SelectByName(gallery.items, gallery.request.result ? gallery.request.result : ""), 0);
    gallery.items[current].flags |= kItemSelected;
    SendMessageA(gallery.list, LB_SETCURSEL, static_cast<WPARAM>(current), 0);
}

void ShowFolderInCaption(const Gallery& gallery) {
    if (!gallery.request.folder[0]) return;
    char caption[128];
    GetWindowTextA(gallery.dialog, caption, sizeof(caption));
    SetWindowTextA(gallery.dialog, (std::string(gallery.request.folder) + " - " + caption).c_str());
}

bool OpenGallery(Gallery& gallery) {
    gallery.grid = MakeGalleryGrid(gallery.list);
    MakeBitmaps(gallery);
    if (!ListItems(gallery) || gallery.items.count == 0 || !MakePool(gallery)) return false;
    StartLayout(gallery.dialog, &gallery.layout);
    FitGalleryGrid(gallery.list, gallery.grid);
    FillList(gallery);
    ShowFolderInCaption(gallery);
    StartFilling(gallery);
    return true;
}

// ---- Messages

INT_PTR OnInitDialog(HWND dialog, Gallery& gallery) {
    gallery.dialog = dialog;
    gallery.list = GetDlgItem(dialog, IDC_GALLERY_LIST);
    ShowDialogIcons(dialog, &gallery.icons);
    if (!OpenGallery(gallery)) {
        EndDialog(dialog, 0);
        return TRUE;
    }
    SetFocus(gallery.list);
    return FALSE;  // the focus is set
}

GalleryItem* FindSelected(const GalleryItems& items) {
    for (int i = 0; i < items.count; ++i) {
        if (items[i].flags & kItemSelected) return &items[i];
    }
    return nullptr;
}

void OnClose(Gallery& gallery, int result) {
    if (gallery.isClosing) return;
    gallery.isClosing = true;
    if (result == 1) {
        const GalleryItem* selected = FindSelected(gallery.items);
        if (selected && gallery.request.result && gallery.request.resultSize > 0) {
            lstrcpynA(gallery.request.result, selected->name, static_cast<int>(gallery.request.resultSize));
        }
    }
    WaitGalleryWorker(gallery);
    EndDialog(gallery.dialog, result);
}

// Deliberate: the flags become exactly "selected", so an item that has no picture shows "Loading..." again.
void OnSelectionChange(Gallery& gallery) {
    for (int i = 0; i < gallery.items.count; ++i) gallery.items[i].flags &= ~kItemSelected;
    const LRESULT current = SendMessageA(gallery.list, LB_GETCURSEL, 0, 0);
    if (current < 0 || current >= gallery.items.count) return;
    gallery.items[static_cast<int>(current)].flags = kItemSelected;
}

INT_PTR OnCommand(Gallery& gallery, int id, int notification) {
    switch (id) {
        case IDOK: OnClose(gallery, 1); return TRUE;
        case IDCANCEL: OnClose(gallery, 0); return TRUE;
        case IDC_GALLERY_LIST:
            if (notification != LBN_SELCHANGE && notification != LBN_DBLCLK) return FALSE;
            OnSelectionChange(gallery);
            if (notification == LBN_DBLCLK) PostMessageA(gallery.dialog, WM_COMMAND, IDOK, 0);
            return TRUE;
        default: return FALSE;
    }
}

// The bitmap that stands for an item now; its bits are put into the scratch bitmap first.
HBITMAP PictureOf(const Gallery& gallery, const GalleryItem& item) {
    if (const std::size_t size = item.bitsSize) {
        SetBitmapBits(gallery.scratch.get(), static_cast<DWORD>(size), item.bits);
        return gallery.scratch.get();
    }
    return item.flags & kItemFinished ? gallery.noPreview.get() : gallery.loading.get();
}

INT_PTR OnDrawItem(const Gallery& gallery, const DRAWITEMSTRUCT& draw) {
    if (draw.CtlID != IDC_GALLERY_LIST || draw.itemID >= static_cast<UINT>(gallery.items.count)) return FALSE;
    const GalleryItem& item = gallery.items[static_cast<int>(draw.itemID)];
    const bool whole = draw.itemAction & ODA_DRAWENTIRE;
    DrawGalleryCell(draw, gallery.grid, item.name, whole ? PictureOf(gallery, item) : nullptr);
    return TRUE;
}

INT_PTR OnSize(const Gallery& gallery) {
    FitGalleryGrid(gallery.list, gallery.grid);
    return TRUE;
}

// So small that one row of three columns is whole and the buttons still have their place.
INT_PTR OnMinMaxInfo(const Gallery& gallery, MINMAXINFO* info) {
    const SIZE whole = gallery.layout.recordedSize, less = GalleryGridShrink(gallery.grid, 3, 1);
    info->ptMinTrackSize = {whole.cx - less.cx, whole.cy - less.cy};
    return TRUE;
}

INT_PTR OnDestroy(Gallery& gallery) {
    gallery.isClosing = true;
    WaitGalleryWorker(gallery);
    return TRUE;
}

INT_PTR CALLBACK GalleryProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) SetWindowLongPtrA(dialog, DWLP_USER, lParam);
    auto* gallery = reinterpret_cast<Gallery*>(GetWindowLongPtrA(dialog, DWLP_USER));
    if (!gallery) return FALSE;  // WM_SETFONT and others arrive before WM_INITDIALOG
    switch (message) {
        case WM_INITDIALOG: return OnInitDialog(dialog, *gallery);
        case WM_COMMAND: return OnCommand(*gallery, LOWORD(wParam), HIWORD(wParam));
        case WM_TIMER:
        case kAllFinished: ShowProgress(*gallery); return FALSE;
        case WM_DRAWITEM: return OnDrawItem(*gallery, *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
        case WM_SHOWWINDOW: FollowDialogSize(dialog, &gallery->layout, message, wParam); return FALSE;
        case WM_SIZE: FollowDialogSize(dialog, &gallery->layout, message, wParam); return OnSize(*gallery);
        case WM_GETMINMAXINFO: return OnMinMaxInfo(*gallery, reinterpret_cast<MINMAXINFO*>(lParam));
        case WM_DESTROY: return OnDestroy(*gallery);
        default: return FALSE;
    }
}

}  // namespace

int ShowGallery(HWND owner, int listMode, const char* folder, const char* names, char* result, DWORD resultSize,
                DWORD renderMode) {
    INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&controls);
    Gallery gallery;
    gallery.request = {listMode, folder ? folder : "", names ? names : "", result, resultSize, renderMode};
    const INT_PTR ended = DialogBoxParamA(ThisModule(), MAKEINTRESOURCEA(IDD_GALLERY), owner,
                                          GuardedProcedure<INT_PTR, GalleryProc>, reinterpret_cast<LPARAM>(&gallery));
    return ended == 1;
}
