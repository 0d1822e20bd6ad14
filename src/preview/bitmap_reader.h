// Windows bitmap files. See PreviewReader for the contract; the picture keeps its own size and there is no comment.
#pragma once

#include "preview/reader.h"

HBITMAP ReadBitmapFile(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut, DWORD commentSize);
