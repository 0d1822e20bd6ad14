// Time, statistics, and the rows of the table.
#include <algorithm>
#include <cstdio>
#include <functional>

#include "kwbench.h"

double Now() {
    LARGE_INTEGER frequency, ticks;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&ticks);
    return static_cast<double>(ticks.QuadPart) / static_cast<double>(frequency.QuadPart);
}

std::vector<Series> Measure(int roundCount, const std::vector<Work>& works) {
    std::vector<Series> all(works.size());
    for (int round = 0; round < roundCount; ++round) {
        for (std::size_t i = 0; i < works.size(); ++i) {
            const std::size_t turn = round % 2 == 0 ? i : works.size() - 1 - i;
            all[turn].push_back(works[turn](round));
        }
    }
    return all;
}

double Median(Series values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

static double MedianRatio(const Series& measured, const Series& floor) {
    Series ratios(measured.size());
    std::transform(measured.begin(), measured.end(), floor.begin(), ratios.begin(), std::divides<>());
    return Median(ratios);
}

std::string Number(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof(text), "%.*f", decimals, value);
    return text;
}

std::string Milliseconds(double seconds) { return Number(seconds * 1000, seconds < 0.1 ? 2 : 0) + " ms"; }

std::string Rate(double bytes, double seconds) {
    return Number(bytes / seconds / static_cast<double>(kMegabyte), 0) + " MB/s";
}

static Row::Verdict VerdictOn(bool met) { return met ? Row::kMet : Row::kMissed; }

Row TimeRow(const std::string& what, const Series& measured, const Series& floor, double limit) {
    const double ratio = MedianRatio(measured, floor);
    return {what,
            Milliseconds(Median(measured)),
            Milliseconds(Median(floor)),
            Number(ratio, 2),
            "<= " + Number(limit, 2),
            VerdictOn(ratio <= limit)};
}

Row RateRow(const std::string& what, const Series& measured, const Series& floor, double amount, RateCell cell,
            double limit) {
    const double ratio = 1 / MedianRatio(measured, floor);  // rates are to each other as times the other way round
    return {what,
            cell(amount, Median(measured)),
            cell(amount, Median(floor)),
            Number(ratio, 2),
            ">= " + Number(limit, 2),
            VerdictOn(ratio >= limit)};
}

Row WorstRow(const std::string& what, const Series& seconds, double limit) {
    const double worst = *std::max_element(seconds.begin(), seconds.end());
    return {what + ", worst of " + std::to_string(seconds.size()),
            Milliseconds(worst),
            Milliseconds(Median(seconds)) + " (median)",
            "",
            "<= " + Milliseconds(limit),
            VerdictOn(worst <= limit)};
}
