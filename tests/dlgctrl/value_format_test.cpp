#include "dlgctrl/value_format.h"

#include <gtest/gtest.h>

#include <clocale>

#include "kit/code_page.h"
#include "support/cases.h"

TEST(ValueFormat, Formats) {
    const auto rows = [](const char* block) { return TableRows("dlgctrl/tables.txt", block); };
    for (const auto& row : rows("integers"))
        EXPECT_EQ(FormatInteger(row[0].c_str(), std::stoi(row[1])), row[2]) << row[0];
    for (const auto& row : rows("reals")) EXPECT_EQ(FormatReal(row[0].c_str(), std::stod(row[1])), row[2]);
    for (const auto& row : rows("texts")) EXPECT_EQ(FormatText(row[0].c_str(), row[1].c_str()), row[2]);
    EXPECT_EQ(FormatInteger("%999d", 7), std::string(998, ' ') + "7");
    EXPECT_EQ(FormatText("%.3s|", "\x93\xFA\x96\x7B"), IsSystemLeadByte(0x93) ? "\x93\xFA|" : "\x93\xFA\x96|");
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
