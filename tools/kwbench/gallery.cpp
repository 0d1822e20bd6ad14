// The gallery over a folder of small drawings: the time until all thumbnails stand, how it reacts meanwhile, and how
// soon Cancel closes it.
#include "gallery/gallery.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "kwbench.h"
#include "preview/dispatch.h"
#include "preview/file_type.h"
#include "resources/resource.h"

// One gallery as it is driven. Only one is open at a time, and hooks and timers without a window take no argument.
static struct GalleryRun {
    double cancelAt = 0;  // 0: when all thumbnails stand
    HWND dialog = nullptr;
    double lastMessage = 0, longestGap = 0;
    double finished = 0;   // when the progress bar was found hidden; 0: cancelled before
    double cancelled = 0;  // when Cancel was posted
} run;

static BOOL CALLBACK TakeGallery(HWND window, LPARAM) {
    if (GetDlgItem(window, IDC_GALLERY_LIST)) run.dialog = window;
    return !run.dialog;
}

// Every message from the queue, the ticks too: what the worker sends does not count, as it does not wait in line with
// the user's clicks and keys. A tick comes only when the queue is empty, so the gaps are rather too long than too
// short.
static LRESULT CALLBACK NoteMessage(int code, WPARAM wParam, LPARAM lParam) {
    if (code == HC_ACTION && wParam == PM_REMOVE && run.dialog && !run.cancelled) {
        const double now = Now();
        if (run.lastMessage > 0) run.longestGap = std::max(run.longestGap, now - run.lastMessage);
        run.lastMessage = now;
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

static void CALLBACK OnTick(HWND, UINT, UINT_PTR, DWORD) {
    if (!run.dialog) EnumThreadWindows(GetCurrentThreadId(), TakeGallery, 0);
    if (!run.dialog || run.cancelled > 0) return;
    // The bar's own style: the dialog as a whole may not be visible yet.
    const bool works = GetWindowLongA(GetDlgItem(run.dialog, IDC_GALLERY_PROGRESS), GWL_STYLE) & WS_VISIBLE;
    const double now = Now();
    if (works && (run.cancelAt == 0 || now < run.cancelAt)) return;
    if (!works) run.finished = now;
    run.cancelled = now;
    PostMessageA(run.dialog, WM_COMMAND, IDCANCEL, 0);
}

// Opens the gallery until it is complete or until then; returns the seconds that Cancel took to close it.
static double DriveGallery(const std::string& folder, double cancelAt) {
    run = {cancelAt};
    char result[MAX_PATH] = "";
    const UINT_PTR timer = SetTimer(nullptr, 0, 5, OnTick);
    const HHOOK hook = SetWindowsHookExA(WH_GETMESSAGE, NoteMessage, nullptr, GetCurrentThreadId());
    ShowGallery(nullptr, 0, folder.c_str(), "*.*", result, sizeof(result));
    const double closed = Now();
    UnhookWindowsHookEx(hook);
    KillTimer(nullptr, timer);
    return closed - run.cancelled;
}

// Identifies each file and calls its reader, one after the other: what the gallery's worker cannot do without. The
// readers' own floors are measured elsewhere.
static void ReadInLoop(const std::vector<std::string>& paths) {
    static constexpr RECT kThumbnail = {0, 0, 120, 90};
    for (const std::string& path : paths) {
        const PreviewReader read = GalleryReaderFor(IdentifyFileType(path.c_str(), nullptr, 0));
        Require(read && UniqueBitmap(read(0, path.c_str(), &kThumbnail, nullptr, 0)), "no picture of " + path);
    }
}

void BenchGallery(Bench* bench) {
    const std::uint32_t count = bench->quick ? 250 : 1000;
    Progress("writing " + std::to_string(count) + " small drawings");
    const std::string folder = MakeFolder(*bench, "gallery");
    std::vector<std::string> paths;
    Random random{1};
    for (std::uint32_t i = 0; i < count; ++i) {
        DrawingPlan plan = {static_cast<DrawingFormat>(i % 4), SIZE_MAX, 20 + random.Below(300)};
        plan.seed += i;
        paths.push_back(WriteDrawing(folder + "part" + std::to_string(i), plan).path);
    }

    const auto read = [&] { ReadInLoop(paths); };
    read();  // and the system's caches are warm
    Series gaps, closings;
    const auto fill = [&](int) {
        const double start = Now();
        DriveGallery(folder, 0);
        Require(run.finished != 0, "gallery: it was closed too early");
        gaps.push_back(run.longestGap);
        return run.finished - start;
    };
    const std::vector<Series> times = Measure(bench->quick ? 3 : 7, {fill, Timed(read)});
    for (int i = 0; i < (bench->quick ? 10 : 20); ++i) {
        const double seconds = DriveGallery(folder, Now() + 0.03 + 0.7 * Median(times[0]) * random.Between(0, 1));
        if (run.finished == 0) closings.push_back(seconds);
    }
    Require(!closings.empty(), "gallery: it always finishes before Cancel");
    const std::string what = "gallery " + std::to_string(count) + " files: ";
    bench->rows.push_back(CompareRow(what + "complete", times[0], times[1], 1.2));
    bench->rows.push_back(WorstRow(what + "longest gap between messages", gaps, 0.1));
    bench->rows.push_back(WorstRow(what + "Cancel while it works", closings, 0.05));
}
