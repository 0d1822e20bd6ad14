// Files that are made to cost, at three sizes: how processor time and memory grow with them.
#include "generate/attacks.h"

#include <windows.h>

#include "kit/handles.h"
#include "kwbench.h"
#include "preview.h"
#include "preview/dispatch.h"

static constexpr double kMostSeconds = 2;  // for the largest file

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
    if (const PreviewReader reader = PaneReaderFor(IdentifyFileType(path.c_str(), nullptr, 0))) {
        UniqueBitmap(
            reader(renderMode, path.c_str(), &kPaneTarget, comment.data(), static_cast<DWORD>(comment.size())));
    }
    return seconds() - start;
}

bool BenchAttacks(Bench* bench) {
    constexpr std::size_t kSizes[] = {1, 2, 10};
    for (std::size_t i = 0; i < kAttackCount; ++i) {
        const Attack& attack = kAttacks[i];
        const DWORD renderMode = kRenderColor | (attack.decode == DecodeFullDxf ? kRenderFullDxf : 0);
        Progress(std::string("attacks: ") + attack.name);
        std::string times, memory;
        double first = 0, last = 0;
        for (const std::size_t megabytes : kSizes) {
            const std::string path = bench->folder + "attack" + attack.extension;
            if (!WriteWholeFile(path, attack.write(megabytes * kMegabyte))) return Fail("cannot write " + path);
            last = CostOf(path, renderMode);
            if (first == 0) first = last;
            times += (times.empty() ? "" : ", ") + Milliseconds(last);
            int kilobytes = 0;
            if (!RunPreviewMemory(bench, {renderMode, path}, &kilobytes))
                return Fail("attacks: the process has failed");
            memory += (memory.empty() ? "" : ", ") + Number(kilobytes / 1024.0, 0);
        }
        bench->rows.push_back({std::string(attack.name) + ": " + times, Milliseconds(last), memory + " MB",
                               first > 0.05 ? Number(last / first, 1) : "", "<= " + Number(kMostSeconds, 0) + " s",
                               last <= kMostSeconds ? Row::kMet : Row::kMissed});
    }
    return true;
}
