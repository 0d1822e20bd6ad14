// A reader's preview of a generated drawing against its floor: the equal picture, speed, and the time to cancel.
#pragma once

#include <windows.h>

#include <string>

#include "kit/handles.h"
#include "kwbench.h"

// The size of a preview pane.
constexpr RECT kPaneTarget = {0, 0, 300, 200};

// Calls the reader of the drawing's format, in colour.
UniqueBitmap Preview(const Drawing& drawing, int width = kPaneTarget.right, int height = kPaneTarget.bottom);

// Reads the numbers of a text as its reader must, and does nothing with them; the sum keeps the conversions from being
// left out.
using NumberScan = double (*)(const char* at, const char* end);
double SumOfGroups(const char* at, const char* end);  // of a DXF

// What is asked of a reader. The floor is the replay of its strokes as GDI calls and, before that, the bare scan of a
// text or the load of a binary drawing.
struct PreviewTarget {
    double previewTime;         // at most so many times the floor
    NumberScan scan = nullptr;  // of a text
    double decodeRate = 0;      // at least so many times the bare scan's
    bool drawingAlone = false;  // the replay is the whole floor, and makes a font at each change
};

// Adds the rows of the pictures, the floors and the speed; false, after a word to the error stream, when it fails.
bool AddPreviewRows(Bench* bench, const std::string& what, const Drawing& drawing, const PreviewTarget& target,
                    int roundCount);

// Adds the rows that tell how soon the reader returns after PreviewCancel(0); false as above.
bool AddCancelRows(Bench* bench, const std::string& what, const Drawing& drawing);
