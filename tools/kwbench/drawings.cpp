// The readers of drawings: speed against a bare scan of the file and the bare GDI calls.
#include <algorithm>
#include <charconv>
#include <cstdint>

#include "kwbench.h"
#include "preview.h"

// ---- The numbers of a text

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
double SumOfGroups(const char* at, const char* end) {
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

// ---- The rows

bool BenchDxf(Bench* bench) {
    for (const int megabytes : {10, 100}) {
        if (bench->quick && megabytes > 10) break;
        const Drawing* drawing = DrawingOf(bench, megabytes);
        const std::string what = "dxf " + std::to_string(megabytes) + " MB: ";
        const int roundCount = bench->quick ? 9 : megabytes > 10 ? 7 : 21;
        if (!drawing || !AddPreviewRows(bench, what, *drawing, {0.55, SumOfGroups, 0.65}, roundCount)) return false;
    }
    return true;
}

static constexpr struct {
    const char* what;
    DrawingFormat format;
    Mix mix;
    std::size_t size, entityCount;  // whichever comes first
    int rounds;
    PreviewTarget target;
} kDrawings[] = {
    {"native 65535: ", DrawingFormat::kNative, Mix::kAll, SIZE_MAX, 65535, 15, {0.5}},
    {"backup 1000000: ", DrawingFormat::kBackup, Mix::kAll, SIZE_MAX, 1000000, 7, {0.5}},
    {"text 10 MB: ", DrawingFormat::kText, Mix::kAll, 10 * kMegabyte, SIZE_MAX, 15, {0.65, SumOfValues, 0.4}},
    {"circles 1 MB: ", DrawingFormat::kText, Mix::kCircles, kMegabyte, SIZE_MAX, 15, {0.2, nullptr, 0, true}},
    {"10000 texts: ", DrawingFormat::kText, Mix::kTexts, SIZE_MAX, 10000, 15, {0.35, nullptr, 0, true}},
};

bool BenchDrawings(Bench* bench) {
    bool good = true;
    for (const auto& row : kDrawings) {
        Progress(std::string(row.what) + "writing the drawing");
        Drawing drawing = {row.format, bench->folder + "drawing" + ExtensionOf(row.format), row.mix};
        if (!WriteDrawing(row.size, row.entityCount, &drawing)) return Fail("cannot write " + drawing.path);
        good = AddPreviewRows(bench, row.what, drawing, row.target, bench->quick ? 5 : row.rounds) && good;
        if (row.mix == Mix::kAll) good = AddCancelRows(bench, row.what, drawing) && good;
    }
    return good;
}
