// Previews of drawings: the equal picture, and speed against a bare scan of the file and the bare GDI calls.
#include <algorithm>
#include <charconv>
#include <functional>
#include <memory>

#include "preview/dispatch.h"
#include "preview/file_type.h"
#include "record.h"

UniqueBitmap Preview(const std::string& path, DWORD renderMode, const RECT& target, std::string* comment) {
    const PreviewReader read = PaneReaderFor(IdentifyFileType(path.c_str(), nullptr, 0));
    if (!read) return nullptr;
    return UniqueBitmap(read(renderMode, path.c_str(), &target, comment ? comment->data() : nullptr,
                             comment ? static_cast<DWORD>(comment->size()) : 0));
}

static UniqueBitmap DrawnPreview(const std::string& path, DWORD renderMode = kRenderColor, const RECT& target = kPane) {
    UniqueBitmap bitmap = Preview(path, renderMode, target);
    Require(bitmap != nullptr, "no preview of " + path);
    return bitmap;
}

// ---- The bare scan of a text: the mapped file, split into lines, its numbers converted

// Reads numbers as a reader must, and does nothing with them; the sum keeps the conversions from being left out.
using NumberScan = double (*)(const char* at, const char* end);

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

// The numbers behind a line's key, up to a text.
static double SumOfValues(const char* at, const char* end) {
    double sum = 0;
    while (at < end) {
        const char* const lineEnd = LineEnd(at, end);
        at = std::min(at + 3, lineEnd);
        while (at < lineEnd && *at != '\'') {
            double number = 0;
            at = std::from_chars(at, lineEnd, number).ptr;
            sum += number;
            if (at < lineEnd && *at != '\'') ++at;
        }
        at = NextLine(lineEnd, end);
    }
    return sum;
}

struct ViewUnmap {
    void operator()(const void* view) const { UnmapViewOfFile(view); }
};

static void BareScan(const Drawing& drawing, NumberScan scan) {
    const UniqueHandle file(CreateFileA(drawing.path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    const UniqueHandle mapping(CreateFileMappingA(file.get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
    Require(mapping != nullptr, "cannot map " + drawing.path);
    const std::unique_ptr<const void, ViewUnmap> view(MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0));
    const char* const text = static_cast<const char*>(view.get());
    Require(text && scan(text, text + drawing.size) != 0, "no numbers in " + drawing.path);
}

// ---- The drawings

static constexpr std::size_t kAny = SIZE_MAX;
static constexpr FontUse kOnce = FontUse::kMadeOnce, kAgain = FontUse::kMadeAtEachChange;

static constexpr struct DrawingRow {
    const char* name;
    DrawingPlan plan;
    int rounds = 0;             // of the preview's measurement
    double preview = 0;         // which may take so many times its floor
    FontUse fonts = kOnce;      // of the replay, which is the whole floor with kAgain; else a text's scan or the load
                                // of a binary drawing comes before it
    NumberScan scan = nullptr;  // of a text
    double decodeRate = 0;      // at least so many times the scan's
} kDrawings[] = {
    {"dxf 1 MB", {DrawingFormat::kDxf, kMegabyte, kAny}},
    {"dxf 10 MB", {DrawingFormat::kDxf, 10 * kMegabyte, kAny}, 21, 0.55, kOnce, SumOfGroups, 0.65},
    {"dxf 100 MB", {DrawingFormat::kDxf, 100 * kMegabyte, kAny}, 7, 0.55, kOnce, SumOfGroups, 0.65},
    {"native 65535", {DrawingFormat::kNative, kAny, 65535}, 15, 0.5},
    {"backup 1000000", {DrawingFormat::kBackup, kAny, 1000000}, 7, 0.5},
    {"text 10 MB", {DrawingFormat::kText, 10 * kMegabyte, kAny}, 15, 0.65, kOnce, SumOfValues, 0.4},
    {"circles 1 MB", {DrawingFormat::kText, kMegabyte, kAny, Mix::kCircles}, 15, 0.2, kAgain},
    {"10000 texts", {DrawingFormat::kText, kAny, 10000, Mix::kTexts}, 15, 0.35, kAgain},
    {"full DXF 10 MB", {DrawingFormat::kFullDxf, 10 * kMegabyte, kAny}},
    {"full DXF 100 MB", {DrawingFormat::kFullDxf, 100 * kMegabyte, kAny}},
};

const Drawing& DrawingOf(Bench* bench, const std::string& name) {
    const auto known = bench->drawings.find(name);
    if (known != bench->drawings.end()) return known->second;
    Progress("writing " + name);
    const auto row = std::find_if(std::begin(kDrawings), std::end(kDrawings),
                                  [&](const DrawingRow& other) { return other.name == name; });
    return bench->drawings.emplace(name, WriteDrawing(bench->folder + name, row->plan)).first->second;
}

// ---- The rows

static std::vector<std::uint8_t> PixelsOf(HBITMAP bitmap) {
    BITMAP header = {};
    Require(GetObjectA(bitmap, sizeof(header), &header) != 0, "no picture");
    std::vector<std::uint8_t> bits(static_cast<std::size_t>(header.bmWidthBytes * header.bmHeight));
    GetBitmapBits(bitmap, static_cast<LONG>(bits.size()), bits.data());
    return bits;
}

// The replay is a floor only if it does the preview's work: both must end in the same picture.
static Row PictureRow(const std::string& what, const Drawing& drawing, Recording recording) {
    OrderAsCanvas(&recording);
    const auto floor = PixelsOf(ReplayStrokes(recording, FontUse::kMadeOnce).get());
    const auto measured = PixelsOf(DrawnPreview(drawing.path, kRenderColor, recording.target).get());
    Require(floor.size() == measured.size(), "pictures of different sizes of " + drawing.path);
    std::size_t differing = 0;
    for (std::size_t i = 0; i < floor.size(); ++i) differing += measured[i] != floor[i];
    return {what + "replay's picture, " + std::to_string(recording.target.right) + " wide",
            std::to_string(differing) + " bytes differ",
            std::to_string(recording.out.strokes.size()) + " strokes",
            "",
            "0",
            differing == 0 ? Row::kMet : Row::kMissed};
}

static Series Sum(Series a, const Series& b) {
    std::transform(a.begin(), a.end(), b.begin(), a.begin(), std::plus<>());
    return a;
}

static void AddPreviewRows(Bench* bench, const DrawingRow& row, int roundCount) {
    const Drawing& drawing = DrawingOf(bench, row.name);
    const std::string what = std::string(row.name) + ": ";
    Progress(what + "recording and measuring");
    const Recording recording = RecordPreview(drawing, kPane);
    bench->rows.push_back(PictureRow(what, drawing, recording));  // and the caches are warm
    constexpr std::size_t kQuickLargeStrokes = 500000;            // more take half a minute
    if (!bench->quick || recording.out.strokes.size() <= kQuickLargeStrokes) {
        // Little of a drawing hides the rest there.
        bench->rows.push_back(PictureRow(what, drawing, RecordPreview(drawing, {0, 0, 3000, 2000})));
    }
    const auto barely = [&] {
        if (row.scan) BareScan(drawing, row.scan);
    };
    const std::vector<Series> times =
        Measure(roundCount, {Timed(barely), Timed([&] { DrawnPreview(drawing.path); }),
                             Timed([&] { ReplayStrokes(recording, row.fonts); }), Timed([&] { DecodeAlone(drawing); }),
                             Timed([&] { LoadedFile(drawing.path.c_str()); })});
    const Series &scan = times[0], &preview = times[1], &replay = times[2], &decode = times[3], &load = times[4];
    const auto bytes = static_cast<double>(drawing.size);
    const auto addPlain = [&](const char* name, const Series& series) {
        const double seconds = Median(series);
        bench->rows.push_back({what + name, "", Milliseconds(seconds), Rate(bytes, seconds)});
    };
    if (row.scan) addPlain("bare scan", scan);
    addPlain("bare calls (replay)", replay);
    addPlain("load and free alone", load);
    if (row.decodeRate > 0) {
        bench->rows.push_back(CompareRow(what + "load and decode", decode, scan, row.decodeRate, {bytes, Rate}));
    }
    const bool drawingAlone = row.fonts == FontUse::kMadeAtEachChange;
    const Series floor = drawingAlone ? replay : Sum(replay, row.scan ? scan : load);
    bench->rows.push_back(CompareRow(what + "whole preview", preview, floor, row.preview));
}

static void AddRowsOf(Bench* bench, bool areDxf) {
    for (const DrawingRow& row : kDrawings) {
        if (row.rounds == 0 || (row.plan.format == DrawingFormat::kDxf) != areDxf) continue;
        if (bench->quick && row.plan.size == 100 * kMegabyte) continue;
        AddPreviewRows(bench, row, bench->quick ? (areDxf ? 9 : 5) : row.rounds);
    }
}

void BenchDxf(Bench* bench) { AddRowsOf(bench, true); }
void BenchDrawings(Bench* bench) { AddRowsOf(bench, false); }

// ---- The full DXF reader

// Nothing is drawn.
static void DecodeFullDxfAlone(ByteView file) {
    static constexpr std::atomic<std::int32_t> kGoOn = 1;
    DrawingSink sink = {};
    sink.fit = [](DrawingSink& self, const WorldRect& extents, DrawingSink::FitMode) {
        FitViewTransform(extents, {kPane.left, kPane.top, kPane.right, kPane.bottom}, &self.view);
        return true;
    };
    sink.draw = [](DrawingSink&, PreviewPrimitive&, unsigned) {};
    sink.path = [](DrawingSink&, const Path&, unsigned) {};
    sink.unicodeText = [](DrawingSink&, const UnicodeText&) {};
    sink.goOn = &kGoOn;
    Require(DecodeFullDxf(file, nullptr, &sink), "full DXF: no drawing");
}

static void AddDecodingRow(Bench* bench, const std::string& name, int roundCount) {
    const LoadedFile file(DrawingOf(bench, name).path.c_str());
    const auto* const begin = reinterpret_cast<const char*>(file.data);
    const auto decode = [&] { DecodeFullDxfAlone({file.data, file.size}); };
    const auto scan = [&] { Require(SumOfGroups(begin, begin + file.size) != 0, "full DXF: no numbers"); };
    AddComparison(bench, name + ": decode", roundCount, Timed(decode), Timed(scan), 0.25,
                  {static_cast<double>(file.size), Rate});
}

void BenchFullDxf(Bench* bench) {
    AddMemoryRow(bench, bench->quick ? "full DXF 10 MB" : "full DXF 100 MB", kRenderColor | kRenderFullDxf, 2, 16);
    AddDecodingRow(bench, "full DXF 10 MB", bench->quick ? 9 : 21);
    if (!bench->quick) AddDecodingRow(bench, "full DXF 100 MB", 7);
    const std::string path = DrawingOf(bench, "dxf 10 MB").path;
    AddComparison(bench, "dxf 10 MB: full reader's preview, against the basic one's", bench->quick ? 5 : 15,
                  Timed([&] { DrawnPreview(path, kRenderColor | kRenderFullDxf); }), Timed([&] { DrawnPreview(path); }),
                  1.5);
}
