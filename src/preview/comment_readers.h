// Readers of files that have no picture to draw but a text worth showing. See PreviewReader for the contract; all
// return no bitmap and leave the cancel flag alone.
#pragma once

#include "preview/reader.h"

// The text itself, its line breaks as they stand.
HBITMAP ReadTextComment(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                        DWORD commentSize);

// The title blocks of the two native kinds that are not drawn; a file shorter than its last slot gives none.
HBITMAP ReadQjComment(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut, DWORD commentSize);
HBITMAP ReadQfComment(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut, DWORD commentSize);

// NC programs: shows nothing and leaves the comment as the caller has cleared it.
HBITMAP ReadNcComment(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut, DWORD commentSize);

// "Version 1.2.3" of an executable's version resource; nothing when it has none.
HBITMAP ReadVersionComment(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                           DWORD commentSize);
