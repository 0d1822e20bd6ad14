// What a preview may cost beside its time: how soon it returns once it is cancelled, memory, and what files that are
// made to cost take of both.
#include <windows.h>
// psapi.h needs windows.h.
#include <process.h>
#include <psapi.h>

#include <algorithm>
#include <cstdlib>

#include "frame/services.h"
#include "generate/attacks.h"
#include "kwbench.h"

// ---- Cancelling

struct Run {
    const std::string& path;
    double returned = 0;
    UniqueBitmap bitmap = nullptr;
};

static DWORD WINAPI ReadInThread(void* argument) {
    auto* run = static_cast<Run*>(argument);
    run->bitmap = Preview(run->path);
    run->returned = Now();
    return 0;
}

// True while the reader has the file open, which is until it has been loaded. The try must not fall into the moment
// in which the reader opens the file: it would be turned away.
static bool IsBeingLoaded(const std::string& path) {
    const UniqueHandle file(
        CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return !IsOpen(file) && GetLastError() == ERROR_SHARING_VIOLATION;
}

// Starts a reader and cancels it about `delay` seconds later, but not before the file is loaded; returns how long it
// took to come back, or a negative value when it had finished by then.
static double SecondsToCancel(const std::string& path, double delay) {
    Run run = {path};
    const double start = Now();
    const UniqueHandle thread(CreateThread(nullptr, 0, ReadInThread, &run, 0, nullptr));
    Require(thread != nullptr, "cancel: no thread");
    Sleep(20);  // long enough to open the file, far too short to load it
    while (IsBeingLoaded(path) || Now() - start < delay) Sleep(1);
    const double cancelled = Now();
    PreviewCancel(0);
    WaitForSingleObject(thread.get(), INFINITE);
    return run.bitmap ? -1 : run.returned - cancelled;
}

void BenchCancel(Bench* bench) {
    for (const char* const name :
         {bench->quick ? "dxf 10 MB" : "dxf 100 MB", "native 65535", "backup 1000000", "text 10 MB"}) {
        const std::string& path = DrawingOf(bench, name).path;
        const double load = Timed([&] { LoadedFile(path.c_str()); })(0), whole = Timed([&] { Preview(path); })(0);
        const std::size_t count = bench->quick ? 10 : 20;
        Random random{1};
        Series times;
        for (std::size_t tries = 0; times.size() < count; ++tries) {
            Require(tries < 4 * count, "cancel: the reader always finishes first");
            const double seconds = SecondsToCancel(path, load + (whole - load) * random.Between(0, 1));
            if (seconds >= 0) times.push_back(seconds);
        }
        bench->rows.push_back(WorstRow(std::string(name) + ": cancel", times, 0.020));
    }
}

// ---- Memory

int MeasurePreviewMemory(const char* smallDrawing, const char* renderMode, const char* path) {
    if (!Preview(smallDrawing)) return -1;  // what the process needs once: fonts, system libraries, the heap's start
    PROCESS_MEMORY_COUNTERS before = {}, after = {};
    const HANDLE process = GetCurrentProcess();
    if (!GetProcessMemoryInfo(process, &before, sizeof(before))) return -1;
    Preview(path, static_cast<DWORD>(std::atoi(renderMode)));
    if (!GetProcessMemoryInfo(process, &after, sizeof(after))) return -1;
    // Either may miss something: a working set what was never touched, and not every system keeps the other's peak.
    const SIZE_T resident = after.PeakWorkingSetSize - before.WorkingSetSize;
    const SIZE_T committed = after.PeakPagefileUsage - before.PagefileUsage;
    return static_cast<int>(std::max(resident, committed) / 1024);
}

// By how many kilobytes the preview of a file raises the peak of memory. A process's peak never falls, so each is
// measured in a process of its own.
static int PreviewMemory(Bench* bench, const std::string& path, DWORD renderMode) {
    const auto quoted = [](const std::string& argument) { return "\"" + argument + "\""; };
    const std::string small = quoted(DrawingOf(bench, "dxf 1 MB").path), file = quoted(path);
    char program[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, program, sizeof(program));
    const auto kilobytes = static_cast<int>(_spawnl(_P_WAIT, program, "kwbench", kPreviewMemoryOption, small.c_str(),
                                                    std::to_string(renderMode).c_str(), file.c_str(), nullptr));
    Require(kilobytes >= 0, "memory: the process has failed");
    return kilobytes;
}

void AddMemoryRow(Bench* bench, const std::string& drawing, DWORD renderMode, double factor, double more) {
    const auto& [format, path, size] = DrawingOf(bench, drawing);
    Series peaks;
    for (int i = 0; i < 3; ++i) peaks.push_back(PreviewMemory(bench, path, renderMode) / 1024.0);
    const double peak = Median(peaks), megabytes = static_cast<double>(size) / static_cast<double>(kMegabyte);
    bench->rows.push_back({drawing + ": peak of the preview's memory", Number(peak, 2) + " MB",
                           Number(megabytes, 2) + " MB", Number(peak / megabytes, 2),
                           "<= " + Number(factor, 0) + " x file + " + Number(more, 0) + " MB",
                           peak <= factor * megabytes + more ? Row::kMet : Row::kMissed});
}

void BenchMemory(Bench* bench) { AddMemoryRow(bench, bench->quick ? "dxf 10 MB" : "dxf 100 MB", kRenderColor, 1, 1); }

// ---- Attacks

// What the file costs this thread, in seconds of the processor.
static double CostOf(const std::string& path, DWORD renderMode) {
    const auto seconds = [] {
        FILETIME created, exited, kernel = {}, user = {};
        GetThreadTimes(GetCurrentThread(), &created, &exited, &kernel, &user);
        const auto ticks = [](FILETIME time) { return time.dwHighDateTime * 4294967296.0 + time.dwLowDateTime; };
        return (ticks(kernel) + ticks(user)) * 1e-7;
    };
    std::string comment(32767, '\0');
    const double start = seconds();
    Preview(path, renderMode, kPane, &comment);
    return seconds() - start;
}

void BenchAttacks(Bench* bench) {
    constexpr double kMostSeconds = 2;  // for the largest file
    for (std::size_t i = 0; i < kAttackCount; ++i) {
        const Attack& attack = kAttacks[i];
        const DWORD renderMode = kRenderColor | (attack.decode == DecodeFullDxf ? kRenderFullDxf : 0);
        const std::string path = bench->folder + "attack" + attack.extension;
        Progress(std::string("attacks: ") + attack.name);
        std::string times, memory;
        Series costs;
        for (const std::size_t megabytes : {1, 2, 10}) {
            const char* const comma = costs.empty() ? "" : ", ";
            WriteFile(path, attack.write(megabytes * kMegabyte));
            costs.push_back(CostOf(path, renderMode));
            times += comma + Milliseconds(costs.back());
            memory += comma + Number(PreviewMemory(bench, path, renderMode) / 1024.0, 0);
        }
        bench->rows.push_back({std::string(attack.name) + ": " + times, Milliseconds(costs.back()), memory + " MB",
                               costs[0] > 0.05 ? Number(costs.back() / costs[0], 1) : "",
                               "<= " + Number(kMostSeconds, 0) + " s",
                               costs.back() <= kMostSeconds ? Row::kMet : Row::kMissed});
    }
}
