// What the arguments of kwpreview name: files, patterns and folders become a list of files.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

using FilePath = std::filesystem::path;  // wide: a name need not exist in the system's code page

// Why an argument names no file.
enum class InputProblem { none, noMatch, emptyFolder };

struct Input {
    FilePath path;  // a file, or the argument itself when it names none
    InputProblem problem = InputProblem::none;
};

// The files in the order of the arguments, those of one pattern or folder by name and, `recursive`, then those of its
// sub-folders; none twice. PNG files, which earlier runs leave, are passed over in patterns and folders. A path that is
// neither pattern nor folder stays as it is, existing or not.
std::vector<Input> FindInputs(const std::vector<FilePath>& arguments, bool recursive);

bool IsFolder(const FilePath& path);

bool HasPngExtension(const FilePath& path);

std::wstring FullPath(const FilePath& path);

// A text that is the same for all ways to write one file's path.
std::wstring PathKey(const FilePath& path);
