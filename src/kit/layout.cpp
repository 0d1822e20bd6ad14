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

static void RestoreDialogSize(HWND dialog, DialogLayout* layout) {
    const SIZE present = layout->recordedSize, size = layout->remembered->size;
    layout->maximizeWhenShown = layout->remembered->maximized;
    if (layout->maximizeWhenShown || size.cx == 0) {
        layout->remembered->size = present;
        return;
    }
    RECT rect = {};
    GetWindowRect(dialog, &rect);
    SetWindowPos(dialog, nullptr, rect.left - (size.cx - present.cx) / 2, rect.top - (size.cy - present.cy) / 2,
                 size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
}

void StartLayout(HWND dialog, DialogLayout* layout) {
    RecordLayout(dialog, layout);
    RestoreDialogSize(dialog, layout);
}

static RECT RectAfterGrowth(const LayoutRow& row, LONG dx, LONG dy) {
    RECT rect = row.recorded;
    if (row.flags & (kAnchorRight | kMoveHorizontally)) rect.right += dx;
    if (row.flags & kMoveHorizontally) rect.left += dx;
    if (row.flags & (kAnchorBottom | kMoveVertically)) rect.bottom += dy;
    if (row.flags & kMoveVertically) rect.top += dy;
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

// Not at WM_INITDIALOG already: a modal dialog is shown later, and on some systems in its normal size even when it
// stands there maximised.
static void OnShow(HWND dialog, DialogLayout* layout) {
    if (!layout->maximizeWhenShown) return;
    layout->maximizeWhenShown = false;
    ShowWindow(dialog, SW_MAXIMIZE);
}

static void OnSize(HWND dialog, const DialogLayout& layout, WPARAM kind) {
    if (kind == SIZE_MINIMIZED || layout.recordedSize.cx == 0) return;
    const SIZE size = OuterSize(dialog);
    layout.remembered->maximized = kind == SIZE_MAXIMIZED;
    if (kind != SIZE_MAXIMIZED) layout.remembered->size = size;
    ApplyLayout(dialog, layout, size.cx - layout.recordedSize.cx, size.cy - layout.recordedSize.cy);
}

void FollowDialogSize(HWND dialog, DialogLayout* layout, UINT message, WPARAM wParam) {
    if (message == WM_SHOWWINDOW && wParam) OnShow(dialog, layout);
    if (message == WM_SIZE) OnSize(dialog, *layout, wParam);
}
