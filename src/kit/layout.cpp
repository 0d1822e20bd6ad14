#include "kit/layout.h"

void RecordLayout(HWND dialog, LayoutRow* rows, int count) {
    for (LayoutRow* row = rows; row != rows + count; ++row) {
        const HWND control = GetDlgItem(dialog, row->controlId);
        if (!control) continue;
        GetWindowRect(control, &row->recorded);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&row->recorded), 2);
    }
}

static LONG Share(int growth, int percent) { return percent == 0 ? growth : MulDiv(growth, percent, 100); }

static RECT RectAfterGrowth(const LayoutRow& row, int dx, int dy) {
    const LONG x = Share(dx, row.shareX), y = Share(dy, row.shareY);
    RECT rect = row.recorded;
    if (row.flags & (kAnchorRight | kMoveHorizontally)) rect.right += x;
    if (row.flags & kMoveHorizontally) rect.left += x;
    if (row.flags & (kAnchorBottom | kMoveVertically)) rect.bottom += y;
    if (row.flags & kMoveVertically) rect.top += y;
    return rect;
}

void ApplyLayout(HWND dialog, const LayoutRow* rows, int count, int dx, int dy) {
    HDWP moves = BeginDeferWindowPos(count);
    for (const LayoutRow* row = rows; row != rows + count; ++row) {
        const HWND control = GetDlgItem(dialog, row->controlId);
        if (!control || !moves) continue;
        const RECT rect = RectAfterGrowth(*row, dx, dy);
        moves = DeferWindowPos(moves, control, nullptr, rect.left, rect.top, rect.right - rect.left,
                               rect.bottom - rect.top, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    if (moves) EndDeferWindowPos(moves);
}

void RestoreDialogSize(HWND dialog, RememberedSize* remembered) {
    RECT rect;
    GetWindowRect(dialog, &rect);
    const SIZE present = {rect.right - rect.left, rect.bottom - rect.top};
    if (remembered->maximized || remembered->size.cx == 0) {
        remembered->size = present;
        if (remembered->maximized) ShowWindow(dialog, SW_MAXIMIZE);
        return;
    }
    const SIZE size = remembered->size;
    SetWindowPos(dialog, nullptr, rect.left - (size.cx - present.cx) / 2, rect.top - (size.cy - present.cy) / 2,
                 size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
}
