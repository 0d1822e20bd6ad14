#include "sample_copy.h"

#include <windows.h>

#include <cstring>
#include <vector>

static std::string InFolder(const std::string& folder, const std::string& name) {
    std::string path = folder;
    path += '\\';
    path += name;
    return path;
}

// The names of the files in a folder.
static std::vector<std::string> FilesOf(const std::string& folder) {
    std::vector<std::string> names;
    WIN32_FIND_DATAA found = {};
    const HANDLE search = FindFirstFileA(InFolder(folder, "*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) names.emplace_back(found.cFileName);
    } while (FindNextFileA(search, &found));
    FindClose(search);
    return names;
}

// A folder that was not there before, so that nobody's files are in danger; empty when there is none to be had.
static std::string MakeFolder() {
    for (int number = 1; number < 10; ++number) {
        std::string folder = "C:\\Drawings" + (number == 1 ? "" : " " + std::to_string(number));
        if (CreateDirectoryA(folder.c_str(), nullptr)) return folder;
    }
    return {};
}

// The script that writes the samples stands among them and is none itself.
static bool IsSample(const std::string& name) {
    const char* extension = std::strrchr(name.c_str(), '.');
    return extension && lstrcmpiA(extension, ".py") != 0;
}

std::string CopySamples(const std::string& samples) {
    if (samples.empty()) return {};
    std::string folder = MakeFolder();
    if (folder.empty()) return {};
    bool copied = true;
    for (const std::string& name : FilesOf(samples)) {
        if (!IsSample(name)) continue;
        copied = copied && CopyFileA(InFolder(samples, name).c_str(), InFolder(folder, name).c_str(), TRUE);
    }
    if (copied) return folder;
    RemoveSampleCopy(folder);
    return {};
}

static constexpr char kManyPrefix[] = "_copy";

void AddManyCopies(const std::string& folder, const std::string& name, int count) {
    for (int i = 0; i < count; ++i) {
        CopyFileA(InFolder(folder, name).c_str(), InFolder(folder, kManyPrefix + std::to_string(i) + name).c_str(),
                  TRUE);
    }
}

void RemoveManyCopies(const std::string& folder) {
    for (const std::string& name : FilesOf(folder)) {
        if (name.rfind(kManyPrefix, 0) == 0) DeleteFileA(InFolder(folder, name).c_str());
    }
}

void RemoveSampleCopy(const std::string& folder) {
    SetCurrentDirectoryA("C:\\");  // a dialog may have moved into the folder, which then cannot be removed
    for (const std::string& name : FilesOf(folder)) {
        const std::string path = InFolder(folder, name);
        SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);  // a copy of a protected file is protected
        DeleteFileA(path.c_str());
    }
    RemoveDirectoryA(folder.c_str());
}
