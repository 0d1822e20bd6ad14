// The lines of the classic dialog's file list: their order and their texts.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>

// The length of the file name that a line of the list begins with: up to the first tab or, without one, the first
// blank.
std::size_t FileNameLength(const char* line);

// Which of two files comes first: negative, 0 or positive. The keys of `sortBits` (KW_SORT_...) have a fixed priority:
// name, extension, size, date.
int CompareFiles(const WIN32_FIND_DATAA& a, const WIN32_FIND_DATAA& b, DWORD sortBits);

// A byte count as "12KB", cut to whole units; at most 7 characters.
std::string FormatDriveSize(DWORD bytes);

// A count with a comma before every group of three digits.
std::string FormatThousands(DWORD count);

// A line of the list: the name and, behind tabs, the columns of `displayBits` (KW_SHOW_...).
std::string FormatFileLine(const WIN32_FIND_DATAA& file, DWORD displayBits);
