// The texts of kwpreview and how they leave it.
//
// All texts are in the system's code page until they are printed: then a console gets its own characters, a file or a
// pipe gets UTF-8.
#pragma once

#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

// A text of the string table, in the user's language; empty when there is none of that id.
std::string Text(UINT id);

// The same with %1, %2 ... replaced.
std::string TextWith(UINT id, const std::vector<std::string>& values);

// The system's own words for an error code, in one line.
std::string SystemMessage(DWORD error);

bool IsConsole(std::FILE* stream);

// Prints to stdout or stderr.
void Print(std::FILE* stream, const std::string& text);
