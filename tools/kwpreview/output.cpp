#include "output.h"

#include <shlobj.h>

#include "frame/services.h"
#include "kit/paths.h"

DWORD MakeFolder(const std::string& path) {
    char full[MAX_PATH];
    const DWORD length = GetFullPathNameA(path.c_str(), sizeof(full), full, nullptr);
    if (length == 0) return GetLastError();
    if (length >= sizeof(full)) return ERROR_FILENAME_EXCED_RANGE;
    const auto error = static_cast<DWORD>(SHCreateDirectoryExA(nullptr, full, nullptr));
    return IsDirectoryPath(full) ? ERROR_SUCCESS : error == ERROR_SUCCESS ? DWORD{ERROR_DIRECTORY} : error;
}

OutputNames::OutputNames(const std::string& outputFolder, const std::vector<Input>& inputs) : folder(outputFolder) {
    for (const Input& input : inputs) taken.insert(PathKey(input.path));
}

std::string OutputNames::Take(const std::string& input) {
    const std::string base = folder.empty() ? input : JoinPath(folder.c_str(), FindFileName(input.c_str()));
    std::string path = base + ".png";
    for (int number = 2; !taken.insert(PathKey(path)).second; ++number) {
        path = base + "." + std::to_string(number) + ".png";
    }
    return path;
}
