// Files that are made to cost, at three sizes: how processor time and memory grow with them.
#include "support/attacks.h"

#include <windows.h>

#include "frame/services.h"
#include "kit/handles.h"
#include "kwbench.h"
#include "preview.h"
#include "preview/dispatch.h"

static constexpr double kLongestSeconds = 20;  // then the run is cancelled
static constexpr double kMostSeconds = 2;      // for the largest file

struct Cost {
    double seconds = 0;  // of the processor
    bool isCancelled = false;
};

static double ProcessorSeconds(HANDLE thread) {
    FILETIME created, exited, kernel = {}, user = {};
    GetThreadTimes(thread, &created, &exited, &kernel, &user);
    const auto ticks = [](FILETIME time) {
        return static_cast<double>(time.dwHighDateTime) * 4294967296.0 + time.dwLowDateTime;
    };
    return (ticks(kernel) + ticks(user)) * 1e-7;
}

// A run of this thread, from another thread's point of view.
struct Run {
    UniqueHandle thread;
    double start = 0;
    volatile bool isCancelled = false;
};

static void CALLBACK WatchRun(void* parameter, BOOLEAN) {
    Run& run = *static_cast<Run*>(parameter);
    if (ProcessorSeconds(run.thread.get()) - run.start < kLongestSeconds) return;
    run.isCancelled = true;
    PreviewCancel(0);
}

static Cost CostOf(const std::string& path) {
    constexpr DWORD kWatchMilliseconds = 500;
    Run run;
    HANDLE thread = nullptr, timer = nullptr;
    const HANDLE process = GetCurrentProcess();
    DuplicateHandle(process, GetCurrentThread(), process, &thread, 0, FALSE, DUPLICATE_SAME_ACCESS);
    run.thread.reset(thread);
    run.start = ProcessorSeconds(thread);
    CreateTimerQueueTimer(&timer, nullptr, WatchRun, &run, kWatchMilliseconds, kWatchMilliseconds, WT_EXECUTEDEFAULT);
    std::string comment(32767, '\0');
    const PreviewReader reader = PaneReaderFor(IdentifyFileType(path.c_str(), nullptr, 0));
    const UniqueBitmap bitmap(
        reader ? reader(kRenderColor, path.c_str(), &kPaneTarget, comment.data(), static_cast<DWORD>(comment.size()))
               : nullptr);
    const double seconds = ProcessorSeconds(thread) - run.start;
    DeleteTimerQueueTimer(nullptr, timer, INVALID_HANDLE_VALUE);
    return {seconds, run.isCancelled};
}

bool BenchAttacks(Bench* bench) {
    constexpr std::size_t kSizes[] = {1, 2, 10};
    const Drawing* small = DrawingOf(bench, 1);
    if (!small) return false;
    for (std::size_t i = 0; i < kAttackCount; ++i) {
        const Attack& attack = kAttacks[i];
        Progress(std::string("attacks: ") + attack.name);
        std::string times, memory;
        double first = 0, last = 0;
        bool isCancelled = false;
        for (const std::size_t megabytes : kSizes) {
            const std::string path = bench->folder + "attack" + attack.extension;
            const std::string contents = attack.write(megabytes * kMegabyte);
            UniqueHandle file(CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
            DWORD written = 0;
            if (!WriteFile(file.get(), contents.data(), static_cast<DWORD>(contents.size()), &written, nullptr)) {
                return Fail("attacks: " + path + " cannot be written");
            }
            file.reset();
            const Cost cost = CostOf(path);
            if (first == 0) first = cost.seconds;
            last = cost.seconds;
            isCancelled = isCancelled || cost.isCancelled;
            times += (times.empty() ? "" : ", ") + (cost.isCancelled ? "over 20 s" : Milliseconds(cost.seconds));
            if (cost.isCancelled) break;
            int kilobytes = 0;
            if (!RunPreviewMemory(*small, path, &kilobytes)) return Fail("attacks: the process has failed");
            memory += (memory.empty() ? "" : ", ") + Number(kilobytes / 1024.0, 0);
        }
        bench->rows.push_back({std::string(attack.name) + ": " + times, Milliseconds(last), memory + " MB",
                               first > 0.05 ? Number(last / first, 1) : "", "<= " + Number(kMostSeconds, 0) + " s",
                               !isCancelled && last <= kMostSeconds ? Row::kMet : Row::kMissed});
    }
    return true;
}
