// Where kwpreview's PNG files go.
#pragma once

#include <windows.h>

#include <set>
#include <string>
#include <vector>

#include "files.h"

// Makes a folder and those above it that are missing. 0, or the system's error code.
DWORD MakeFolder(const FilePath& path);

// Gives each input a PNG file of its own: NAME.png beside it or in the folder, NAME.2.png ... when an earlier input has
// taken that. No input is ever named, whatever it is.
struct OutputNames {
    const FilePath folder;  // empty: beside the input
    std::set<std::wstring> taken;
    OutputNames(const FilePath& outputFolder, const std::vector<Input>& inputs);
    FilePath Take(const FilePath& input);
};
