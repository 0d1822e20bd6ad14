// What kind of file its first kilobyte and the extension of its name tell. Knows no Windows.
#pragma once

#include <cstddef>

#include "kit/bytes.h"

enum FileTypeCode : int {
    FT_UNREADABLE = -1,
    FT_LUMOS = 0,  // native drawing, Lumos generation
    FT_QA = 1,     // native drawing, QA V4.0 generation
    FT_QJ = 2,
    FT_QF = 3,
    FT_DXF = 4,
    FT_BMI = 5,
    FT_PCS = 6,
    FT_EXF = 7,  // text drawing
    FT_HLP = 8,
    FT_DLL = 9,
    FT_BAT = 10,
    FT_EXE = 11,
    FT_SYS = 12,
    FT_VXD = 13,
    FT_OBJLIB = 14,  // object file or library, one code for both
    FT_BMP = 16,
    FT_ICO = 17,
    FT_CUR = 18,
    FT_LZH = 19,
    FT_SZDD = 20,
    FT_TEXT = 21,
    FT_BINARY = 22,
    FT_NCPROGRAM = 23,
    FT_BACKUP = 24,
    FT_BLOCKSEQ = 25,
    FT_COMMAND = 26,  // names a drawing to preview
};

constexpr std::size_t kHeadSize = 1024;  // of a file; what stands behind it is not looked at

// The kind of a file that begins with `head` and whose name ends in `extension`, the dot included. `commentOut`, when
// given, is zero over `commentSize` bytes and receives the title block ("name,number,designer") of a drawing or the
// head of a text as one line; recognition by extension alone gives none.
FileTypeCode IdentifyBytes(ByteView head, const char* extension, char* commentOut, int commentSize);

// True when the bytes look like text in the Japanese code page. A two-byte character cut off by the end means binary.
bool IsTextBuffer(const unsigned char* bytes, std::size_t count);

// Splits a zero-terminated buffer in place: a zero replaces every delimiter. Returns the number of pieces, 0 when an
// argument is null.
int SplitLines(char* buffer, const char* delimiters);
