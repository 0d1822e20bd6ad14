#include "preview/bitmap_reader.h"

#include "kit/dib.h"

HBITMAP ReadBitmapFile(DWORD, const char* fileName, const RECT*, char* commentOut, DWORD commentSize) {
    BeginComment(commentOut, commentSize);
    const LoadedFile file(fileName);
    return file.data ? BitmapFromDibFile(file.Bytes()) : nullptr;
}
