// Command files, which point to a drawing. See PreviewReader for the contract; the comment is the command file's text,
// it is given without a target too, and the buffer is the caller's to clear.
#pragma once

#include "preview/reader.h"

HBITMAP PreviewCommandFile(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                           DWORD commentSize);
