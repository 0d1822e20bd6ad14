// The full DXF reader: decoding against a bare scan, a preview against the basic reader's, and memory.
#include <windows.h>
// psapi.h needs windows.h.
#include <psapi.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <memory>
#include <vector>

#include "kit/handles.h"
#include "kwbench.h"
#include "preview.h"
#include "preview/reader.h"

static constexpr double kDecodeRate = 0.25;                   // of the bare scan's, both walks together
static constexpr double kPreviewTime = 1.5;                   // times the basic reader's
static constexpr double kMemoryFactor = 2, kMemoryMore = 16;  // times the file, and megabytes

// ---- The drawing: what the basic reader's drawings lack

struct Writer {
    std::FILE* file;
    Random random = {kDrawingSeed};
    std::size_t size = 0;

    void Put(int code, const std::string& value) {
        const int written = std::fprintf(file, "%3d\r\n%s\r\n", code, value.c_str());
        if (written > 0) size += static_cast<std::size_t>(written);
    }
    void Put(int code, double value) {
        char text[32];
        std::snprintf(text, sizeof(text), "%.6f", value);
        Put(code, std::string(text));
    }
    double Below(double bound) { return bound * random.Below(1'000'000) / 1e6; }
    void At(double x, double y) {
        Put(10, x);
        Put(20, y);
    }
    void Begin(const char* kind) {
        Put(0, kind);
        Put(8, "LAYER" + std::to_string(random.Below(30)));
    }
};

static void PutPolyline(Writer& out) {
    double x = out.Below(1000), y = out.Below(1000);
    out.Begin("LWPOLYLINE");
    for (int i = 0; i < 20; ++i) {
        out.At(x += out.Below(3), y += out.Below(2) - 1);
        if (i % 5 == 0) out.Put(42, 0.3);
    }
}

static void PutSpline(Writer& out) {
    double x = out.Below(1000), y = out.Below(1000);
    out.Begin("SPLINE");
    out.Put(71, "3");
    for (int i = 0; i < 14; ++i) out.Put(40, std::clamp(i - 3, 0, 7));
    for (int i = 0; i < 10; ++i) out.At(x += out.Below(4), y += out.Below(6) - 3);
}

static void PutInsert(Writer& out) {
    out.Begin("INSERT");
    out.Put(2, "BLOCK");
    out.At(out.Below(1000), out.Below(1000));
    out.Put(50, out.Below(360));
}

static void PutText(Writer& out) {
    out.Begin("TEXT");
    out.At(out.Below(1000), out.Below(1000));
    out.Put(40, 2.5);
    out.Put(1, "Text " + std::to_string(out.random.Below(100000)));
}

static void PutLine(Writer& out) {
    out.Begin("LINE");
    const double x = out.Below(1000), y = out.Below(1000);
    out.At(x, y);
    out.Put(11, x + out.Below(20));
    out.Put(21, y + out.Below(20));
}

static bool WriteFullDrawing(const std::string& path, std::size_t size) {
    static constexpr void (*kKinds[])(Writer&) = {PutPolyline, PutSpline, PutInsert, PutText, PutLine, PutLine};
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "wb"), std::fclose);
    if (!file) return false;
    Writer out = {file.get()};
    out.Put(0, "SECTION");
    out.Put(2, "TABLES");
    for (int i = 0; i < 30; ++i) {
        out.Put(0, "LAYER");
        out.Put(2, "LAYER" + std::to_string(i));
    }
    out.Put(0, "ENDSEC");
    out.Put(0, "SECTION");
    out.Put(2, "BLOCKS");
    out.Put(0, "BLOCK");
    out.Put(2, "BLOCK");
    for (int i = 0; i < 10; ++i) PutLine(out);
    out.Put(0, "ENDBLK");
    out.Put(0, "ENDSEC");
    out.Put(0, "SECTION");
    out.Put(2, "ENTITIES");
    while (out.size < size) kKinds[out.random.Below(6)](out);
    out.Put(0, "ENDSEC");
    out.Put(0, "EOF");
    return std::ferror(file.get()) == 0;
}

// ---- Speed

// A sink that takes everything and draws nothing.
static bool DecodeAlone(ByteView file) {
    static std::atomic<std::int32_t> goOn = 1;
    DrawingSink sink = {};
    sink.fit = [](DrawingSink& self, const WorldRect& extents, DrawingSink::FitMode) {
        FitViewTransform(extents, {0, 0, kPaneTarget.right, kPaneTarget.bottom}, &self.view);
        return true;
    };
    sink.draw = [](DrawingSink&, PreviewPrimitive&, unsigned) {};
    sink.path = [](DrawingSink&, const Path&, unsigned) {};
    sink.unicodeText = [](DrawingSink&, const UnicodeText&) {};
    sink.goOn = &goOn;
    return DecodeFullDxf(file, nullptr, &sink);
}

static bool BenchDecoding(Bench* bench, int megabytes, int roundCount) {
    const std::string what = "full DXF " + std::to_string(megabytes) + " MB: ", path = bench->folder + "full.dxf";
    Progress(what + "writing the drawing");
    if (!WriteFullDrawing(path, static_cast<std::size_t>(megabytes) * kMegabyte)) return Fail("cannot write " + path);
    const LoadedFile file(path.c_str());
    if (!file.data) return Fail("cannot load " + path);
    const ByteView bytes = {file.data, file.size};
    const auto* const begin = reinterpret_cast<const char*>(file.data);
    bool good = true;
    double sum = 0;
    const Comparison rounds = Compare(
        roundCount, [&] { return SecondsOf([&] { good = DecodeAlone(bytes) && good; }); },
        [&] { return SecondsOf([&] { sum += SumOfGroups(begin, begin + bytes.size); }); });
    if (!good || sum == 0) return Fail("no drawing in " + path);
    bench->rows.push_back(RateRow(what + "decode", rounds, static_cast<double>(file.size), kDecodeRate));
    return true;
}

static bool BenchBothReaders(Bench* bench, int megabytes, int roundCount) {
    const Drawing* drawing = DrawingOf(bench, megabytes);
    if (!drawing) return false;
    bool good = true;
    const auto read = [&](PreviewReader reader) {
        return SecondsOf([&] {
            good = UniqueBitmap(reader(kRenderColor, drawing->path.c_str(), &kPaneTarget, nullptr, 0)) && good;
        });
    };
    const Comparison rounds = Compare(
        roundCount, [&] { return read(ReadFullDxfPreview); }, [&] { return read(ReadDxfPreview); });
    if (!good) return Fail("no preview of " + drawing->path);
    bench->rows.push_back(
        TimeRow("dxf " + std::to_string(megabytes) + " MB: full reader's preview, against the basic one's", rounds,
                kPreviewTime));
    return true;
}

// ---- Memory

// What a decoding adds to the process's peak, in megabytes. It is measured before anything else here has raised it.
static bool BenchDecodingMemory(Bench* bench, int megabytes) {
    const std::string path = bench->folder + "full_memory.dxf";
    if (!WriteFullDrawing(path, static_cast<std::size_t>(megabytes) * kMegabyte)) return Fail("cannot write " + path);
    PROCESS_MEMORY_COUNTERS before = {}, after = {};
    const HANDLE process = GetCurrentProcess();
    GetProcessMemoryInfo(process, &before, sizeof(before));
    if (!UniqueBitmap(ReadFullDxfPreview(kRenderColor, path.c_str(), &kPaneTarget, nullptr, 0)))
        return Fail("no preview");
    GetProcessMemoryInfo(process, &after, sizeof(after));
    const SIZE_T resident = after.PeakWorkingSetSize - before.WorkingSetSize;
    const SIZE_T committed = after.PeakPagefileUsage - before.PagefileUsage;
    const double peak = static_cast<double>(std::max(resident, committed)) / static_cast<double>(kMegabyte);
    bench->rows.push_back({"full DXF " + std::to_string(megabytes) + " MB: peak of the preview",
                           Number(peak, 2) + " MB", std::to_string(megabytes) + " MB", Number(peak / megabytes, 2),
                           "<= 2 x file + 16 MB",
                           peak <= kMemoryFactor * megabytes + kMemoryMore ? Row::kMet : Row::kMissed});
    return true;
}

bool BenchFullDxf(Bench* bench) {
    const int large = bench->quick ? 10 : 100;
    return BenchDecodingMemory(bench, large) && BenchDecoding(bench, 10, bench->quick ? 9 : 21) &&
           (bench->quick || BenchDecoding(bench, 100, 7)) && BenchBothReaders(bench, 10, bench->quick ? 5 : 15);
}
