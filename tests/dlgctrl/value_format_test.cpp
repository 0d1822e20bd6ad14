#include "dlgctrl/value_format.h"

#include <gtest/gtest.h>

#include <clocale>

#include "kit/code_page.h"

TEST(ValueFormat, Formats) {
    const std::string cases[][2] = {
        // clang-format off
        {FormatInteger("%ld", 100000), "100000"}, {FormatInteger("%-5i|", 42), "42   |"},
        {FormatInteger("%+05d", 42), "+0042"}, {FormatInteger("%X%%", 255), "FF%"}, {FormatInteger("%hd", 65537), "1"},
        {FormatInteger("text", 7), "text"}, {FormatInteger("%999d", 7), std::string(998, ' ') + "7"},
        // none of these suits an integer
        {FormatInteger("%d%d", 7), "7"}, {FormatInteger("%s", 7), "7"}, {FormatInteger("%n", 7), "7"},
        {FormatInteger("%*d", 7), "7"}, {FormatInteger("%1000d", 7), "7"}, {FormatInteger("%.9999d", 7), "7"},
        {FormatInteger("%5", 7), "7"},
        {FormatReal("%.1lf mm", 2.25), "2.2 mm"}, {FormatReal("%g", 0.5), "0.5"}, {FormatReal("%s", 1.5), "1.500"},
        {FormatText("%4s|%%", "ab"), "  ab|%"}, {FormatText("%-4s|", "ab"), "ab  |"}, {FormatText("%d", "ab"), "ab"},
        // clang-format on
        {FormatText("%.3s|", "\x93\xFA\x96\x7B"), IsSystemLeadByte(0x93) ? "\x93\xFA|" : "\x93\xFA\x96|"},
    };
    for (const auto& c : cases) EXPECT_EQ(c[0], c[1]);
    if (std::setlocale(LC_ALL, "German")) {  // a host's
        EXPECT_EQ(FormatReal("a, %.2e", -1.5), "a, -1.50e+00");
        std::setlocale(LC_ALL, "C");
    }
    EXPECT_EQ(FormatReal("%.999lf", 1e300).size(), 301u + 1 + 999);
}

TEST(ValueFormat, ModuleSettings) {
    SetRealFormat(nullptr, 0);
    EXPECT_EQ(FormatReal(nullptr, 2), "2.");
    SetRealFormat("%.1lf 456789abc0efgh", 0);
    EXPECT_EQ(FormatReal(nullptr, 2), "2.0 456789abc0") << "16 bytes of it; no zero that a unit follows is cut";
    char format[kRealFormatSize + 1] = "................";
    int decimals = -1;
    GetRealFormat(format, &decimals);
    EXPECT_STREQ(format, "%.1lf 456789abc0");
    EXPECT_EQ(decimals, 0);
    SetRealFormat(nullptr, -1);
}
