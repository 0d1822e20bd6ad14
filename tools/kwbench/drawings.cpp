// The readers of native, backup and text drawings: speed against their floors, and the time to cancel.
#include <algorithm>
#include <charconv>
#include <cstdint>

#include "kwbench.h"
#include "preview.h"

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

static constexpr struct {
    const char* what;
    DrawingFormat format;
    std::size_t size, entityCount;  // whichever comes first
    int rounds;
    PreviewTarget target;
} kDrawings[] = {
    {"native 65535: ", DrawingFormat::kNative, SIZE_MAX, 65535, 15, {1.15}},
    {"backup 1000000: ", DrawingFormat::kBackup, SIZE_MAX, 1000000, 7, {1.15}},
    {"text 10 MB: ", DrawingFormat::kText, 10 * kMegabyte, SIZE_MAX, 15, {1.25, 0.4, SumOfValues}},
};

bool BenchDrawings(Bench* bench) {
    bool good = true;
    for (const auto& row : kDrawings) {
        Progress(std::string(row.what) + "writing the drawing");
        Drawing drawing = {row.format, bench->folder + "drawing" + ExtensionOf(row.format)};
        if (!WriteDrawing(row.size, row.entityCount, &drawing)) return Fail("cannot write " + drawing.path);
        good = AddPreviewRows(bench, row.what, drawing, row.target, bench->quick ? 5 : row.rounds) && good;
        good = AddCancelRows(bench, row.what, drawing) && good;
    }
    return good;
}
