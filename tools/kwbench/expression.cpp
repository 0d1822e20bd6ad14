// evaluateExpression on what users type into fields, against the same conversions and operations without a parser.
#include <cmath>
#include <cstring>
#include <iterator>
#include <string>

#include "dlgctrl/expression.h"
#include "kit/numbers.h"
#include "kwbench.h"

static constexpr double kLimit = 0.25;

static double Convert(const char* text) {
    return ParseDecimal({reinterpret_cast<const std::uint8_t*>(text), std::strlen(text)});
}

static constexpr struct {
    const char* text;
    double (*bare)();
} kExpressions[] = {
    {"12.5", [] { return Convert("12.5"); }},
    {"-0.25", [] { return -Convert("0.25"); }},
    {"25.4/2", [] { return Convert("25.4") / Convert("2"); }},
    {"3*4+1.5", [] { return Convert("3") * Convert("4") + Convert("1.5"); }},
    {"100 - 2*12.7", [] { return Convert("100") - Convert("2") * Convert("12.7"); }},
    {"(10+2.5)*4", [] { return (Convert("10") + Convert("2.5")) * Convert("4"); }},
    {"45:30'", [] { return Convert("45") + Convert("30") / 60; }},
    {"sqrt(2)*50", [] { return std::sqrt(Convert("2")) * Convert("50"); }},
    {"120*cos(30)", [] { return Convert("120") * std::cos(Convert("30") * 0.017453292519943295); }},
    {"12 > 5 ? 12 : 5", [] { return Convert("12") > Convert("5") ? Convert("12") : Convert("5"); }},
};

bool BenchExpression(Bench* bench) {
    const int repeats = bench->quick ? 20000 : 100000;
    volatile double sink = 0;
    bool good = true;
    const auto evaluate = [&] {
        for (int i = 0; i < repeats; ++i) {
            for (const auto& expression : kExpressions) {
                const char* position = expression.text;
                double value = 0;
                good &= evaluateExpression(&position, &value) != 0;
                sink = value;
            }
        }
    };
    const auto convert = [&] {
        for (int i = 0; i < repeats; ++i) {
            for (const auto& expression : kExpressions) sink = expression.bare();
        }
    };
    const Comparison rounds = Compare(
        bench->quick ? 5 : 15, [&] { return SecondsOf(evaluate); }, [&] { return SecondsOf(convert); });
    if (!good) return Fail("expression: one of the list failed");
    const auto rate = [](double count, double seconds) { return Number(count / seconds / 1e6, 2) + " M/s"; };
    const double count = repeats * static_cast<double>(std::size(kExpressions));
    bench->rows.push_back(RateRow("expressions", rounds, count, rate, kLimit));
    return true;
}
