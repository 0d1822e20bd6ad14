#include "gallery/gallery.h"

#include <commctrl.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "frame/module.h"
#include "frame/services.h"
#include "gallery/gallery_items.h"
#include "kit/handles.h"
#include "kit/layout.h"
#include "kit/paths.h"
#include "preview/dispatch.h"
#include "preview/drawing/placeholder.h"
#include "preview/file_type.h"
#include "resources/resource.h"

namespace {

// GalleryState
constexpr LONG kWorkerRuns = 1;
constexpr LONG kStopRequested = 128;

// The grid: four columns and three rows of cells; in each, from outside, a margin, a border, the picture and the
// caption.
constexpr int kColumns = 4, kRows = 3;
constexpr int kFrameBorders = 3;    // borders between a cell's edge and its frame
constexpr int kPictureBorders = 4;  // and its picture
constexpr int kCaptionSpace = 14;   // below the picture, in pixels of a screen of 96 dots per inch

constexpr UINT_PTR kProgressTimer = 1;
constexpr UINT kProgressMilliseconds = 40;
constexpr UINT kWorkerEnded = WM_APP;  // posted by the worker
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

// A running gallery. The worker reads names and fills thumbnails; it has ended when kWorkerRuns is clear.
struct Gallery {
    GalleryRequest request;
    HWND dialog = nullptr, list = nullptr;
    GalleryItems items;
    UniqueLocal<std::uint8_t> pool;
    std::size_t poolSize = 0, poolUsed = 0;
    RECT thumbnail = {};  // at the origin
    UniqueBitmap loading, noPreview, scratch;
    volatile LONG state = 0;
    volatile LONG finished = 0;  // items that the worker has done with
    int shown = 0;               // those of them that the dialog has drawn
    LayoutRow rows[1] = {{IDC_GALLERY_LIST, kAnchorRight | kAnchorBottom, 0, 0, {}}};
    DialogLayout layout = {rows, 1, &rememberedSize};
};

int BorderWidth() { return GetSystemMetrics(SM_CXBORDER); }

// Grows with the caption's font.
int CaptionHeight() {
    static const int dotsPerInch = GetDeviceCaps(WindowDc(nullptr).dc, LOGPIXELSY);
    return MulDiv(kCaptionSpace, dotsPerInch, USER_DEFAULT_SCREEN_DPI);
}

// The picture's place inside a cell.
RECT PictureRect(RECT cell) {
    const int margin = kPictureBorders * BorderWidth();
    InflateRect(&cell, -margin, -margin);
    cell.bottom -= CaptionHeight();
    return cell;
}

void WaitGalleryWorker(Gallery& gallery) {
    StopWorkerAndPump(gallery.dialog, &gallery.state, kWorkerRuns, kStopRequested);
}

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
    InterlockedExchange(&item.bitsSize, static_cast<LONG>(size));  // the dialog may draw it from here on
}

void MakeThumbnail(Gallery& gallery, GalleryItem& item) {
    const std::string path = JoinPath(gallery.request.folder, item.name);
    const PreviewReader reader = GalleryReaderFor(IdentifyFileType(path.c_str(), nullptr, 0));
    if (!reader) return;
    const UniqueBitmap bitmap(reader(gallery.request.renderMode, path.c_str(), &gallery.thumbnail, nullptr, 0));
    if (bitmap) StoreThumbnail(gallery, item, bitmap.get());
}

// Sends the dialog nothing, since waiting for it at each file would take longer than the thumbnails: the dialog looks
// at `finished` by its timer.
void FillGallery(void* argument) {
    Gallery& gallery = *static_cast<Gallery*>(argument);
    for (int i = 0; i < gallery.items.count && !(InterlockedOr(&gallery.state, 0) & kStopRequested); ++i) {
        GalleryItem& item = gallery.items[i];
        MakeThumbnail(gallery, item);
        InterlockedOr(&item.flags, kItemFinished);
        InterlockedExchange(&gallery.finished, i + 1);
    }
    const HWND dialog = gallery.dialog;
    InterlockedExchange(&gallery.state, 0);  // the dialog may go from here on
    PostMessageA(dialog, kWorkerEnded, 0, 0);
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
    const bool runs = InterlockedOr(&gallery.state, 0) & kWorkerRuns;
    const int finished = static_cast<int>(InterlockedOr(&gallery.finished, 0));
    while (gallery.shown < finished) RedrawItem(gallery, gallery.shown++);
    UpdateWindow(gallery.list);
    const HWND progress = GetDlgItem(gallery.dialog, IDC_GALLERY_PROGRESS);
    const HWND status = GetDlgItem(gallery.dialog, IDC_GALLERY_STATUS);
    if (!runs) {
        KillTimer(gallery.dialog, kProgressTimer);
        ShowWindow(progress, SW_HIDE);
        ShowWindow(status, SW_HIDE);
    } else if (finished < gallery.items.count) {
        const int position = MulDiv(finished + 1, kProgressRange, gallery.items.count);
        SendMessageA(progress, PBM_SETPOS, static_cast<WPARAM>(position), 0);
        SetWindowTextA(status, gallery.items[finished].name);
    }
}

void StartWorker(Gallery& gallery) {
    const HWND progress = GetDlgItem(gallery.dialog, IDC_GALLERY_PROGRESS);
    SendMessageA(progress, PBM_SETSTEP, 1, 0);
    SendMessageA(progress, PBM_SETRANGE, 0, MAKELPARAM(0, kProgressRange));
    SetTimer(gallery.dialog, kProgressTimer, kProgressMilliseconds, nullptr);
    InterlockedExchange(&gallery.state, kWorkerRuns);
    if (!StartModuleThread(FillGallery, &gallery)) InterlockedExchange(&gallery.state, 0);
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

void MakeGrid(Gallery& gallery) {
    RECT client;
    GetClientRect(gallery.list, &client);
    const int cellWidth = static_cast<int>(client.right) / kColumns;
    const int cellHeight = static_cast<int>(client.bottom) / kRows;
    gallery.thumbnail = PictureRect({0, 0, cellWidth, cellHeight});
    OffsetRect(&gallery.thumbnail, -gallery.thumbnail.left, -gallery.thumbnail.top);
    SendMessageA(gallery.list, LB_SETCOLUMNWIDTH, static_cast<WPARAM>(cellWidth), 0);
    SendMessageA(gallery.list, LB_SETITEMHEIGHT, 0, cellHeight);
}

void MakeBitmaps(Gallery& gallery) {
    const RECT& size = gallery.thumbnail;
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
    const int current = std::max(SelectByName(&gallery.items, gallery.request.result ? gallery.request.result : ""), 0);
    InterlockedOr(&gallery.items[current].flags, kItemSelected);
    SendMessageA(gallery.list, LB_SETCURSEL, static_cast<WPARAM>(current), 0);
}

void ShowFolderInCaption(const Gallery& gallery) {
    if (!gallery.request.folder[0]) return;
    char caption[128];
    GetWindowTextA(gallery.dialog, caption, sizeof(caption));
    SetWindowTextA(gallery.dialog, (std::string(gallery.request.folder) + " - " + caption).c_str());
}

bool OpenGallery(Gallery& gallery) {
    MakeGrid(gallery);
    MakeBitmaps(gallery);
    if (!ListItems(gallery) || gallery.items.count == 0 || !MakePool(gallery)) return false;
    StartLayout(gallery.dialog, &gallery.layout);
    FillList(gallery);
    ShowFolderInCaption(gallery);
    StartWorker(gallery);
    return true;
}

// ---- Messages

INT_PTR OnInitDialog(HWND dialog, Gallery& gallery) {
    gallery.dialog = dialog;
    gallery.list = GetDlgItem(dialog, IDC_GALLERY_LIST);
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
    for (int i = 0; i < gallery.items.count; ++i) InterlockedAnd(&gallery.items[i].flags, ~kItemSelected);
    const LRESULT current = SendMessageA(gallery.list, LB_GETCURSEL, 0, 0);
    if (current < 0 || current >= gallery.items.count) return;
    InterlockedExchange(&gallery.items[static_cast<int>(current)].flags, kItemSelected);
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

// ---- Drawing

// The bitmap that stands for an item now; its bits are put into the scratch bitmap first.
HBITMAP PictureOf(const Gallery& gallery, const GalleryItem& item) {
    if (item.bitsSize > 0) {
        SetBitmapBits(gallery.scratch.get(), static_cast<DWORD>(item.bitsSize), item.bits);
        return gallery.scratch.get();
    }
    return item.flags & kItemFinished ? gallery.noPreview.get() : gallery.loading.get();
}

void DrawPicture(const Gallery& gallery, const GalleryItem& item, HDC dc, const RECT& cell) {
    const RECT area = PictureRect(cell);
    RECT border = area;
    InflateRect(&border, BorderWidth(), BorderWidth());
    FillRect(dc, &border, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    const HBITMAP picture = PictureOf(gallery, item);
    const UniqueDc source(CreateCompatibleDC(dc));
    if (!picture || !source) return;
    const Selection select(source.get(), picture);
    SetTextColor(dc, RGB(0, 0, 0));  // what the picture's dark bits become
    SetBkColor(dc, RGB(255, 255, 255));
    BitBlt(dc, area.left, area.top, area.right - area.left, area.bottom - area.top, source.get(), 0, 0, SRCCOPY);
}

void DrawFrameAndCaption(const GalleryItem& item, HDC dc, const RECT& frame, bool focused) {
    RECT inside = frame;
    if (focused) DrawEdge(dc, &inside, BDR_SUNKENOUTER, BF_RECT);
    else FrameRect(dc, &inside, GetSysColorBrush(COLOR_BTNFACE));
    InflateRect(&inside, -BorderWidth(), -BorderWidth());
    FillRect(dc, &inside, GetSysColorBrush(focused ? COLOR_HIGHLIGHT : COLOR_BTNFACE));
    RECT caption = frame;
    caption.top = frame.bottom - CaptionHeight();  // with the gap above it, the strip is as high as its font
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(focused ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
    DrawTextA(dc, item.name, -1, &caption, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

INT_PTR OnDrawItem(const Gallery& gallery, const DRAWITEMSTRUCT& draw) {
    if (draw.CtlID != IDC_GALLERY_LIST || draw.itemID >= static_cast<UINT>(gallery.items.count)) return FALSE;
    const GalleryItem& item = gallery.items[static_cast<int>(draw.itemID)];
    const bool whole = draw.itemAction & ODA_DRAWENTIRE;
    RECT frame = draw.rcItem;
    InflateRect(&frame, -kFrameBorders * BorderWidth(), -kFrameBorders * BorderWidth());
    const int saved = SaveDC(draw.hDC);
    if (!whole) {  // the picture stays as it is
        ExcludeClipRect(draw.hDC, frame.left, frame.top, frame.right, frame.bottom - CaptionHeight());
    }
    DrawFrameAndCaption(item, draw.hDC, frame, draw.itemState & ODS_FOCUS);
    if (whole) DrawPicture(gallery, item, draw.hDC, draw.rcItem);
    RestoreDC(draw.hDC, saved);
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
        case kWorkerEnded: ShowProgress(*gallery); return FALSE;
        case WM_DRAWITEM: return OnDrawItem(*gallery, *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
        case WM_SHOWWINDOW: FollowDialogSize(dialog, &gallery->layout, message, wParam); return FALSE;
        case WM_SIZE: FollowDialogSize(dialog, &gallery->layout, message, wParam); return TRUE;
        case WM_DESTROY: WaitGalleryWorker(*gallery); return TRUE;
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
    const INT_PTR ended = DialogBoxParamA(ThisModule(), MAKEINTRESOURCEA(IDD_GALLERY), owner, GalleryProc,
                                          reinterpret_cast<LPARAM>(&gallery));
    return ended == 1;
}
