// What the benchmarks share: the run's settings and table, a clock, and the comparison of two series of times.
//
// A benchmark is a function of the shape below, in a source of its subject (SUBJECT.cpp), declared here and
// named in the table of kwbench.cpp. It measures a piece of the library and, in the same rounds, a floor: the least
// that any implementation has to do. Machines are noisy, so ratios count and absolute times do not.
#pragma once

#include <windows.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "inputs.h"

struct Row {
    std::string what, measured, floor = {}, ratio = {}, target = {};
    enum Verdict { kNone, kMet, kMissed } verdict = kNone;
};

struct Bench {
    bool quick = false;
    std::string folder;  // for inputs; ends with a backslash, removed with all it holds at the end of the run
    std::vector<Row> rows;
    std::map<int, Drawing> drawings;  // made so far, by their size in MB
};

constexpr std::size_t kMegabyte = 1 << 20;

// Each adds its rows; false, after a word to the error stream, when it could not run.
bool BenchDxf(Bench* bench);
bool BenchFullDxf(Bench* bench);
bool BenchCancel(Bench* bench);
bool BenchMemory(Bench* bench);
bool BenchIdentify(Bench* bench);
bool BenchExpression(Bench* bench);
bool BenchAttacks(Bench* bench);
bool BenchDialog(Bench* bench);
bool BenchDrawings(Bench* bench);
bool BenchGallery(Bench* bench);
bool BenchList(Bench* bench);

struct PreviewedFile {
    DWORD renderMode;
    std::string path;
};

// A process's peak never falls, so each is measured in a process of its own: reads a small drawing, then a file of any
// kind, and says by how many kilobytes the second has raised the peak; false when the small one gave no preview.
bool RunPreviewMemory(Bench* bench, const PreviewedFile& file, int* kilobytes);
// That process's part; -1 when it fails.
int PreviewMemoryKilobytes(const char* smallDrawing, const PreviewedFile& file);
// Adds the row of the peak, which may be `factor` times the file's size and so many megabytes more; false as above.
bool AddMemoryRow(Bench* bench, const std::string& what, const PreviewedFile& file, std::size_t size, double factor,
                  double more);

// The generated drawing of that size, made at its first use; null, after a word to the error stream, when it cannot be.
const Drawing* DrawingOf(Bench* bench, int megabytes);

// Says on the error stream what is going on, or why a benchmark cannot run (then the result is false).
void Progress(const std::string& text);
bool Fail(const std::string& text);

// Seconds on a clock that never goes back.
double Now();

template <typename Work>
double SecondsOf(Work&& work) {
    const double start = Now();
    work();
    return Now() - start;
}

double Median(std::vector<double> values);

// Two works that were measured in the same rounds, in seconds, one value a round.
struct Comparison {
    std::vector<double> measured, floor;
};

// Times both in so many rounds, each first by turns; `measured` and `floor` return the seconds that they took.
template <typename Measured, typename Floor>
Comparison Compare(int roundCount, Measured measured, Floor floor) {
    Comparison rounds;
    for (int i = 0; i < roundCount; ++i) {
        if (i % 2 == 0) rounds.measured.push_back(measured());
        rounds.floor.push_back(floor());
        if (i % 2 != 0) rounds.measured.push_back(measured());
    }
    return rounds;
}

// The median of the rounds' own ratios: a round's noise hits both sides, so it mostly leaves the ratio.
double MedianRatio(const Comparison& rounds);

// Rows with a verdict: the measured time may be at most `limit` times the floor; or, as rates of an amount that was
// worked through, the measured rate must be at least `limit` times the floor's.
Row TimeRow(const std::string& what, const Comparison& rounds, double limit);
using RateCell = std::string (*)(double amount, double seconds);
Row RateRow(const std::string& what, const Comparison& rounds, double amount, RateCell cell, double limit);

// Cells of the table.
std::string Milliseconds(double seconds);
std::string Rate(double bytes, double seconds);
std::string Number(double value, int decimals);
