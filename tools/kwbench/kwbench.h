// What the benchmarks share: the run's settings and table, its drawings, a clock, and the comparison of works.
//
// A benchmark measures a piece of the library and, in the same rounds, a floor: the least that any implementation has
// to do. Machines are noisy, so ratios count and absolute times do not.
#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "generate/drawings.h"
#include "kit/handles.h"
#include "preview/reader.h"

struct Row {
    std::string what, measured, floor = {}, ratio = {}, target = {};
    enum Verdict { kNone, kMet, kMissed } verdict = kNone;
};

struct Drawing {
    const PreviewFormat* format;
    std::string path;
    std::size_t size;
};

struct Bench {
    bool quick = false;
    std::string folder;  // for inputs; ends with a backslash, removed with all it holds at the end of the run
    std::vector<Row> rows = {};
    std::map<std::string, Drawing> drawings = {};  // made so far, by their names
};

// Says on the error stream what is going on.
void Progress(const std::string& text);
// Throws a std::runtime_error, which ends a benchmark that cannot run, unless `holds`.
void Require(bool holds, const std::string& otherwise);

// ---- Inputs

constexpr std::size_t kMegabyte = 1 << 20;

// An empty folder for a benchmark alone; ends with a backslash.
std::string MakeFolder(const Bench& bench, const char* name);

void WriteFile(const std::string& path, const std::string& contents);

// Writes small files of all kinds, 1 to 4 KB each, into the folder; returns their names.
std::vector<std::string> WriteSmallFiles(const std::string& folder, std::size_t count);

// Makes a drawing and writes it; the format's extension is added to the path.
Drawing WriteDrawing(const std::string& path, const DrawingPlan& plan);

// The drawing of that name in the table of previews.cpp, written at its first use.
const Drawing& DrawingOf(Bench* bench, const std::string& name);

// The size of a preview pane.
constexpr RECT kPane = {0, 0, 300, 200};

// The preview of any file, as the pane asks for it.
UniqueBitmap Preview(const std::string& path, DWORD renderMode = kRenderColor, const RECT& target = kPane,
                     std::string* comment = nullptr);

// Adds the row of a preview's peak of memory: at most `factor` times the drawing's size and so many megabytes more.
void AddMemoryRow(Bench* bench, const std::string& drawing, DWORD renderMode, double factor, double more);
// What happens in a process of its own; its exit code.
constexpr char kPreviewMemoryOption[] = "--preview-memory";
int MeasurePreviewMemory(const char* smallDrawing, const char* renderMode, const char* path);

// ---- Time

// Seconds on a clock that never goes back.
double Now();

// Does a round's part and returns the seconds that it took.
using Work = std::function<double(int round)>;
using Series = std::vector<double>;

// A work of which all counts.
template <typename Run>
Work Timed(Run run) {
    return [run](int) {
        const double start = Now();
        run();
        return Now() - start;
    };
}

// Does all works in so many rounds, by turns from the first and from the last one; returns a series for each.
std::vector<Series> Measure(int roundCount, const std::vector<Work>& works);

double Median(Series values);

// ---- Rows

// The measured time may be at most `limit` times the floor; or, as rates of an amount that was worked through, the
// measured rate must be at least `limit` times the floor's. The ratio is the median of the rounds' own ratios: a
// round's noise hits both sides, so it mostly leaves the ratio.
struct Amount {
    double worked = 0;
    std::string (*cell)(double amount, double seconds) = nullptr;
};
Row CompareRow(const std::string& what, const Series& measured, const Series& floor, double limit,
               const Amount& amount = {});
// Measures both and adds their row.
void AddComparison(Bench* bench, const std::string& what, int roundCount, const Work& measured, const Work& floor,
                   double limit, const Amount& amount = {});

// None of the times may be longer.
Row WorstRow(const std::string& what, const Series& seconds, double limit);

std::string Milliseconds(double seconds);
std::string Rate(double bytes, double seconds);
std::string Number(double value, int decimals);
