// A folder of files for one test, removed at its end. What cannot be removed, because somebody still has it open, fails
// the test.
#pragma once

#include <string>

#include "support/samples.h"

struct TempFolder {
    std::string path;                               // without a backslash at its end
    explicit TempFolder(const char* root = "TMP");  // in the folder that this variable of the environment names
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    std::string At(const std::string& name) const { return path + "\\" + name; }
    std::string Write(const std::string& name, const std::string& contents) const;
    std::string MakeFolder(const std::string& name) const;
};

void WriteWholeFile(const std::string& path, const std::string& contents);
