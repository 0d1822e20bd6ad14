#include "output.h"

#include <shlobj.h>

DWORD MakeFolder(const FilePath& path) {
    const auto error = static_cast<DWORD>(SHCreateDirectoryExW(nullptr, FullPath(path).c_str(), nullptr));
    return IsFolder(path) ? ERROR_SUCCESS : error == ERROR_SUCCESS ? DWORD{ERROR_DIRECTORY} : error;
}

OutputNames::OutputNames(const FilePath& outputFolder, const std::vector<Input>& inputs) : folder(outputFolder) {
    for (const Input& input : inputs) taken.insert(PathKey(input.path));
}

FilePath OutputNames::Take(const FilePath& input) {
    const std::wstring base = folder.empty() ? input : folder / input.filename();
    FilePath path = base + L".png";
    for (int number = 2; !taken.insert(PathKey(path)).second; ++number) {
        path = base + L"." + std::to_wstring(number) + L".png";
    }
    return path;
}
