// A small module that holds nothing but resources, made for one test.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

// Writes a module whose string table holds the texts under the ids firstId, firstId + 1, ... (empty ones are absent)
// and whose file version is major.minor.build.private.
void WriteResourceModule(const std::string& path, UINT firstId, const std::vector<std::string>& texts, WORD major = 0,
                         WORD minor = 0, WORD build = 0, WORD privatePart = 0);
