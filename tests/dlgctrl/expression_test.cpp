#include "dlgctrl/expression.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <sstream>

#include "support/samples.h"

// The result is a number or "error NUMBER".
static void ExpectResult(const std::string& text, const std::string& result, const std::string& rest) {
    const bool fails = result.rfind("error ", 0) == 0;
    const double expected = fails ? 0 : std::strtod(result.c_str(), nullptr);
    const char* position = text.c_str();
    double value = -1;
    int error = -1;
    EXPECT_EQ(evaluateExpression(&position, &value, &error), !fails) << text;
    EXPECT_EQ(error, fails ? std::atoi(result.c_str() + 6) : 0) << text;
    EXPECT_TRUE(value == expected || std::fabs(value - expected) <= 1e-14 * std::fabs(expected))
        << text << ": " << value;
    EXPECT_EQ(position, rest) << text;
}

TEST(EvaluateExpression, Table) {
    std::istringstream lines(ReadWholeFile(CheckoutFolder() + "/tests/dlgctrl/expressions.txt"));
    int count = 0;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t arrow = line.find(" => "), at = line.find(" at ", arrow);
        if (arrow == std::string::npos) continue;
        ExpectResult(line.substr(0, arrow), line.substr(arrow + 4, at - arrow - 4),
                     at == std::string::npos ? "" : line.substr(at + 4));
        ++count;
    }
    EXPECT_GT(count, 60);
    ExpectResult(" \t1\t+ 2 \t", "3", "");
    ExpectResult(
        "12\xDF"
        "30'36\"",
        "12.51", "");
}

TEST(EvaluateExpression, NestingIsBounded) {
    const auto gives1 = [](std::size_t depth, const char* opening, char closing) {
        std::string text;
        for (std::size_t i = 0; i < depth; ++i) text += opening;
        text += "1" + (closing ? std::string(depth, closing) : "");
        const char* position = text.c_str();
        double value = 0;
        return evaluateExpression(&position, &value) && value == 1;
    };
    EXPECT_TRUE(gives1(127, "(", ')')) << "all that fits a field";
    EXPECT_TRUE(gives1(127, "0*(1)+(", ')')) << "side by side they are not counted";
    for (const char* opening : {"(", "abs(", "hypot(0,", "-(", "1 ? 1 : ("})
        EXPECT_FALSE(gives1(1000000, opening, ')')) << opening;
    EXPECT_TRUE(gives1(1000000, "-", '\0'));
}
