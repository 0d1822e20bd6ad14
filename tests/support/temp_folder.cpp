#include "support/temp_folder.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

TempFolder::TempFolder(const char* root) {
    static int number = 0;
    path = std::string(std::getenv(root)) + "\\kwtests-" + std::to_string(GetCurrentProcessId()) + "-" +
           std::to_string(++number);
    EXPECT_TRUE(CreateDirectoryA(path.c_str(), nullptr)) << path;
}

TempFolder::~TempFolder() {
    std::error_code error;
    std::filesystem::remove_all(path, error);
    EXPECT_FALSE(error) << path << " holds something that is still open";
}

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
