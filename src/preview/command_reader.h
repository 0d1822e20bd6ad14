// Command files, which point to a drawing. See PreviewReader for the contract; the comment is the command file's text,
// it is given without a target too, and the buffer is the caller's to clear.
#pragma once

#include <string>

#include "preview/reader.h"

HBITMAP PreviewCommandFile(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                           DWORD commentSize);

// The path of the drawing that a command file names, taken relative to its own folder; empty when it names none.
std::string DrawingOfCommandFile(const char* fileName);
