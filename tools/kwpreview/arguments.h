// The command line of kwpreview.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

constexpr long kMinSide = 16, kMaxSide = 4096;  // of a picture, in pixels

struct Options {
    std::vector<std::string> inputs;  // files, patterns and folders as they were given
    std::string folder;               // for the PNG files; empty: beside each input
    SIZE size = {640, 480};
    bool mono = false;
    bool frames = false;
    bool comment = false;
    bool kind = false;
    bool basicDxf = false;
    bool help = false;
};

// False when the line cannot be understood; `complaint` then says why.
bool ParseArguments(int count, const char* const* arguments, Options* options, std::string* complaint);
