#include "dlgctrl/expression.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

TEST(EvaluateExpression, Table) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const struct {
        const char* text;
        double value;
        const char* rest = "";
        int error = 0;
    } cases[] = {
        // clang-format off
        // precedence, left to right, signs, blanks
        {"2+3*4", 14}, {"(2+3)*4", 20}, {"8-2-1", 5}, {"8/4/2", 1}, {"1/0", kInfinity}, {"2*-3", -6}, {"- -+-4", -4},
        {" \t1\t+ 2 \t", 3},
        // comparisons, with and without tolerance; logic at one level
        {"3=1+2", 1}, {"1=1.000000001", 1}, {"1==1.0000001", 0}, {"1!=1.000000001", 0}, {"1<>2", 1}, {"1><1", 0},
        {"1<1.000000001", 1}, {"1.000000001>1", 1}, {"1.000000001<=1", 1}, {"1.0000001<=1", 0},
        {"1>=1.000000001", 1}, {"1>=1.0000001", 0}, {"3>2>1", 0}, {"1||0&&0", 0}, {"1||0", 1}, {"2&&0.5", 1}, {"1=1&&2=2", 1},
        // conditionals
        {"0 ? 1 : 2", 2}, {"1 ? (0 ? 5 : 6) : 7", 6}, {"0 ? 1:2", 0, "", 1001}, {"1 ? 2", 0, "", 1001},
        {"1 ? 2 : nothing", 0, "nothing", 1003}, {"1 ? 2 : 3 ? 4 : 5", 2, "? 4 : 5"},
        // numbers
        {".5", 0.5}, {"1e3", 1000}, {"1x10", 16}, {"0XfF", 255}, {"0x80000000", -2147483648.0}, {"0x100000002", 2},
        {"12:30'", 12.5}, {"12:30'36\"", 12.51}, {"12\xDF" "30'36\"", 12.51}, {"12:30", 0, "", 1001},
        {"12:30'36", 0, "", 1001}, {"12:", 12, ":"}, {".", 0, ".", 1001},
        // names
        {"abs(-2)", 2}, {"acos(0)", 90}, {"asin(1)", 90}, {"atan(1)", 45}, {"atan2(1,-1)", 135}, {"cos(60)", 0.5},
        {"hypot( 3 , 4 )", 5}, {"Pai", 3.141592653589793}, {"SIN(30)", 0.5}, {"sqrt(2+2)", 2}, {"tan(45)", 1},
        {"pi", 0, "pi", 1003}, {"sqrtabcdef(4)", 0, "sqrtabcdef(4)", 1003}, {"pai()", 3.141592653589793, "()"},
        {"sin 30", 0, "30", 1001}, {"hypot(3)", 0, ")", 1001}, {"hypot(3,4", 0, "", 1001},
        // errors, and what stands behind
        {"", 0, "", 1001}, {"2+", 0, "", 1001}, {"(2", 0, "", 1001}, {"2*#", 0, "#", 1001}, {"12abc", 12, "abc"},
        {"1 2", 1, "2"},
        // clang-format on
    };
    for (const auto& c : cases) {
        const char* position = c.text;
        double value = -1;
        int error = -1;
        EXPECT_EQ(evaluateExpression(&position, &value, &error), c.error == 0) << c.text;
        EXPECT_EQ(error, c.error) << c.text;
        EXPECT_TRUE(value == c.value || std::fabs(value - c.value) <= 1e-14 * std::fabs(c.value))
            << c.text << ": " << value;
        EXPECT_STREQ(position, c.rest) << c.text;
    }
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
