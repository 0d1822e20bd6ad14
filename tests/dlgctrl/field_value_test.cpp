#include "dlgctrl/field_value.h"

#include <gtest/gtest.h>

#include <clocale>

#include "dlgctrl/host_dialog.h"
#include "dlgctrl/value_format.h"

TEST(ValueFormat, Formats) {
    const std::string zeros(300, '0');
    const std::string integers[][2] = {
        // clang-format off
        {FormatInteger(nullptr, -7), "-7"},      {FormatInteger("%ld", 100000), "100000"}, {FormatInteger("%5d|", 42), "   42|"},
        {FormatInteger("%-5i|", 42), "42   |"},  {FormatInteger("%+05d", 42), "+0042"},    {FormatInteger("%X%%", 255), "FF%"},
        {FormatInteger("%hd", 65537), "1"},      {FormatInteger("", 7), ""},               {FormatInteger("text", 7), "text"},
        // none of these suits an integer
        {FormatInteger("%d%d", 7), "7"},         {FormatInteger("%s", 7), "7"},            {FormatInteger("%n", 7), "7"},
        {FormatInteger("%lf", 7), "7"},          {FormatInteger("%*d", 7), "7"},           {FormatInteger("%1000d", 7), "7"},
        {FormatInteger("%", 7), "7"},            {FormatInteger("%5", 7), "7"},            {FormatInteger("%.9999d", 7), "7"},
        {FormatInteger("%999d", 7), std::string(998, ' ') + "7"},
        // clang-format on
    };
    for (const auto& c : integers) EXPECT_EQ(c[0], c[1]);
    const std::string reals[][2] = {
        // clang-format off
        {FormatReal(nullptr, 1.5), "1.500"},     {FormatReal("", -2), "-2.000"},           {FormatReal("%.1lf mm", 2.25), "2.2 mm"},
        {FormatReal("R%8.2f", 1), "R    1.00"},  {FormatReal("%g", 0.5), "0.5"},           {FormatReal("%s", 1.5), "1.500"},
        {FormatReal("%d", 1.5), "1.500"},        {FormatReal("%f%f", 1.5), "1.500"},       {FormatReal("%.0lf", 2), "2"},
        // clang-format on
    };
    for (const auto& c : reals) EXPECT_EQ(c[0], c[1]);
    EXPECT_EQ(FormatReal("%.999lf", 1e300).size(), 301u + 1 + 999);
    const std::string texts[][2] = {
        {FormatText(nullptr, "ab"), "ab"},      {FormatText("<%s>", "ab"), "<ab>"},
        {FormatText("%4s|%%", "ab"), "  ab|%"}, {FormatText("%-4s|", "ab"), "ab  |"},
        {FormatText("%.1s", "ab"), "a"},        {FormatText("%d", "ab"), "ab"},
        {FormatText("%s%s", "ab"), "ab"},       {FormatText("", "ab"), ""},
        {FormatText("%n", "ab"), "ab"},
    };
    for (const auto& c : texts) EXPECT_EQ(c[0], c[1]);
    EXPECT_EQ(FormatText("%.3s|", "\x93\xFA\x96\x7B"), IsDBCSLeadByte(0x93) ? "\x93\xFA|" : "\x93\xFA\x96|");
}

TEST(ValueFormat, ModuleSettings) {
    const struct {
        const char* format;
        int decimals;
        double value;
        const char* shown;
    } cases[] = {
        {nullptr, -1, 2, "2.000"},
        {nullptr, 0, 2, "2."},
        {nullptr, 1, 2.25, "2.25"},
        {nullptr, 1, 2, "2.0"},
        {nullptr, 5, 2, "2.000"},
        {"%.0lf", 0, 20, "20"},
        {"%.1lf mm", 0, 2, "2.0 mm"},
        {"%.3e", 0, 1e10, "1.000e+10"},
        {"%d", -1, 2, "2.000"},
        {"%.1lf 456789abcdefgh", -1, 2, "2.0 456789abcd"},  // 16 bytes of it, without a terminator
    };
    for (const auto& c : cases) {
        EXPECT_EQ(SetRealFormat(c.format, c.decimals), 1);
        EXPECT_EQ(FormatReal(nullptr, c.value), c.shown);
    }
    char format[kRealFormatSize + 1] = "................";
    int decimals = 0;
    EXPECT_EQ(GetRealFormat(format, &decimals), 1);
    EXPECT_STREQ(format, "%.1lf 456789abcd");
    EXPECT_EQ(decimals, -1);
    SetRealFormat(nullptr, -1);
    GetRealFormat(format, nullptr);
    EXPECT_STREQ(format, "%.3lf");
    std::string none = "200";
    EXPECT_FALSE(TrimDecimals(&none, 0));
}

TEST(ValueFormat, ForeignLocale) {
    if (!std::setlocale(LC_ALL, "German") || std::string(std::localeconv()->decimal_point) != ",") {
        std::setlocale(LC_ALL, "C");
        GTEST_SKIP() << "no locale with another point";
    }
    EXPECT_EQ(FormatReal(nullptr, -1.5), "-1.500");
    EXPECT_EQ(FormatReal("a, %.2e", 1.5), "a, 1.50e+00");
    std::setlocale(LC_ALL, "C");
}

// What the check makes of a typed text, in a field whose variable is `type`.
TEST(CheckFields, Table) {
    const struct {
        DWORD type;
        const char* format;
        double minimum, maximum;
        const char *typed, *shown;
    } cases[] = {
        {KW_VALUE_INT32, nullptr, 0, 10, "3*4", "10"},
        {KW_VALUE_INT32, nullptr, 0, 10, "2.7", "2"},
        {KW_VALUE_INT32, nullptr, 0, 10, "", "0"},
        {KW_VALUE_INT32, nullptr, 5, 10, "", "5"},
        {KW_VALUE_INT32, nullptr, 0, 0, "123456", "123456"},
        {KW_VALUE_INT32, "%04ld", 0, 0, "-2.7", "-002"},
        {KW_VALUE_INT32, nullptr, 0, 0, "0 ? 1:2", "0"},
        {KW_VALUE_INT32, nullptr, 0, 0, "12 apples", "12"},
        {KW_VALUE_INT32, nullptr, 0, 0, "7(", "7"},
        {KW_VALUE_INT32, nullptr, 0, 0, "1e99", "-2147483648"},
        {KW_VALUE_INT32, nullptr, 1, 5, "sqrt(-1)", "1"},
        {KW_VALUE_INT32, nullptr, 10, 5, "7", "10"},  // the minimum is stronger
        {KW_VALUE_INT8, nullptr, 0, 0, "300", "300"},
        {KW_VALUE_INT16, nullptr, 0, 0, "70000", "4464"},
        {KW_VALUE_FLOAT, nullptr, 0, 0, "1/3", "0.333"},
        {KW_VALUE_FLOAT, "%.9lf", 0, 0, "0.1", "0.100000001"},
        {KW_VALUE_DOUBLE, "%.9lf", 0, 0, "0.1", "0.100000000"},
        {KW_VALUE_DOUBLE, nullptr, 0, 0.0000001, "5", "5.000"},  // too narrow for a range
        {KW_VALUE_DOUBLE, "", -1, 1, "sin(90)*3", "1.000"},
        {KW_VALUE_TEXT, "<%s>", 0, 100, "2*3", "2*3"},
        {KW_VALUE_NONE, nullptr, 0, 0, "2*3", "2*3"},
    };
    char variable[100] = "";
    for (const auto& c : cases) {
        HostDialog host;
        host.items = {{IDC_FIELD, KW_KIND_EDIT | c.type, variable, c.minimum, c.maximum, c.format}};
        host.opened = [&](HWND dialog) {
            SetDlgItemTextA(dialog, IDC_FIELD, c.typed);
            LeaveField(dialog, IDC_FIELD);
            EXPECT_EQ(TextOf(dialog, IDC_FIELD), c.shown) << c.typed;
        };
        host.endWith = IDCANCEL;
        host.shown = false;
        EXPECT_EQ(host.Run(), 0);
        EXPECT_EQ(std::string(variable, sizeof(variable)), std::string(100, '\0')) << "not touched";
    }
}

TEST(CheckFields, LongTextFieldStays) {
    static char buffer[40000] = "";
    const std::string text(35000, 'x');
    HostDialog host;
    host.items = {{IDC_LONG_FIELD, KW_KIND_EDIT | KW_VALUE_TEXT, buffer, 0, sizeof(buffer), nullptr}};
    host.opened = [&](HWND dialog) {
        SetDlgItemTextA(dialog, IDC_LONG_FIELD, text.c_str());
        LeaveField(dialog, IDC_LONG_FIELD);
    };
    EXPECT_EQ(host.Run(), 1);
    EXPECT_EQ(buffer, text);
}

TEST(CheckFields, OneAndAll) {
    std::int32_t one = 1, two = 2;
    HostDialog host;
    host.items = {{IDC_FIELD, KW_KIND_EDIT | KW_VALUE_INT32, &one, 0, 0, nullptr},
                  {IDC_LABEL, KW_KIND_LABEL, nullptr, 0, 0, nullptr},
                  {IDC_OTHER_FIELD, KW_KIND_EDIT | KW_VALUE_INT32, &two, 0, 0, nullptr}};
    host.opened = [&](HWND dialog) {
        const auto type = [=] {
            SetDlgItemTextA(dialog, IDC_FIELD, "1+1");
            SetDlgItemTextA(dialog, IDC_OTHER_FIELD, "2+2");
        };
        type();
        EXPECT_EQ(CheckFields(dialog, 2), 1);
        EXPECT_EQ(TextOf(dialog, IDC_FIELD) + TextOf(dialog, IDC_OTHER_FIELD), "1+14");
        EXPECT_EQ(CheckFields(dialog, -1), 1);
        EXPECT_EQ(TextOf(dialog, IDC_FIELD) + TextOf(dialog, IDC_OTHER_FIELD), "24");
        for (const int index : {3, -2}) EXPECT_EQ(CheckFields(dialog, index), 0);
        type();
        host.items[0].value = nullptr;
        EXPECT_EQ(CheckFields(dialog, -1), 0);
        EXPECT_EQ(TextOf(dialog, IDC_OTHER_FIELD), "2+2") << "stopped before it";
        host.items[0].value = &one;
        DestroyWindow(GetDlgItem(dialog, IDC_FIELD));
        EXPECT_EQ(CheckFields(dialog, 0), 0);
        EXPECT_EQ(CheckFields(GetDesktopWindow(), -1), 0);
    };
    EXPECT_EQ(host.Run(), 1);
    EXPECT_EQ(one, 1) << "a field that is gone stores nothing";
}

static HWND SpinOf(HWND dialog, int fieldId) {
    for (HWND child = GetTopWindow(dialog); child; child = GetWindow(child, GW_HWNDNEXT)) {
        char name[32] = "";
        GetClassNameA(child, name, sizeof(name));
        const auto buddy = reinterpret_cast<HWND>(SendMessageA(child, UDM_GETBUDDY, 0, 0));
        if (lstrcmpiA(name, UPDOWN_CLASSA) == 0 && buddy == GetDlgItem(dialog, fieldId)) return child;
    }
    return nullptr;
}

static int Step(HWND dialog, int fieldId, int delta) {
    NMUPDOWN step = {};
    step.hdr = {SpinOf(dialog, fieldId), 0, static_cast<UINT>(UDN_DELTAPOS)};
    step.iDelta = delta;
    SendMessageA(dialog, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&step));
    return step.iDelta;
}

TEST(SpinButton, Steps) {
    double real = 2;
    std::int8_t small = 9;
    HostDialog host;
    host.items = {{IDC_FIELD, KW_KIND_EDIT | KW_VALUE_DOUBLE | KW_FLAG_SPIN, &real, 0, 0, "%.1lf"},
                  {IDC_OTHER_FIELD, KW_KIND_EDIT | KW_VALUE_INT8 | KW_FLAG_SPIN, &small, 0, 10, nullptr},
                  {IDC_LABEL, KW_KIND_LABEL | KW_FLAG_SPIN, nullptr, 0, 0, nullptr}};
    host.opened = [&](HWND dialog) {
        const struct {
            int id;
            const char* typed;
            int delta;
            const char* shown;
        } cases[] = {
            {IDC_FIELD, "2*3", 1, "3.0"},    {IDC_FIELD, ".3", 7, "1.3"},     {IDC_FIELD, "x", -3, "-1.0"},
            {IDC_FIELD, "5", 0, "5.0"},      {IDC_OTHER_FIELD, "9", 1, "10"}, {IDC_OTHER_FIELD, "10", 1, "10"},
            {IDC_OTHER_FIELD, "0", -1, "0"},
        };
        for (const auto& c : cases) {
            SetDlgItemTextA(dialog, c.id, c.typed);
            EXPECT_EQ(Step(dialog, c.id, c.delta), 0) << c.typed;
            EXPECT_EQ(TextOf(dialog, c.id), c.shown) << c.typed;
            EXPECT_EQ(GetFocus(), GetDlgItem(dialog, c.id));
            EXPECT_EQ(Send(dialog, c.id, EM_GETSEL), MAKELONG(0, strlen(c.shown)));
        }
        EXPECT_EQ(SpinOf(dialog, IDC_LABEL), nullptr) << "for fields only";
        Step(dialog, IDC_LABEL, 1);  // from nobody
        SendMessageA(dialog, WM_NOTIFY, 0, 0);
        const HWND spin = SpinOf(dialog, IDC_FIELD);
        EXPECT_EQ(GetWindowLongA(spin, GWL_STYLE), 0x508000A5 & ~WS_BORDER) << "the control takes its border off";
        EnableWindow(GetDlgItem(dialog, IDC_FIELD), FALSE);
        EXPECT_FALSE(IsWindowEnabled(spin)) << "goes with its field";
        ShowWindow(GetDlgItem(dialog, IDC_FIELD), SW_HIDE);
        EXPECT_FALSE(IsWindowVisible(spin)) << "goes with its field";
    };
    EXPECT_EQ(host.Run(), 1);
    EXPECT_EQ(real, 5);
    EXPECT_EQ(small, 0);
}
