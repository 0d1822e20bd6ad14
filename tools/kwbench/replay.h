// The GDI calls of a perfect preview: recorded once from a generated drawing, then issued as often as wanted.
//
// The walk is independent of the library's readers: it takes the entities from the generator, maps them as the renderer
// does, and keeps only the calls that change the picture. A line whose mapped ends coincide is left out, a pen or font
// is selected when it is not selected already, and a font is made once for each size and angle.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "inputs.h"

struct RecordedFont {
    int height, width, escapement;  // as in LOGFONTA, the height positive
};

struct RecordedEndMark {  // arguments of DrawEndMark: a few in a hundred thousand lines
    std::uint32_t code;
    double x, y, angleDegrees, size;
};

struct Recording {
    DWORD renderMode = 0;
    RECT target = {};
    ViewTransform view = {};
    std::vector<std::int32_t> calls;  // each a code of ours and its arguments
    std::vector<RecordedFont> fonts;
    std::vector<RecordedEndMark> endMarks;
    std::string texts;  // all strings, one behind the other
    std::size_t callCount = 0;
};

// The calls of the drawing's preview in that mode and size.
Recording RecordPreview(const Drawing& drawing, DWORD renderMode, const RECT& target);

// Makes a canvas like a reader's, issues the calls, and hands the bitmap to the caller; null when there is no canvas.
HBITMAP Replay(const Recording& recording);
