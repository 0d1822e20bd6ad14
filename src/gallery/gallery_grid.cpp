// A cell holds, from outside, a margin, a frame, a border, the picture and below it the caption.
#include "gallery/gallery_grid.h"

#include <algorithm>

#include "kit/handles.h"
#include "kit/screen.h"

namespace {

constexpr int kColumns = 4, kRows = 3;
constexpr int kFrameBorders = 3;    // borders between a cell's edge and its frame
constexpr int kPictureBorders = 4;  // and its picture
constexpr int kCaptionSpace = 14;   // below the picture, in pixels of a screen of 96 dots per inch

int BorderWidth() { return GetSystemMetrics(SM_CXBORDER); }

// Grows with the caption's font.
int CaptionHeight() { return ScreenPixels(kCaptionSpace); }

// The picture's place inside a cell.
RECT PictureRect(RECT cell) {
    const int margin = kPictureBorders * BorderWidth();
    InflateRect(&cell, -margin, -margin);
    cell.bottom -= CaptionHeight();
    return cell;
}

// A cell of the grid's size in the middle of an item, which may be larger.
RECT CellInItem(const RECT& item, SIZE cell) {
    const LONG left = item.left + (item.right - item.left - cell.cx) / 2;
    const LONG top = item.top + (item.bottom - item.top - cell.cy) / 2;
    return {left, top, left + cell.cx, top + cell.cy};
}

void DrawPicture(HDC dc, const RECT& area, HBITMAP picture) {
    RECT border = area;
    InflateRect(&border, BorderWidth(), BorderWidth());
    FillRect(dc, &border, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    const UniqueDc source(CreateCompatibleDC(dc));
    if (!picture || !source) return;
    const Selection select(source.get(), picture);
    SetTextColor(dc, RGB(0, 0, 0));  // what the picture's dark bits become
    SetBkColor(dc, RGB(255, 255, 255));
    BitBlt(dc, area.left, area.top, area.right - area.left, area.bottom - area.top, source.get(), 0, 0, SRCCOPY);
}

void DrawFrameAndCaption(HDC dc, const RECT& frame, const char* name, bool focused) {
    RECT inside = frame;
    if (focused) DrawEdge(dc, &inside, BDR_SUNKENOUTER, BF_RECT);
    else FrameRect(dc, &inside, GetSysColorBrush(COLOR_BTNFACE));
    InflateRect(&inside, -BorderWidth(), -BorderWidth());
    FillRect(dc, &inside, GetSysColorBrush(focused ? COLOR_HIGHLIGHT : COLOR_BTNFACE));
    RECT caption = frame;
    caption.top = frame.bottom - CaptionHeight();  // with the gap above it, the strip is as high as its font
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(focused ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
    DrawTextA(dc, name, -1, &caption, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

}  // namespace

GalleryGrid MakeGalleryGrid(HWND list) {
    RECT client = {};
    GetClientRect(list, &client);
    GalleryGrid grid;
    grid.cell = {client.right / kColumns, client.bottom / kRows};
    grid.thumbnail = PictureRect({0, 0, grid.cell.cx, grid.cell.cy});
    OffsetRect(&grid.thumbnail, -grid.thumbnail.left, -grid.thumbnail.top);
    return grid;
}

void FitGalleryGrid(HWND list, const GalleryGrid& grid) {
    RECT client = {};
    GetClientRect(list, &client);
    if (grid.cell.cx <= 0 || grid.cell.cy <= 0) return;
    const LONG columns = std::max(1L, client.right / grid.cell.cx), rows = std::max(1L, client.bottom / grid.cell.cy);
    SendMessageA(list, LB_SETCOLUMNWIDTH, static_cast<WPARAM>(client.right / columns), 0);
    SendMessageA(list, LB_SETITEMHEIGHT, 0, client.bottom / rows);
}

SIZE GalleryGridShrink(const GalleryGrid& grid, int columns, int rows) {
    return {grid.cell.cx * (kColumns - columns), grid.cell.cy * (kRows - rows)};
}

void DrawGalleryCell(const DRAWITEMSTRUCT& draw, const GalleryGrid& grid, const char* name, HBITMAP picture) {
    const RECT cell = CellInItem(draw.rcItem, grid.cell);
    const bool whole = draw.itemAction & ODA_DRAWENTIRE;
    RECT frame = cell;
    InflateRect(&frame, -kFrameBorders * BorderWidth(), -kFrameBorders * BorderWidth());
    const int saved = SaveDC(draw.hDC);
    if (!whole) {  // the picture stays as it is
        ExcludeClipRect(draw.hDC, frame.left, frame.top, frame.right, frame.bottom - CaptionHeight());
    }
    DrawFrameAndCaption(draw.hDC, frame, name, draw.itemState & ODS_FOCUS);
    if (whole) DrawPicture(draw.hDC, PictureRect(cell), picture);
    RestoreDC(draw.hDC, saved);
}
