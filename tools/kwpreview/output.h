// Where kwpreview's PNG files go.
#pragma once

#include <windows.h>

#include <set>
#include <string>
#include <vector>

#include "files.h"

// Makes a folder and those above it that are missing. 0, or the system's error code.
DWORD MakeFolder(const std::string& path);

// Gives each input a PNG file of its own: NAME.png beside it or in the folder, NAME.2.png ... when an earlier input has
// taken that. No input is ever named, whatever it is.
struct OutputNames {
    const std::string folder;  // empty: beside the input
    std::set<std::string> taken;
    OutputNames(const std::string& outputFolder, const std::vector<Input>& inputs);
    std::string Take(const std::string& input);
};
