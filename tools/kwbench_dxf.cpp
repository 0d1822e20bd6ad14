// The DXF reader: speed against a bare scan and the bare GDI calls, the time to cancel, and memory.
#include <windows.h>
// psapi.h needs windows.h.
#include <psapi.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <memory>

#include "frame/services.h"
#include "kit/handles.h"
#include "kwbench.h"
#include "kwbench_replay.h"
#include "preview/canvas.h"
#include "preview/dxf_reader.h"

static constexpr RECT kTarget = {0, 0, 300, 200};
static constexpr RECT kLargeTarget = {0, 0, 3000, 2000};  // little of a drawing hides the rest there
static constexpr DWORD kCommentSize = 32767;

static constexpr double kDecodeRate = 0.4;    // of the bare scan's
static constexpr double kPreviewTime = 1.25;  // times scan and replay
static constexpr double kCancelSeconds = 0.005;

static UniqueBitmap Preview(const std::string& path, std::string* comment = nullptr, const RECT& target = kTarget) {
    return UniqueBitmap(ReadDxfPreview(kRenderColor, path.c_str(), &target, comment ? comment->data() : nullptr,
                                       comment ? static_cast<DWORD>(comment->size()) : 0));
}

// ---- The bare scan

struct ViewUnmap {
    void operator()(const void* view) const { UnmapViewOfFile(view); }
};

// A line's end and the start of the next.
static const char* LineEnd(const char* at, const char* end) {
    while (at < end && static_cast<unsigned char>(*at) >= ' ') ++at;
    return at;
}
static const char* NextLine(const char* at, const char* end) {
    while (at < end && static_cast<unsigned char>(*at) < ' ') ++at;
    return at;
}

// Groups 10 to 59: coordinates, lengths and angles.
static bool NamesNumber(const char* line, std::size_t length) {
    return length == 3 && line[0] == ' ' && line[1] >= '1' && line[1] <= '5';
}

// Reads numbers as a reader must, and does nothing with them; the sum keeps the conversions from being left out.
static double SumOfNumbers(const char* at, const char* end) {
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

// The floor of all reading: the mapped file, split into lines, its numbers converted. False when it cannot be mapped.
static bool BareScan(const Drawing& drawing, double* sum) {
    const UniqueHandle file(CreateFileA(drawing.path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!IsOpen(file)) return false;
    const UniqueHandle mapping(CreateFileMappingA(file.get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
    if (!mapping) return false;
    const std::unique_ptr<const void, ViewUnmap> view(MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0));
    if (!view) return false;
    const char* const text = static_cast<const char*>(view.get());
    *sum = SumOfNumbers(text, text + drawing.size);
    return true;
}

// ---- Speed

// Loads and frees the file as a reader does; the one piece of a preview that neither scans nor draws.
static bool LoadAlone(const Drawing& drawing) {
    const HGLOBAL block = LoadFileToGlobal(drawing.path.c_str());
    if (!block) return false;
    GlobalUnlock(block);
    GlobalFree(block);
    return true;
}

static std::vector<std::uint8_t> PixelsOf(HBITMAP bitmap) {
    BITMAP header = {};
    if (!bitmap || !GetObjectA(bitmap, sizeof(header), &header)) return {};
    std::vector<std::uint8_t> bits(static_cast<std::size_t>(header.bmWidthBytes) *
                                   static_cast<std::size_t>(header.bmHeight));
    GetBitmapBits(bitmap, static_cast<LONG>(bits.size()), bits.data());
    return bits;
}

// The replay is a floor only if it does the preview's work: both must end in the same picture.
static Row PictureRow(const std::string& what, const Drawing& drawing, const Recording& recording) {
    const UniqueBitmap replayed(Replay(recording));
    const auto floor = PixelsOf(replayed.get());
    const auto measured = PixelsOf(Preview(drawing.path, nullptr, recording.target).get());
    std::size_t differing = floor.size();
    if (measured.size() == floor.size()) {
        differing = 0;
        for (std::size_t i = 0; i < floor.size(); ++i) differing += measured[i] != floor[i];
    }
    const RECT& size = recording.target;
    return {what + "replay's picture, " + std::to_string(size.right) + " x " + std::to_string(size.bottom),
            std::to_string(differing) + " bytes differ",
            std::to_string(recording.callCount) + " calls",
            "",
            "0",
            differing == 0 && !floor.empty() ? Row::kMet : Row::kMissed};
}

struct Round {
    double scan = 0, replay = 0, load = 0, preview = 0, previewWithComment = 0;
};

// All works of one round, in turns from the front and from the back, so that none always follows the same one.
static bool MeasureRound(const Drawing& drawing, const Recording& recording, bool backward, Round* out) {
    bool good = true;
    double sum = 0;
    std::string comment(kCommentSize, '\0');
    const auto measure = [&](int work) {
        switch (work) {
            case 0: out->scan = SecondsOf([&] { good = BareScan(drawing, &sum) && good; }); break;
            case 1: out->preview = SecondsOf([&] { good = Preview(drawing.path) && good; }); break;
            case 2: out->replay = SecondsOf([&] { good = UniqueBitmap(Replay(recording)) && good; }); break;
            case 3: out->previewWithComment = SecondsOf([&] { good = Preview(drawing.path, &comment) && good; }); break;
            default: out->load = SecondsOf([&] { good = LoadAlone(drawing) && good; }); break;
        }
    };
    for (int i = 0; i < 5; ++i) measure(backward ? 4 - i : i);
    return good && sum != 0;
}

// The rows of one way to call the reader. What loading and decoding take is the preview's time less the replay's of the
// same round. A decoding without drawing could be had only by calling the reader with a tiny target, but there arcs and
// points turn into pixels and all texts vanish, which is other work; the drawing calls that are taken off here are
// exactly those that the preview issues, as the equal pictures show.
static void AddSpeedRows(const std::string& what, const Drawing& drawing, const std::vector<Round>& rounds,
                         double Round::*preview, std::vector<Row>* rows) {
    Comparison decoding, whole;
    for (const Round& round : rounds) {
        decoding.measured.push_back(std::max(round.*preview - round.replay, 1e-9));
        decoding.floor.push_back(round.scan);
        whole.measured.push_back(round.*preview);
        whole.floor.push_back(round.scan + round.replay);
    }
    rows->push_back(RateRow(what + "load and decode", decoding, static_cast<double>(drawing.size), kDecodeRate));
    rows->push_back(TimeRow(what + "whole preview", whole, kPreviewTime));
}

static double MedianOf(const std::vector<Round>& rounds, double Round::*work) {
    std::vector<double> values(rounds.size());
    std::transform(rounds.begin(), rounds.end(), values.begin(), [&](const Round& round) { return round.*work; });
    return Median(values);
}

static bool BenchDxfOfSize(Bench* bench, int megabytes, int roundCount) {
    const Drawing* drawing = DrawingOf(bench, megabytes);
    if (!drawing) return false;
    Progress("recording the drawing's GDI calls");
    const Recording recording = RecordPreview(*drawing, kRenderColor, kTarget);
    const std::string what = "dxf " + std::to_string(megabytes) + " MB: ";
    bench->rows.push_back(PictureRow(what, *drawing, recording));  // and the caches are warm
    bench->rows.push_back(PictureRow(what, *drawing, RecordPreview(*drawing, kRenderColor, kLargeTarget)));

    std::vector<Round> rounds(static_cast<std::size_t>(roundCount));
    for (int i = 0; i < roundCount; ++i) {
        Progress(what + "round " + std::to_string(i + 1) + " of " + std::to_string(roundCount));
        if (!MeasureRound(*drawing, recording, i % 2 != 0, &rounds[static_cast<std::size_t>(i)])) {
            return Fail("no preview of " + drawing->path);
        }
    }
    const auto floorRow = [&](const char* name, double Round::*work) {
        const double seconds = MedianOf(rounds, work);
        const std::string rate = Rate(static_cast<double>(drawing->size), seconds);
        bench->rows.push_back({what + name, "", Milliseconds(seconds), rate});
    };
    floorRow("bare scan", &Round::scan);
    floorRow("bare calls (replay)", &Round::replay);
    floorRow("load and free alone", &Round::load);
    AddSpeedRows(what, *drawing, rounds, &Round::preview, &bench->rows);
    AddSpeedRows(what + "with comment, ", *drawing, rounds, &Round::previewWithComment, &bench->rows);
    return true;
}

bool BenchDxf(Bench* bench) {
    if (bench->quick) return BenchDxfOfSize(bench, 10, 9);
    const bool small = BenchDxfOfSize(bench, 10, 21);
    const bool large = BenchDxfOfSize(bench, 100, 7);
    return small && large;
}

// ---- Cancelling

struct Reader {
    std::string path;
    double returned = 0;  // when the reader came back
    UniqueBitmap bitmap;
};

static DWORD WINAPI ReadInThread(void* argument) {
    auto* reader = static_cast<Reader*>(argument);
    reader->bitmap = Preview(reader->path);
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
static Cancelled CancelOnce(const std::string& path, double delay, double* seconds) {
    Reader reader;
    reader.path = path;
    const double start = Now();
    const UniqueHandle thread(CreateThread(nullptr, 0, ReadInThread, &reader, 0, nullptr));
    if (!thread) return Cancelled::kFailed;
    Sleep(20);  // long enough to open the file, far too short to load it
    while (IsBeingLoaded(path)) Sleep(1);
    while (Now() - start < delay) Sleep(1);
    const double cancelled = Now();
    PreviewCancel(0);
    WaitForSingleObject(thread.get(), INFINITE);
    if (reader.bitmap || reader.returned < cancelled) return Cancelled::kTooLate;
    *seconds = reader.returned - cancelled;
    return Cancelled::kInTime;
}

bool BenchCancel(Bench* bench) {
    const int megabytes = bench->quick ? 10 : 100;
    const std::size_t count = bench->quick ? 10 : 20;
    const Drawing* drawing = DrawingOf(bench, megabytes);
    if (!drawing) return false;
    const double load = SecondsOf([&] { LoadAlone(*drawing); });
    const double whole = SecondsOf([&] { Preview(drawing->path); });

    Random random{1};
    std::vector<double> times, frees;
    for (std::size_t tries = 0; times.size() < count; ++tries) {
        if (tries > 3 * count) return Fail("cancel: the reader always finishes first");
        const double delay = load + (whole - load) * random.Below(1000) / 1000;
        double seconds = 0;
        switch (CancelOnce(drawing->path, delay, &seconds)) {
            case Cancelled::kFailed: return Fail("cancel: no thread");
            case Cancelled::kTooLate: continue;
            case Cancelled::kInTime: times.push_back(seconds);
        }
        const HGLOBAL block = LoadFileToGlobal(drawing->path.c_str());
        frees.push_back(SecondsOf([&] {
            GlobalUnlock(block);
            GlobalFree(block);
        }));
    }
    const double worst = *std::max_element(times.begin(), times.end());
    const double worstFree = *std::max_element(frees.begin(), frees.end());
    const std::string what = "cancel " + std::to_string(megabytes) + " MB: ";
    const std::string target = "<= " + Milliseconds(kCancelSeconds);
    bench->rows.push_back({what + "worst of " + std::to_string(count), Milliseconds(worst),
                           Milliseconds(worstFree) + " (free)", "", target,
                           worst <= kCancelSeconds ? Row::kMet : Row::kMissed});
    bench->rows.push_back({what + "median", Milliseconds(Median(times)), Milliseconds(Median(frees)) + " (free)"});
    return true;
}

// ---- Memory

int PreviewMemoryKilobytes(const char* smallDrawing, const char* drawing) {
    if (!Preview(smallDrawing)) return -1;  // what the process needs once: fonts, system libraries, the heap's start
    PROCESS_MEMORY_COUNTERS before = {}, after = {};
    const HANDLE process = GetCurrentProcess();
    if (!GetProcessMemoryInfo(process, &before, sizeof(before)) || !Preview(drawing) ||
        !GetProcessMemoryInfo(process, &after, sizeof(after))) {
        return -1;
    }
    // Either may miss something: a working set what was never touched, and not every system keeps the other's peak.
    const SIZE_T resident = after.PeakWorkingSetSize - before.WorkingSetSize;
    const SIZE_T committed = after.PeakPagefileUsage - before.PagefileUsage;
    return static_cast<int>(std::max(resident, committed) / 1024);
}

// A process's peak never falls, so each measurement needs a process of its own.
static bool RunPreviewMemory(const Drawing& smallDrawing, const Drawing& drawing, int* kilobytes) {
    char program[MAX_PATH];
    const DWORD length = GetModuleFileNameA(nullptr, program, sizeof(program));
    if (length == 0 || length >= sizeof(program)) return false;
    std::string command =
        "\"" + std::string(program) + "\" --preview-memory \"" + smallDrawing.path + "\" \"" + drawing.path + "\"";
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
        if (!RunPreviewMemory(*smallDrawing, *drawing, &kilobytes)) return Fail("memory: the process has failed");
        peaks.push_back(kilobytes / 1024.0);
    }
    const double peak = Median(peaks);
    const double file = static_cast<double>(drawing->size) / static_cast<double>(kMegabyte);
    bench->rows.push_back({"memory " + std::to_string(megabytes) + " MB: peak of the preview", Number(peak, 2) + " MB",
                           Number(file, 2) + " MB", Number(peak / file, 2), "<= file + 1 MB",
                           peak <= file + 1 ? Row::kMet : Row::kMissed});
    return true;
}
