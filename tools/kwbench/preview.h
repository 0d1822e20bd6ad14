// A reader's preview of a generated drawing against its floor: the equal picture, speed, and the time to cancel.
#pragma once

#include <windows.h>

#include <string>

#include "kit/handles.h"
#include "kwbench.h"

constexpr RECT kPaneTarget = {0, 0, 300, 200};

// Calls the reader of the drawing's format, in colour; `comment` gives the room for one.
UniqueBitmap Preview(const Drawing& drawing, std::string* comment = nullptr, const RECT& target = kPaneTarget);

// Reads the numbers of a text as its reader must, and does nothing with them; the sum keeps the conversions from being
// left out.
using NumberScan = double (*)(const char* at, const char* end);

// A line's end and the start of the next.
inline const char* LineEnd(const char* at, const char* end) {
    while (at < end && static_cast<unsigned char>(*at) >= ' ') ++at;
    return at;
}
inline const char* NextLine(const char* at, const char* end) {
    while (at < end && static_cast<unsigned char>(*at) < ' ') ++at;
    return at;
}

// What is asked of a reader. The floor of a text format is its bare scan and the replay of its GDI calls, that of a
// binary one the load and the replay.
struct PreviewTarget {
    double previewTime;     // at most so many times the floor
    double decodeRate = 0;  // text: at least so many times the bare scan's
    NumberScan scan = nullptr;
};

// Adds the rows of the pictures, the floors and the speed; false, after a word to the error stream, when it fails.
bool AddPreviewRows(Bench* bench, const std::string& what, const Drawing& drawing, const PreviewTarget& target,
                    int roundCount);

// Adds the rows that tell how soon the reader returns after PreviewCancel(0); false as above.
bool AddCancelRows(Bench* bench, const std::string& what, const Drawing& drawing);
