// What a running preview may cost beside its time: how soon it returns once it is cancelled, and memory.
#include <windows.h>
// psapi.h needs windows.h.
#include <psapi.h>

#include <algorithm>

#include "frame/services.h"
#include "kit/handles.h"
#include "kwbench.h"
#include "preview.h"
#include "preview/dispatch.h"

static constexpr double kCancelSeconds = 0.020;

// ---- Cancelling

struct Reader {
    const Drawing* drawing;
    double returned = 0;  // when the reader came back
    UniqueBitmap bitmap;
};

static DWORD WINAPI ReadInThread(void* argument) {
    auto* reader = static_cast<Reader*>(argument);
    reader->bitmap = Preview(*reader->drawing);
    reader->returned = Now();
    return 0;
}

// True while the reader has the file open, which is until it has been loaded. The try must not fall into the moment
// in which the reader opens the file: it would be turned away.
static bool IsBeingLoaded(const std::string& path) {
    const UniqueHandle file(
        CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return !IsOpen(file) && GetLastError() == ERROR_SHARING_VIOLATION;
}

enum class Cancelled { kInTime, kTooLate, kFailed };

// Starts a reader, cancels it about `delay` seconds later but not before the file is loaded, and tells how long it took
// to come back. Too late when the reader had finished by then.
static Cancelled CancelOnce(const Drawing& drawing, double delay, double* seconds) {
    Reader reader = {&drawing, 0, nullptr};
    const double start = Now();
    const UniqueHandle thread(CreateThread(nullptr, 0, ReadInThread, &reader, 0, nullptr));
    if (!thread) return Cancelled::kFailed;
    Sleep(20);  // long enough to open the file, far too short to load it
    while (IsBeingLoaded(drawing.path)) Sleep(1);
    while (Now() - start < delay) Sleep(1);
    const double cancelled = Now();
    PreviewCancel(0);
    WaitForSingleObject(thread.get(), INFINITE);
    if (reader.bitmap || reader.returned < cancelled) return Cancelled::kTooLate;
    *seconds = reader.returned - cancelled;
    return Cancelled::kInTime;
}

bool AddCancelRows(Bench* bench, const std::string& what, const Drawing& drawing) {
    const std::size_t count = bench->quick ? 10 : 20;
    const double load = SecondsOf([&] { LoadedFile(drawing.path.c_str()); });
    const double whole = SecondsOf([&] { Preview(drawing); });

    Random random{1};
    std::vector<double> times, frees;
    for (std::size_t tries = 0; times.size() < count; ++tries) {
        if (tries > 3 * count) return Fail("cancel: the reader always finishes first");
        const double delay = load + (whole - load) * random.Below(1000) / 1000;
        double seconds = 0;
        switch (CancelOnce(drawing, delay, &seconds)) {
            case Cancelled::kFailed: return Fail("cancel: no thread");
            case Cancelled::kTooLate: continue;
            case Cancelled::kInTime: times.push_back(seconds);
        }
        const HGLOBAL block = LoadFileToGlobal(drawing.path.c_str());
        frees.push_back(SecondsOf([&] {
            GlobalUnlock(block);
            GlobalFree(block);
        }));
    }
    const double worst = *std::max_element(times.begin(), times.end());
    const double worstFree = *std::max_element(frees.begin(), frees.end());
    const std::string target = "<= " + Milliseconds(kCancelSeconds);
    bench->rows.push_back({what + "cancel, worst of " + std::to_string(count), Milliseconds(worst),
                           Milliseconds(worstFree) + " (free)", "", target,
                           worst <= kCancelSeconds ? Row::kMet : Row::kMissed});
    bench->rows.push_back(
        {what + "cancel, median", Milliseconds(Median(times)), Milliseconds(Median(frees)) + " (free)"});
    return true;
}

bool BenchCancel(Bench* bench) {
    const int megabytes = bench->quick ? 10 : 100;
    const Drawing* drawing = DrawingOf(bench, megabytes);
    return drawing && AddCancelRows(bench, "dxf " + std::to_string(megabytes) + " MB: ", *drawing);
}

// ---- Memory

int PreviewMemoryKilobytes(const char* smallDrawing, const PreviewedFile& file) {
    const Drawing small = {DrawingFormat::kDxf, smallDrawing};
    if (!Preview(small)) return -1;  // what the process needs once: fonts, system libraries, the heap's start
    PROCESS_MEMORY_COUNTERS before = {}, after = {};
    const HANDLE process = GetCurrentProcess();
    if (!GetProcessMemoryInfo(process, &before, sizeof(before))) return -1;
    const char* const path = file.path.c_str();
    const PreviewReader reader = PaneReaderFor(IdentifyFileType(path, nullptr, 0));
    if (reader) UniqueBitmap(reader(file.renderMode, path, &kPaneTarget, nullptr, 0));
    if (!GetProcessMemoryInfo(process, &after, sizeof(after))) return -1;
    // Either may miss something: a working set what was never touched, and not every system keeps the other's peak.
    const SIZE_T resident = after.PeakWorkingSetSize - before.WorkingSetSize;
    const SIZE_T committed = after.PeakPagefileUsage - before.PagefileUsage;
    return static_cast<int>(std::max(resident, committed) / 1024);
}

bool RunPreviewMemory(Bench* bench, const PreviewedFile& file, int* kilobytes) {
    const Drawing* small = DrawingOf(bench, 1);
    if (!small) return false;
    char program[MAX_PATH];
    const DWORD length = GetModuleFileNameA(nullptr, program, sizeof(program));
    if (length == 0 || length >= sizeof(program)) return false;
    std::string command = "\"" + std::string(program) + "\" --preview-memory \"" + small->path + "\" " +
                          std::to_string(file.renderMode) + " \"" + file.path + "\"";
    STARTUPINFOA startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started = {};
    if (!CreateProcessA(program, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &started)) {
        return false;
    }
    const UniqueHandle process(started.hProcess), thread(started.hThread);
    DWORD code = 0;
    WaitForSingleObject(process.get(), INFINITE);
    if (!GetExitCodeProcess(process.get(), &code)) return false;
    *kilobytes = static_cast<int>(code);
    return *kilobytes >= 0;
}

bool AddMemoryRow(Bench* bench, const std::string& what, const PreviewedFile& file, std::size_t size, double factor,
                  double more) {
    std::vector<double> peaks;
    for (int i = 0; i < 3; ++i) {
        int kilobytes = 0;
        if (!RunPreviewMemory(bench, file, &kilobytes)) return Fail("memory: the process has failed");
        peaks.push_back(kilobytes / 1024.0);
    }
    const double peak = Median(peaks), megabytes = static_cast<double>(size) / static_cast<double>(kMegabyte);
    bench->rows.push_back({what + ": peak of the preview", Number(peak, 2) + " MB", Number(megabytes, 2) + " MB",
                           Number(peak / megabytes, 2),
                           "<= " + Number(factor, 0) + " x file + " + Number(more, 0) + " MB",
                           peak <= factor * megabytes + more ? Row::kMet : Row::kMissed});
    return true;
}

bool BenchMemory(Bench* bench) {
    const int megabytes = bench->quick ? 10 : 100;
    const Drawing* drawing = DrawingOf(bench, megabytes);
    return drawing && AddMemoryRow(bench, "memory " + std::to_string(megabytes) + " MB", {kRenderColor, drawing->path},
                                   drawing->size, 1, 1);
}
