// Small works, many times: IdentifyFileType against what it cannot do without (open, read of the first kilobyte,
// close), evaluateExpression on what users type into fields against the same conversions and operations without a
// parser.
#include <windows.h>

#include <cmath>
#include <cstring>
#include <iterator>

#include "dlgctrl/expression.h"
#include "kit/numbers.h"
#include "kwbench.h"
#include "preview/file_type.h"

static bool BareRead(const std::string& path) {
    const UniqueHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    char head[1024];
    DWORD count = 0;
    return IsOpen(file) && ReadFile(file.get(), head, sizeof(head), &count, nullptr);
}

void BenchIdentify(Bench* bench) {
    constexpr int kTurn = 250;  // so many files by one work, then the same by the others
    const int count = bench->quick ? 2000 : 10000, turns = count / kTurn;
    Progress("writing " + std::to_string(count) + " small files");
    const std::string folder = MakeFolder(*bench, "identify");
    const std::vector<std::string> names = WriteSmallFiles(folder, static_cast<std::size_t>(count));
    const auto each = [&](auto open) {
        return Work([&, open](int round) {
            return Timed([&] {
                for (int i = round % turns * kTurn, end = i + kTurn; i < end; ++i) {
                    Require(open(folder + names[static_cast<std::size_t>(i)]), "identify: a file could not be read");
                }
            })(round);
        });
    };
    char comment[256];
    const std::vector<Work> works = {
        each([](const std::string& path) { return IdentifyFileType(path.c_str(), nullptr, 0) != FT_UNREADABLE; }),
        each([&](const std::string& path) {
            return IdentifyFileType(path.c_str(), comment, sizeof(comment)) != FT_UNREADABLE;
        }),
        each(BareRead)};
    Measure(turns, works);  // what the system keeps of a file
    const std::vector<Series> times = Measure((bench->quick ? 5 : 11) * turns, works);
    const std::string what = "identify " + std::to_string(kTurn) + " of " + std::to_string(count) + " files";
    bench->rows.push_back(CompareRow(what, times[0], times[2], 1.15));
    bench->rows.push_back(CompareRow(what + ", with comment", times[1], times[2], 1.15));
}

static double Convert(const char* text) {
    return ParseDecimal({reinterpret_cast<const std::uint8_t*>(text), std::strlen(text)});
}

static constexpr struct Expression {
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

void BenchExpression(Bench* bench) {
    const int repeats = bench->quick ? 20000 : 100000;
    volatile double sink = 0;
    const auto all = [&](auto valueOf) {
        return Timed([&, valueOf] {
            for (int i = 0; i < repeats; ++i) {
                for (const Expression& expression : kExpressions) sink = valueOf(expression);
            }
        });
    };
    const auto evaluate = [](const Expression& expression) {
        const char* position = expression.text;
        double value = 0;
        Require(evaluateExpression(&position, &value) != 0, expression.text);
        return value;
    };
    const auto convert = [](const Expression& expression) { return expression.bare(); };
    const auto rate = [](double count, double seconds) { return Number(count / seconds / 1e6, 2) + " M/s"; };
    const double count = repeats * static_cast<double>(std::size(kExpressions));
    AddComparison(bench, "expressions", bench->quick ? 5 : 15, all(evaluate), all(convert), 0.25, {count, rate});
}
