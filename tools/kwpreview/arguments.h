// The command line of kwpreview.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "files.h"

constexpr long kMinSide = 16, kMaxSide = 4096;  // of a picture, in pixels

struct Options {
    std::vector<FilePath> inputs;  // files, patterns and folders as they were given
    FilePath output;               // folder of the PNG files, or NAME.png for one; empty: beside each input
    SIZE size = {640, 480};
    bool mono = false;
    bool frames = false;
    bool comment = false;
    bool kind = false;
    bool recursive = false;
    bool strict = false;
    bool basicDxf = false;
    bool help = false;
    bool version = false;
};

// False when the line cannot be understood; `complaint` then says why. The first argument is the program.
bool ParseArguments(const std::vector<std::wstring>& arguments, Options* options, std::wstring* complaint);
