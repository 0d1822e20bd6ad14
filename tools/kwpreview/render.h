// What the library shows of a file, and why it shows nothing.
#pragma once

#include <windows.h>

#include <string>

#include "files.h"
#include "kit/handles.h"
#include "preview/file_type.h"

// Why there is no picture. The order is that of the texts IDS_WHY + n.
enum class NoPicture {
    none,          // there is one
    missing,       // no such file
    noMatch,       // a pattern that no file matches
    emptyFolder,   // a folder without files
    unreadable,    // cannot be opened: see `error`
    device,        // no file of a disk
    empty,         // 0 bytes
    tooLarge,      // does not fit the memory
    unknownKind,   // nothing tells what it is
    kindWithout,   // a kind that shows nothing
    titleOnly,     // kinds that show a comment and no picture
    textOnly,      //
    versionOnly,   //
    damaged,       // a drawing that its reader rejects
    badBitmap,     //
    namesNone,     // a command file without a drawing
    noMemory,      // for a picture of that size
    blankDxf,      // read, but nothing is drawn
    blankRecords,  //
    blankText,     //
    ofNamed,       // a command file: see `named` and `whyNamed`
    notWritten,    // drawn, but the PNG file could not be written
    namesOther,    // a command file that names something that it cannot show: see `named`
    needsFullDxf,  // a DXF of which the basic reader draws nothing
    blankFullDxf,  // of which the full reader draws nothing
};

struct Preview {
    FileTypeCode kind = FT_UNREADABLE;
    std::wstring comment;  // lines end in "\n"
    UniqueBitmap bitmap;   // null unless `problem` is none
    NoPicture problem = NoPicture::none;
    DWORD error = 0;     // the system's code, for unreadable
    std::wstring named;  // the drawing that a command file without a picture names
    NoPicture whyNamed = NoPicture::none;
    bool onlyFullDxf = false;  // a picture that only the full reader of DXF gives
};

// True for kinds whose files are meant to show a picture.
bool IsDrawing(FileTypeCode kind);

// Draws a file as the dialogs do. `renderMode` as for readers (preview/drawing/canvas.h); a bitmap file keeps its own
// size. A file is taken to show nothing when all of its picture is white, unless it is a bitmap file.
Preview RenderPreview(const FilePath& path, DWORD renderMode, SIZE size);

// The word for a kind that scripts may rely on ("dxf"); the description is IDS_KIND + kind.
const wchar_t* KindWord(FileTypeCode kind);
