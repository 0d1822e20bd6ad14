// Backup drawings. See PreviewReader for the contract; the comment is the title block, and it is given without a target
// too.
#pragma once

#include "preview/reader.h"

HBITMAP ReadBackupDrawing(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                          DWORD commentSize);
