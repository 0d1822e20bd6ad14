// The full DXF reader: decoding against a bare scan, a preview against the basic reader's, and memory.
#include <algorithm>

#include "kit/handles.h"
#include "kwbench.h"
#include "preview.h"
#include "preview/reader.h"

static constexpr double kDecodeRate = 0.25;                   // of the bare scan's, both walks together
static constexpr double kPreviewTime = 1.5;                   // times the basic reader's
static constexpr double kMemoryFactor = 2, kMemoryMore = 16;  // times the file, and megabytes

// ---- The drawing: what the basic reader's drawings lack

struct FullDrawing : Writer {
    using Writer::Writer;
    Random random = {kDrawingSeed};
    double Below(double bound) { return random.Between(0, bound); }
    void Begin(const char* kind) {
        Pair(0, kind);
        Pair(8, "LAYER" + std::to_string(random.Below(30)));
    }
};

static void PutPolyline(FullDrawing& out) {
    double x = out.Below(1000), y = out.Below(1000);
    out.Begin("LWPOLYLINE");
    for (int i = 0; i < 20; ++i) {
        out.Pair(10, x += out.Below(3));
        out.Pair(20, y += out.Below(2) - 1);
        if (i % 5 == 0) out.Pair(42, 0.3);
    }
}

static void PutSpline(FullDrawing& out) {
    double x = out.Below(1000), y = out.Below(1000);
    out.Begin("SPLINE");
    out.Pair(71, "3");
    for (int i = 0; i < 14; ++i) out.Pair(40, std::clamp<double>(i - 3, 0, 7));
    for (int i = 0; i < 10; ++i) out.Point(10, x += out.Below(4), y += out.Below(6) - 3);
}

static void PutInsert(FullDrawing& out) {
    out.Begin("INSERT");
    out.Pair(2, "BLOCK");
    out.Point(10, out.Below(1000), out.Below(1000));
    out.Pair(50, out.Below(360));
}

static void PutText(FullDrawing& out) {
    out.Begin("TEXT");
    out.Point(10, out.Below(1000), out.Below(1000));
    out.Pair(40, 2.5);
    out.Pair(1, "Text " + std::to_string(out.random.Below(100000)));
}

static void PutLine(FullDrawing& out) {
    out.Begin("LINE");
    const double x = out.Below(1000), y = out.Below(1000);
    out.Point(10, x, y);
    out.Point(11, x + out.Below(20), y + out.Below(20));
}

static bool WriteFullDrawing(const std::string& path, std::size_t size) {
    static constexpr void (*kKinds[])(FullDrawing&) = {PutPolyline, PutSpline, PutInsert, PutText, PutLine, PutLine};
    FullDrawing out(path);
    out.Pairs({{0, "SECTION"}, {2, "TABLES"}});
    for (int i = 0; i < 30; ++i) {
        out.Pair(0, "LAYER");
        out.Pair(2, "LAYER" + std::to_string(i));
    }
    out.Pairs({{0, "ENDSEC"}, {0, "SECTION"}, {2, "BLOCKS"}, {0, "BLOCK"}, {2, "BLOCK"}});
    for (int i = 0; i < 10; ++i) PutLine(out);
    out.Pairs({{0, "ENDBLK"}, {0, "ENDSEC"}, {0, "SECTION"}, {2, "ENTITIES"}});
    while (out.file && out.size < size) kKinds[out.random.Below(6)](out);
    out.Pairs({{0, "ENDSEC"}, {0, "EOF"}});
    return out.End();
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
    bench->rows.push_back(RateRow(what + "decode", rounds, static_cast<double>(file.size), Rate, kDecodeRate));
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

static bool BenchDecodingMemory(Bench* bench, int megabytes) {
    const std::string path = bench->folder + "full_memory.dxf";
    const auto size = static_cast<std::size_t>(megabytes) * kMegabyte;
    if (!WriteFullDrawing(path, size)) return Fail("cannot write " + path);
    return AddMemoryRow(bench, "full DXF " + std::to_string(megabytes) + " MB", {kRenderColor | kRenderFullDxf, path},
                        size, kMemoryFactor, kMemoryMore);
}

bool BenchFullDxf(Bench* bench) {
    const int large = bench->quick ? 10 : 100;
    return BenchDecodingMemory(bench, large) && BenchDecoding(bench, 10, bench->quick ? 9 : 21) &&
           (bench->quick || BenchDecoding(bench, 100, 7)) && BenchBothReaders(bench, 10, bench->quick ? 5 : 15);
}
