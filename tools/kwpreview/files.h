// What the arguments of kwpreview name: files, patterns and folders become a list of files.
#pragma once

#include <string>
#include <vector>

// Why an argument names no file.
enum class InputProblem { none, noMatch, emptyFolder };

struct Input {
    std::string path;  // a file, or the argument itself when it names none
    InputProblem problem = InputProblem::none;
};

// The files in the order of the arguments, those of one pattern or folder by name, none twice. Sub-folders are not
// searched, and PNG files, which earlier runs leave, are passed over in patterns and folders. A path that is neither
// pattern nor folder stays as it is, existing or not.
std::vector<Input> FindInputs(const std::vector<std::string>& arguments);

// A path that is the same for all ways to write one file's path.
std::string PathKey(const std::string& path);
