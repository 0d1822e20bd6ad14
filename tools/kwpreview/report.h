// What kwpreview says about a file.
#pragma once

#include <cstdio>
#include <string>

#include "arguments.h"
#include "kit/handles.h"
#include "render.h"

// The picture or why there is none, then kind and comment as the options ask for them.
std::wstring ReportOf(const Options& options, const FilePath& input, const FilePath& png, const Preview& preview);

// With more than one file, how many have a picture; else nothing.
std::wstring SummaryOf(std::size_t pictures, std::size_t inputs);

// A thread that says on stderr, once a second, which file is under way: on a console in one line that changes. A run of
// less than a second, and so most of them, leaves nothing there.
struct Progress {
    explicit Progress(std::size_t inputs);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    void Begin(const FilePath& input);
    void Report(std::FILE* stream, const std::wstring& text);  // in the place of the line

private:
    const std::size_t count;
    const ULONGLONG start = GetTickCount64();
    SRWLOCK lock = SRWLOCK_INIT;  // of what follows, and of the console
    std::size_t number = 0;
    std::wstring name;
    std::size_t shown = 0;  // characters of the line that stands on the console
    const UniqueHandle stop;
    UniqueHandle thread;
    void Show();
    void Clear();
    static DWORD WINAPI Run(void* progress);
};
