#include "preview.h"

#include <windows.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "frame/services.h"
#include "preview/reader.h"
#include "replay.h"

static constexpr RECT kLargeTarget = {0, 0, 3000, 2000};  // little of a drawing hides the rest there
static constexpr std::size_t kQuickLargeCount = 500000;   // entities; more take half a minute
static constexpr DWORD kCommentSize = 32767;
static constexpr double kCancelSeconds = 0.020;

UniqueBitmap Preview(const Drawing& drawing, std::string* comment, const RECT& target) {
    static constexpr PreviewReader kReaders[] = {ReadDxfPreview, ReadNativePreview, ReadBackupDrawing, ReadTextDrawing};
    const PreviewReader read = kReaders[static_cast<int>(drawing.format)];
    return UniqueBitmap(read(kRenderColor, drawing.path.c_str(), &target, comment ? comment->data() : nullptr,
                             comment ? static_cast<DWORD>(comment->size()) : 0));
}

// ---- The bare scan

struct ViewUnmap {
    void operator()(const void* view) const { UnmapViewOfFile(view); }
};

// The floor of all reading: the mapped file, split into lines, its numbers converted. False when it cannot be mapped.
static bool BareScan(const Drawing& drawing, NumberScan scan, double* sum) {
    const UniqueHandle file(CreateFileA(drawing.path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!IsOpen(file)) return false;
    const UniqueHandle mapping(CreateFileMappingA(file.get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
    if (!mapping) return false;
    const std::unique_ptr<const void, ViewUnmap> view(MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0));
    if (!view) return false;
    const char* const text = static_cast<const char*>(view.get());
    *sum = scan(text, text + drawing.size);
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
    const auto measured = PixelsOf(Preview(drawing, nullptr, recording.target).get());
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
static bool MeasureRound(const Drawing& drawing, const Recording& recording, NumberScan scan, bool backward,
                         Round* out) {
    bool good = true;
    double sum = 0;
    std::string comment(kCommentSize, '\0');
    const auto measure = [&](int work) {
        switch (work) {
            case 0:
                if (scan) out->scan = SecondsOf([&] { good = BareScan(drawing, scan, &sum) && good; });
                break;
            case 1: out->preview = SecondsOf([&] { good = Preview(drawing) && good; }); break;
            case 2: out->replay = SecondsOf([&] { good = UniqueBitmap(Replay(recording)) && good; }); break;
            case 3: out->previewWithComment = SecondsOf([&] { good = Preview(drawing, &comment) && good; }); break;
            default: out->load = SecondsOf([&] { good = LoadAlone(drawing) && good; }); break;
        }
    };
    for (int i = 0; i < 5; ++i) measure(backward ? 4 - i : i);
    return good && (!scan || sum != 0);
}

// The rows of one way to call the reader. What loading and decoding take is the preview's time less the replay's of the
// same round. A decoding without drawing could be had only by calling the reader with a tiny target, but there arcs and
// points turn into pixels and all texts vanish, which is other work; the drawing calls that are taken off here are
// exactly those that the preview issues, as the equal pictures show.
static void AddSpeedRows(const std::string& what, const Drawing& drawing, const PreviewTarget& target,
                         const std::vector<Round>& rounds, double Round::*preview, std::vector<Row>* rows) {
    Comparison decoding, whole;
    for (const Round& round : rounds) {
        decoding.measured.push_back(std::max(round.*preview - round.replay, 1e-9));
        decoding.floor.push_back(round.scan);
        whole.measured.push_back(round.*preview);
        whole.floor.push_back((target.scan ? round.scan : round.load) + round.replay);
    }
    if (target.scan) {
        rows->push_back(
            RateRow(what + "load and decode", decoding, static_cast<double>(drawing.size), target.decodeRate));
    }
    rows->push_back(TimeRow(what + "whole preview", whole, target.previewTime));
}

static double MedianOf(const std::vector<Round>& rounds, double Round::*work) {
    std::vector<double> values(rounds.size());
    std::transform(rounds.begin(), rounds.end(), values.begin(), [&](const Round& round) { return round.*work; });
    return Median(values);
}

bool AddPreviewRows(Bench* bench, const std::string& what, const Drawing& drawing, const PreviewTarget& target,
                    int roundCount) {
    Progress("recording the drawing's GDI calls");
    const Recording recording = RecordPreview(drawing, kRenderColor, kPaneTarget);
    bench->rows.push_back(PictureRow(what, drawing, recording));  // and the caches are warm
    if (!bench->quick || drawing.entityCount <= kQuickLargeCount) {
        bench->rows.push_back(PictureRow(what, drawing, RecordPreview(drawing, kRenderColor, kLargeTarget)));
    }

    std::vector<Round> rounds(static_cast<std::size_t>(roundCount));
    for (int i = 0; i < roundCount; ++i) {
        Progress(what + "round " + std::to_string(i + 1) + " of " + std::to_string(roundCount));
        if (!MeasureRound(drawing, recording, target.scan, i % 2 != 0, &rounds[static_cast<std::size_t>(i)])) {
            return Fail("no preview of " + drawing.path);
        }
    }
    const auto floorRow = [&](const char* name, double Round::*work) {
        const double seconds = MedianOf(rounds, work);
        const std::string rate = Rate(static_cast<double>(drawing.size), seconds);
        bench->rows.push_back({what + name, "", Milliseconds(seconds), rate});
    };
    if (target.scan) floorRow("bare scan", &Round::scan);
    floorRow("bare calls (replay)", &Round::replay);
    floorRow("load and free alone", &Round::load);
    AddSpeedRows(what, drawing, target, rounds, &Round::preview, &bench->rows);
    AddSpeedRows(what + "with comment, ", drawing, target, rounds, &Round::previewWithComment, &bench->rows);
    return true;
}

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
    const double load = SecondsOf([&] { LoadAlone(drawing); });
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
