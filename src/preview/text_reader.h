// Text drawings: the line-oriented exchange format. See PreviewReader for the contract; the comment is the title lines.
#pragma once

#include "preview/reader.h"

HBITMAP ReadTextDrawing(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                        DWORD commentSize);
