#include "preview.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "record.h"

static constexpr std::size_t kQuickLargeCount = 500000;  // entities; more take half a minute

static constexpr PixelRect kPane = {0, 0, 300, 200};
static constexpr PixelRect kLarge = {0, 0, 3000, 2000};  // little of a drawing hides the rest there

UniqueBitmap Preview(const Drawing& drawing, int width, int height) {
    const RECT target = {0, 0, width, height};
    return UniqueBitmap(
        PreviewFile(FormatOf(drawing.format), drawing.path.c_str(), {kRenderColor, &target, nullptr, 0}));
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

// ---- Pictures

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
    const auto floor = PixelsOf(UniqueBitmap(Replay(recording, Fonts::kMadeOnce)).get());
    const auto measured = PixelsOf(Preview(drawing, recording.target.right, recording.target.bottom).get());
    std::size_t differing = floor.size();
    if (measured.size() == floor.size()) {
        differing = 0;
        for (std::size_t i = 0; i < floor.size(); ++i) differing += measured[i] != floor[i];
    }
    return {what + "replay's picture, " + std::to_string(recording.target.right) + " wide",
            std::to_string(differing) + " bytes differ",
            std::to_string(recording.out.strokes.size()) + " strokes",
            "",
            "0",
            differing == 0 && !floor.empty() ? Row::kMet : Row::kMissed};
}

// ---- Speed

struct Round {
    double scan = 0, replay = 0, load = 0, decode = 0, preview = 0;
};

// All works of one round, in turns from the front and from the back, so that none always follows the same one.
static bool MeasureRound(const Drawing& drawing, const Recording& recording, const PreviewTarget& target, bool backward,
                         Round* out) {
    bool good = true;
    double sum = 0;
    const Fonts fonts = target.drawingAlone ? Fonts::kMadeAtEachChange : Fonts::kMadeOnce;
    const auto measure = [&](int work) {
        switch (work) {
            case 0:
                if (target.scan) out->scan = SecondsOf([&] { good &= BareScan(drawing, target.scan, &sum); });
                break;
            case 1: out->preview = SecondsOf([&] { good &= Preview(drawing) != nullptr; }); break;
            case 2: out->replay = SecondsOf([&] { good &= UniqueBitmap(Replay(recording, fonts)) != nullptr; }); break;
            case 3: out->decode = SecondsOf([&] { good &= DecodeOnly(drawing, kPane); }); break;
            default: out->load = SecondsOf([&] { good &= LoadedFile(drawing.path.c_str()).data != nullptr; }); break;
        }
    };
    for (int i = 0; i < 5; ++i) measure(backward ? 4 - i : i);
    return good && (!target.scan || sum != 0);
}

static std::vector<double> ValuesOf(const std::vector<Round>& rounds, double Round::*work) {
    std::vector<double> values(rounds.size());
    std::transform(rounds.begin(), rounds.end(), values.begin(), [work](const Round& round) { return round.*work; });
    return values;
}

bool AddPreviewRows(Bench* bench, const std::string& what, const Drawing& drawing, const PreviewTarget& target,
                    int roundCount) {
    Progress("recording the drawing's strokes");
    const Recording recording = RecordPreview(drawing, kPane);
    bench->rows.push_back(PictureRow(what, drawing, recording));  // and the caches are warm
    if (!bench->quick || drawing.entityCount <= kQuickLargeCount) {
        bench->rows.push_back(PictureRow(what, drawing, RecordPreview(drawing, kLarge)));
    }

    std::vector<Round> rounds(static_cast<std::size_t>(roundCount));
    for (int i = 0; i < roundCount; ++i) {
        Progress(what + "round " + std::to_string(i + 1) + " of " + std::to_string(roundCount));
        if (!MeasureRound(drawing, recording, target, i % 2 != 0, &rounds[static_cast<std::size_t>(i)])) {
            return Fail("no preview of " + drawing.path);
        }
    }
    const auto bytes = static_cast<double>(drawing.size);
    const auto plainRow = [&](const char* name, double Round::*work) {
        const double seconds = Median(ValuesOf(rounds, work));
        bench->rows.push_back({what + name, "", Milliseconds(seconds), Rate(bytes, seconds)});
    };
    if (target.scan) plainRow("bare scan", &Round::scan);
    plainRow("bare calls (replay)", &Round::replay);
    plainRow("load and free alone", &Round::load);
    if (target.decodeRate > 0) {
        const Comparison decoding = {ValuesOf(rounds, &Round::decode), ValuesOf(rounds, &Round::scan)};
        bench->rows.push_back(RateRow(what + "load and decode", decoding, bytes, Rate, target.decodeRate));
    }
    Comparison whole = {ValuesOf(rounds, &Round::preview), ValuesOf(rounds, &Round::replay)};
    for (std::size_t i = 0; i < rounds.size() && !target.drawingAlone; ++i) {
        whole.floor[i] += target.scan ? rounds[i].scan : rounds[i].load;
    }
    bench->rows.push_back(TimeRow(what + "whole preview", whole, target.previewTime));
    return true;
}
