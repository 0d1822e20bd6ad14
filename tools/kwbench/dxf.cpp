// The DXF reader: speed against a bare scan and the bare GDI calls, the time to cancel, and memory.
#include <windows.h>
// psapi.h needs windows.h.
#include <psapi.h>

#include <algorithm>
#include <charconv>

#include "kit/handles.h"
#include "kwbench.h"
#include "preview.h"
#include "preview/dispatch.h"

static constexpr double kDecodeRate = 0.4;    // of the bare scan's
static constexpr double kPreviewTime = 1.25;  // times scan and replay

// ---- Speed

// Groups 10 to 59: coordinates, lengths and angles.
static bool NamesNumber(const char* line, std::size_t length) {
    return length == 3 && line[0] == ' ' && line[1] >= '1' && line[1] <= '5';
}

// Reads numbers as a reader must, and does nothing with them; the sum keeps the conversions from being left out.
static double SumOfGroups(const char* at, const char* end) {
    double sum = 0;
    while (at < end) {
        const char* const code = at;
        const char* const codeEnd = LineEnd(code, end);
        const char* const value = NextLine(codeEnd, end);
        const char* const valueEnd = LineEnd(value, end);
        if (NamesNumber(code, static_cast<std::size_t>(codeEnd - code))) {
            double number = 0;
            std::from_chars(value, valueEnd, number);
            sum += number;
        }
        at = NextLine(valueEnd, end);
    }
    return sum;
}

static bool BenchDxfOfSize(Bench* bench, int megabytes, int roundCount) {
    const Drawing* drawing = DrawingOf(bench, megabytes);
    const std::string what = "dxf " + std::to_string(megabytes) + " MB: ";
    return drawing && AddPreviewRows(bench, what, *drawing, {kPreviewTime, kDecodeRate, SumOfGroups}, roundCount);
}

bool BenchDxf(Bench* bench) {
    if (bench->quick) return BenchDxfOfSize(bench, 10, 9);
    const bool small = BenchDxfOfSize(bench, 10, 21);
    const bool large = BenchDxfOfSize(bench, 100, 7);
    return small && large;
}

// ---- Cancelling

bool BenchCancel(Bench* bench) {
    const int megabytes = bench->quick ? 10 : 100;
    const Drawing* drawing = DrawingOf(bench, megabytes);
    return drawing && AddCancelRows(bench, "dxf " + std::to_string(megabytes) + " MB: ", *drawing);
}

// ---- Memory

static UniqueBitmap PreviewAny(const char* path) {
    const PreviewReader reader = PaneReaderFor(IdentifyFileType(path, nullptr, 0));
    return UniqueBitmap(reader ? reader(kRenderColor, path, &kPaneTarget, nullptr, 0) : nullptr);
}

int PreviewMemoryKilobytes(const char* smallDrawing, const char* path) {
    const Drawing small = {DrawingFormat::kDxf, smallDrawing};
    if (!Preview(small)) return -1;  // what the process needs once: fonts, system libraries, the heap's start
    PROCESS_MEMORY_COUNTERS before = {}, after = {};
    const HANDLE process = GetCurrentProcess();
    if (!GetProcessMemoryInfo(process, &before, sizeof(before))) return -1;
    PreviewAny(path);
    if (!GetProcessMemoryInfo(process, &after, sizeof(after))) return -1;
    // Either may miss something: a working set what was never touched, and not every system keeps the other's peak.
    const SIZE_T resident = after.PeakWorkingSetSize - before.WorkingSetSize;
    const SIZE_T committed = after.PeakPagefileUsage - before.PagefileUsage;
    return static_cast<int>(std::max(resident, committed) / 1024);
}

bool RunPreviewMemory(const Drawing& smallDrawing, const std::string& path, int* kilobytes) {
    char program[MAX_PATH];
    const DWORD length = GetModuleFileNameA(nullptr, program, sizeof(program));
    if (length == 0 || length >= sizeof(program)) return false;
    std::string command =
        "\"" + std::string(program) + "\" --preview-memory \"" + smallDrawing.path + "\" \"" + path + "\"";
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

bool BenchMemory(Bench* bench) {
    const int megabytes = bench->quick ? 10 : 100;
    const Drawing* smallDrawing = DrawingOf(bench, 1);
    const Drawing* drawing = DrawingOf(bench, megabytes);
    if (!smallDrawing || !drawing) return false;
    std::vector<double> peaks;
    for (int i = 0; i < 3; ++i) {
        int kilobytes = 0;
        if (!RunPreviewMemory(*smallDrawing, drawing->path, &kilobytes)) return Fail("memory: the process has failed");
        peaks.push_back(kilobytes / 1024.0);
    }
    const double peak = Median(peaks);
    const double file = static_cast<double>(drawing->size) / static_cast<double>(kMegabyte);
    bench->rows.push_back({"memory " + std::to_string(megabytes) + " MB: peak of the preview", Number(peak, 2) + " MB",
                           Number(file, 2) + " MB", Number(peak / file, 2), "<= file + 1 MB",
                           peak <= file + 1 ? Row::kMet : Row::kMissed});
    return true;
}
