#include "support/temp_folder.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <fstream>

static void RemoveTree(const std::string& path) {
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA((path + "\\*").c_str(), &found);
    for (BOOL more = search != INVALID_HANDLE_VALUE; more; more = FindNextFileA(search, &found)) {
        const std::string name = found.cFileName, child = path + "\\" + name;
        if (name == "." || name == "..") continue;
        if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) RemoveTree(child);
        else EXPECT_TRUE(DeleteFileA(child.c_str())) << child << " is still open";
    }
    FindClose(search);
    EXPECT_TRUE(RemoveDirectoryA(path.c_str())) << path;
}

TempFolder::TempFolder() {
    static int number = 0;
    char root[MAX_PATH] = "";
    GetTempPathA(MAX_PATH, root);
    path = std::string(root) + "kwtests-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++number);
    EXPECT_TRUE(CreateDirectoryA(path.c_str(), nullptr)) << path;
}

TempFolder::~TempFolder() { RemoveTree(path); }

std::string TempFolder::Write(const std::string& name, const std::string& contents) const {
    WriteWholeFile(At(name), contents);
    return At(name);
}

std::string TempFolder::MakeFolder(const std::string& name) const {
    EXPECT_TRUE(CreateDirectoryA(At(name).c_str(), nullptr)) << name;
    return At(name);
}

void WriteWholeFile(const std::string& path, const std::string& contents) {
    std::ofstream file(path, std::ios::binary);
    file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    EXPECT_TRUE(file.good()) << path;
}
