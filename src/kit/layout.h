// Anchor layout: a resizable dialog whose controls follow its growth, and whose size outlives it.
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
    RECT recorded = {};  // where the control stood when the layout was recorded, in the dialog's client coordinates
};

// The size of a resizable dialog, kept for the life of the process.
struct RememberedSize {
    SIZE size = {};  // outer size when not maximised; zero until a dialog has been shown
    bool maximized = false;
};

// The layout of one open dialog. The owner of the dialog keeps it, and its rows, as long as the dialog lives.
struct DialogLayout {
    LayoutRow* rows;
    int count;
    RememberedSize* remembered;
    SIZE recordedSize = {};  // the dialog's outer size when the layout was recorded; zero before
    bool maximizeWhenShown = false;
};

// For WM_INITDIALOG: remembers where the controls stand, then gives the dialog the remembered size around its present
// centre, or remembers the present one; a dialog that was last maximised will be again when it is shown. A control that
// the dialog lacks is passed over.
void StartLayout(HWND dialog, DialogLayout* layout);

// For WM_SHOWWINDOW and WM_SIZE, with their wParam: moves and stretches the controls by what the dialog has grown since
// StartLayout, and remembers its size. Does nothing before StartLayout and for a dialog that is minimised.
void FollowDialogSize(HWND dialog, DialogLayout* layout, UINT message, WPARAM wParam);
