// Time, statistics, and the cells of the table.
#include <algorithm>
#include <cstdio>
#include <functional>

#include "kwbench.h"

double Now() {
    static const double secondsPerTick = [] {
        LARGE_INTEGER frequency;
        QueryPerformanceFrequency(&frequency);
        return 1.0 / static_cast<double>(frequency.QuadPart);
    }();
    LARGE_INTEGER ticks;
    QueryPerformanceCounter(&ticks);
    return static_cast<double>(ticks.QuadPart) * secondsPerTick;
}

double Median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

double MedianRatio(const Comparison& rounds) {
    std::vector<double> ratios(rounds.measured.size());
    std::transform(rounds.measured.begin(), rounds.measured.end(), rounds.floor.begin(), ratios.begin(),
                   std::divides<>());
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

Row TimeRow(const std::string& what, const Comparison& rounds, double limit) {
    const double ratio = MedianRatio(rounds);
    return {what,
            Milliseconds(Median(rounds.measured)),
            Milliseconds(Median(rounds.floor)),
            Number(ratio, 2),
            "<= " + Number(limit, 2),
            ratio <= limit ? Row::kMet : Row::kMissed};
}

Row RateRow(const std::string& what, const Comparison& rounds, double amount, RateCell cell, double limit) {
    const double ratio = 1 / MedianRatio(rounds);  // rates are to each other as the times are the other way round
    return {what,
            cell(amount, Median(rounds.measured)),
            cell(amount, Median(rounds.floor)),
            Number(ratio, 2),
            ">= " + Number(limit, 2),
            ratio >= limit ? Row::kMet : Row::kMissed};
}
