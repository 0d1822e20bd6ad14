// Anchor layout: controls that follow the growth of a resizable dialog.
#pragma once

#include <windows.h>

// What follows the dialog's growth.
constexpr unsigned kAnchorRight = 1;        // the right edge
constexpr unsigned kAnchorBottom = 2;       // the bottom edge
constexpr unsigned kMoveHorizontally = 16;  // left and right edge
constexpr unsigned kMoveVertically = 32;    // top and bottom edge

struct LayoutRow {
    int controlId;
    unsigned flags;
    int shareX, shareY;  // per cent of the growth; 0: all of it
    RECT recorded;       // where the control stood when the layout was recorded, in the dialog's client coordinates
};

// Remembers where the controls of the table stand. A control that the dialog lacks is passed over.
void RecordLayout(HWND dialog, LayoutRow* rows, int count);

// Moves and stretches the controls for a dialog that has grown by (dx, dy) pixels since the layout was recorded.
void ApplyLayout(HWND dialog, const LayoutRow* rows, int count, int dx, int dy);

// The size of a resizable dialog, kept for the life of the process.
struct RememberedSize {
    SIZE size = {};  // outer size; zero until a dialog has been shown
    bool maximized = false;
};

// Gives a new dialog the remembered size, around its present centre, or remembers the present one.
void RestoreDialogSize(HWND dialog, RememberedSize* remembered);
