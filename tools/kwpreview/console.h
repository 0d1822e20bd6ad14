// The texts of kwpreview and how they leave it: a console gets its own characters, a file or a pipe gets UTF-8.
#pragma once

#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

// A text of the string table, in the user's language; empty when there is none of that id.
std::wstring Text(UINT id);

// The same with %1, %2 ... replaced.
std::wstring TextWith(UINT id, const std::vector<std::wstring>& values);

// The system's own words for an error code, in one line.
std::wstring SystemMessage(DWORD error);

// A text of the system's code page.
std::wstring Widen(const std::string& text);

bool IsConsole(std::FILE* stream);

// Prints to stdout or stderr.
void Print(std::FILE* stream, const std::wstring& text);

// True once stdout has not taken a text: its disk is full, or nobody reads the pipe any more.
bool OutputFailed();
