#include "kit/layout.h"

static SIZE OuterSize(HWND window) {
    RECT rect = {};
    GetWindowRect(window, &rect);
    return {rect.right - rect.left, rect.bottom - rect.top};
}

static void RecordLayout(HWND dialog, DialogLayout* layout) {
    layout->recordedSize = OuterSize(dialog);
    for (LayoutRow* row = layout->rows; row != layout->rows + layout->count; ++row) {
        const HWND control = GetDlgItem(dialog, row->controlId);
        if (!control) continue;
        GetWindowRect(control, &row->recorded);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&row->recorded), 2);
    }
}

static void RestoreDialogSize(HWND dialog, RememberedSize* remembered) {
    RECT rect = {};
    GetWindowRect(dialog, &rect);
    const SIZE present = {rect.right - rect.left, rect.bottom - rect.top};
    if (remembered->maximized || remembered->size.cx == 0) {
        remembered->size = present;
        if (remembered->maximized) ShowWindow(dialog, SW_MAXIMIZE);
        return;
    }
    const SIZE size = remembered->size;  // a copy: WM_SIZE writes to the remembered one meanwhile
    SetWindowPos(dialog, nullptr, rect.left - (size.cx - present.cx) / 2, rect.top - (size.cy - present.cy) / 2, size.cx,
                 size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
}

void StartLayout(HWND dialog, DialogLayout* layout) {
    RecordLayout(dialog, layout);
    RestoreDialogSize(dialog, layout->remembered);
}

static LONG Share(LONG growth, int percent) { return percent == 0 ? growth : MulDiv(growth, percent, 100); }

static RECT RectAfterGrowth(const LayoutRow& row, LONG dx, LONG dy) {
    const LONG x = Share(dx, row.shareX), y = Share(dy, row.shareY);
    RECT rect = row.recorded;
    if (row.flags & (kAnchorRight | kMoveHorizontally)) rect.right += x;
    if (row.flags & kMoveHorizontally) rect.left += x;
    if (row.flags & (kAnchorBottom | kMoveVertically)) rect.bottom += y;
    if (row.flags & kMoveVertically) rect.top += y;
    return rect;
}

static void ApplyLayout(HWND dialog, const DialogLayout& layout, LONG dx, LONG dy) {
    HDWP moves = BeginDeferWindowPos(layout.count);
    for (const LayoutRow* row = layout.rows; row != layout.rows + layout.count; ++row) {
        const HWND control = GetDlgItem(dialog, row->controlId);
        if (!control || !moves) continue;
        const RECT rect = RectAfterGrowth(*row, dx, dy);
        moves = DeferWindowPos(moves, control, nullptr, rect.left, rect.top, rect.right - rect.left,
                               rect.bottom - rect.top, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    if (moves) EndDeferWindowPos(moves);
}

void FollowDialogSize(HWND dialog, const DialogLayout& layout, WPARAM sizeKind) {
    if (sizeKind == SIZE_MINIMIZED || layout.recordedSize.cx == 0) return;
    const SIZE size = OuterSize(dialog);
    layout.remembered->maximized = sizeKind == SIZE_MAXIMIZED;
    if (sizeKind != SIZE_MAXIMIZED) layout.remembered->size = size;
    ApplyLayout(dialog, layout, size.cx - layout.recordedSize.cx, size.cy - layout.recordedSize.cy);
}
