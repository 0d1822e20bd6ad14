#include "kit/numbers.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <tuple>

#include "support/cases.h"
#include "support/guard_block.h"

static constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(Numbers, ParseDecimal) {
    for (const auto& row : TableRows("kit/numbers.txt", "decimals")) {
        const GuardBlock text(row[0]);  // no zero behind it: the end is the view's
        std::size_t used = 99;
        EXPECT_EQ(ParseDecimal(text.View(), &used), std::strtod(row[1].c_str(), nullptr)) << row[0];
        EXPECT_EQ(std::to_string(used), row[2]) << row[0];
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
