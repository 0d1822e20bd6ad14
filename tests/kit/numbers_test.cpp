#include "kit/numbers.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <tuple>

#include "support/guard_block.h"

static constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(Numbers, ParseDecimal) {
    const std::tuple<const char*, double, std::size_t> cases[] = {
        // clang-format off
        {"-.5", -0.5, 3}, {"+5.", 5, 3}, {"00012", 12, 5}, {"  -7.25 ", -7.25, 7}, {"12abc", 12, 2}, {"1,5", 1, 1},
        {"1E+3", 1000, 4}, {"25e-2", 0.25, 5}, {"1e", 1, 1}, {"1e+", 1, 1}, {"2d4", 2, 1}, {"0x10", 0, 1},
        {"-1e999", -kInfinity, 6}, {"1e-999", 0, 6}, {"1e99999999999999999999", kInfinity, 22},  // beyond the range
        {"", 0, 0}, {"  ", 0, 0}, {".", 0, 0}, {"-", 0, 0}, {"+-3", 0, 0}, {"- 3", 0, 0}, {"e5", 0, 0}, {"inf", 0, 0},
        // clang-format on
    };
    for (const auto& [string, value, length] : cases) {
        const GuardBlock text((std::string(string)));  // no zero behind it: the end is the view's
        std::size_t used = 99;
        EXPECT_EQ(ParseDecimal(text.View(), &used), value) << string;
        EXPECT_EQ(used, length) << string;
    }
}

// Printed numbers of every length, with and without exponent, come back as the standard conversion reads them.
TEST(Numbers, ParseDecimalIsRightToTheLastBit) {
    std::mt19937_64 random(11);
    for (int i = 0; i < 4000; ++i) {
        const double value =
            static_cast<double>(random() >> random() % 60) / static_cast<double>(1 + random() % 100000);
        char text[400];
        std::snprintf(text, sizeof(text), i % 3 ? "%.*f" : "%.*e", i % 18, i % 2 ? value : -value);
        EXPECT_EQ(ParseDecimal({reinterpret_cast<const std::uint8_t*>(text), std::strlen(text)}),
                  std::strtod(text, nullptr))
            << text;
    }
    const std::string zeros(400, '0');
    const std::pair<std::string, double> cases[] = {{"1" + zeros + "e-50", kInfinity}, {"0." + zeros + "1e50", 0}};
    for (const auto& [text, value] : cases)
        EXPECT_EQ(ParseDecimal({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}), value) << text;
}

TEST(Numbers, OutOfRangeBecomesTheProcessorsIndefinite) {
    const std::tuple<double, std::int32_t, std::int64_t> cases[] = {
        // clang-format off
        {-1.5, -1, -1}, {2147483647.9, INT32_MAX, INT32_MAX}, {2147483648.0, INT32_MIN, 2147483648},
        {9223372036854774784.0, INT32_MIN, 9223372036854774784}, {9223372036854775808.0, INT32_MIN, INT64_MIN},
        {-kInfinity, INT32_MIN, INT64_MIN}, {std::nan(""), INT32_MIN, INT64_MIN},
        // clang-format on
    };
    for (const auto& [value, narrow, wide] : cases) {
        EXPECT_EQ(TruncToInt32(value), narrow) << value;
        EXPECT_EQ(TruncToInt64(value), wide) << value;
    }
    EXPECT_EQ(LowInt32(0x180000000), INT32_MIN);
}
