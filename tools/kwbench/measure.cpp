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

Row CompareRow(const std::string& what, const Series& measured, const Series& floor, double limit,
               const Amount& amount) {
    // Rates are to each other as the times are the other way round.
    const double times = MedianRatio(measured, floor), ratio = amount.cell ? 1 / times : times;
    const auto cell = [&](const Series& series) {
        return amount.cell ? amount.cell(amount.worked, Median(series)) : Milliseconds(Median(series));
    };
    const bool met = amount.cell ? ratio >= limit : ratio <= limit;
    return {what,
            cell(measured),
            cell(floor),
            Number(ratio, 2),
            (amount.cell ? ">= " : "<= ") + Number(limit, 2),
            met ? Row::kMet : Row::kMissed};
}

void AddComparison(Bench* bench, const std::string& what, int roundCount, const Work& measured, const Work& floor,
                   double limit, const Amount& amount) {
    const std::vector<Series> times = Measure(roundCount, {measured, floor});
    bench->rows.push_back(CompareRow(what, times[0], times[1], limit, amount));
}

Row WorstRow(const std::string& what, const Series& seconds, double limit) {
    const double worst = *std::max_element(seconds.begin(), seconds.end());
    return {what + ", worst of " + std::to_string(seconds.size()),
            Milliseconds(worst),
            Milliseconds(Median(seconds)) + " (median)",
            "",
            "<= " + Milliseconds(limit),
            worst <= limit ? Row::kMet : Row::kMissed};
}
