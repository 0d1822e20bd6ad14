// What kind of file a path names.
#pragma once

#include <windows.h>

#include "preview/formats/signatures.h"

// The kind of a file. `commentOut`, when given, is zeroed over `commentSize` bytes and filled as IdentifyBytes does.
// FT_UNREADABLE for a null name and for a file that cannot be opened. Reads at most 1,024 bytes, allocates nothing.
FileTypeCode IdentifyFileType(const char* fileName, char* commentOut, int commentSize);

// The same for a file that has just been opened by that name; a comment's buffer is zero already.
FileTypeCode IdentifyOpenFile(HANDLE file, const char* fileName, char* commentOut, int commentSize);
