// The ASCII form of DXF: extents and the entities POINT, LINE, ARC, CIRCLE and TEXT. See PreviewReader for the
// contract; the comment is the head of the file's text.
#pragma once

#include "preview/reader.h"

HBITMAP ReadDxfPreview(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut, DWORD commentSize);
