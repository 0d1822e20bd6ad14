#include "dlgctrl/field_value.h"

#include <gtest/gtest.h>

#include <clocale>
#include <tuple>

#include "dlgctrl/host_dialog.h"
#include "dlgctrl/value_format.h"

TEST(ValueFormat, Formats) {
    const std::string cases[][2] = {
        // clang-format off
        {FormatInteger(nullptr, -7), "-7"},      {FormatInteger("%ld", 100000), "100000"}, {FormatInteger("%5d|", 42), "   42|"},
        {FormatInteger("%-5i|", 42), "42   |"},  {FormatInteger("%+05d", 42), "+0042"},    {FormatInteger("%X%%", 255), "FF%"},
        {FormatInteger("%hd", 65537), "1"},      {FormatInteger("", 7), ""},               {FormatInteger("text", 7), "text"},
        {FormatInteger("%999d", 7), std::string(998, ' ') + "7"},
        // none of these suits an integer
        {FormatInteger("%d%d", 7), "7"},         {FormatInteger("%s", 7), "7"},            {FormatInteger("%n", 7), "7"},
        {FormatInteger("%lf", 7), "7"},          {FormatInteger("%*d", 7), "7"},           {FormatInteger("%1000d", 7), "7"},
        {FormatInteger("%", 7), "7"},            {FormatInteger("%5", 7), "7"},            {FormatInteger("%.9999d", 7), "7"},
        {FormatReal(nullptr, 1.5), "1.500"},     {FormatReal("", -2), "-2.000"},           {FormatReal("%.1lf mm", 2.25), "2.2 mm"},
        {FormatReal("R%8.2f", 1), "R    1.00"},  {FormatReal("%g", 0.5), "0.5"},           {FormatReal("%s", 1.5), "1.500"},
        {FormatReal("%d", 1.5), "1.500"},        {FormatReal("%f%f", 1.5), "1.500"},       {FormatReal("%.0lf", 2), "2"},
        {FormatText(nullptr, "ab"), "ab"},       {FormatText("<%s>", "ab"), "<ab>"},       {FormatText("%4s|%%", "ab"), "  ab|%"},
        {FormatText("%-4s|", "ab"), "ab  |"},    {FormatText("%.1s", "ab"), "a"},          {FormatText("%d", "ab"), "ab"},
        {FormatText("%s%s", "ab"), "ab"},        {FormatText("", "ab"), ""},               {FormatText("%n", "ab"), "ab"},
        // clang-format on
        {FormatText("%.3s|", "\x93\xFA\x96\x7B"), IsDBCSLeadByte(0x93) ? "\x93\xFA|" : "\x93\xFA\x96|"},
    };
    for (const auto& c : cases) EXPECT_EQ(c[0], c[1]);
    EXPECT_EQ(FormatReal("%.999lf", 1e300).size(), 301u + 1 + 999);
}

TEST(ValueFormat, ModuleSettings) {
    const std::tuple<const char*, int, double, const char*> cases[] = {
        // clang-format off
        {nullptr, -1, 2, "2.000"}, {nullptr, 0, 2, "2."}, {nullptr, 1, 2.25, "2.25"}, {nullptr, 1, 2, "2.0"},
        {nullptr, 5, 2, "2.000"}, {"%.0lf", 0, 20, "20"}, {"%.1lf mm", 0, 2, "2.0 mm"}, {"%.3e", 0, 1e10, "1.000e+10"},
        {"%d", -1, 2, "2.000"}, {"%.1lf 456789abcdefgh", -1, 2, "2.0 456789abcd"},  // 16 bytes of it, without a terminator
        // clang-format on
    };
    for (const auto& [realFormat, decimals, value, shown] : cases) {
        EXPECT_EQ(SetRealFormat(realFormat, decimals), 1);
        EXPECT_EQ(FormatReal(nullptr, value), shown);
    }
    char format[kRealFormatSize + 1] = "................";
    int decimals = 0;
    EXPECT_EQ(GetRealFormat(format, &decimals), 1);
    EXPECT_STREQ(format, "%.1lf 456789abcd");
    EXPECT_EQ(decimals, -1);
    SetRealFormat(nullptr, -1);
    if (std::setlocale(LC_ALL, "German")) {  // a host's
        EXPECT_EQ(FormatReal("a, %.2e", -1.5), "a, -1.50e+00");
        std::setlocale(LC_ALL, "C");
    }
}

// What the check makes of a typed text, in a field whose variable is `type`.
TEST(CheckFields, Table) {
    const struct {
        DWORD type;
        const char* format;
        double minimum, maximum;
        const char *typed, *shown;
    } cases[] = {
        // clang-format off
        {KW_VALUE_INT32, nullptr, 0, 10, "3*4", "10"}, {KW_VALUE_INT32, nullptr, 0, 10, "2.7", "2"},
        {KW_VALUE_INT32, nullptr, 5, 10, "", "5"}, {KW_VALUE_INT32, nullptr, 0, 0, "123456", "123456"},
        {KW_VALUE_INT32, "%04ld", 0, 0, "-2.7", "-002"}, {KW_VALUE_INT32, nullptr, 0, 0, "0 ? 1:2", "0"},
        {KW_VALUE_INT32, nullptr, 0, 0, "12 apples", "12"}, {KW_VALUE_INT32, nullptr, 0, 0, "1e99", "-2147483648"},
        {KW_VALUE_INT32, nullptr, 1, 5, "sqrt(-1)", "1"},
        {KW_VALUE_INT32, nullptr, 10, 5, "7", "10"},  // the minimum is stronger
        {KW_VALUE_INT8, nullptr, 0, 0, "300", "300"}, {KW_VALUE_INT16, nullptr, 0, 0, "70000", "4464"},
        {KW_VALUE_FLOAT, nullptr, 0, 0, "1/3", "0.333"}, {KW_VALUE_FLOAT, "%.9lf", 0, 0, "0.1", "0.100000001"},
        {KW_VALUE_DOUBLE, "%.9lf", 0, 0, "0.1", "0.100000000"},
        {KW_VALUE_DOUBLE, nullptr, 0, 0.0000001, "5", "5.000"},  // too narrow for a range
        {KW_VALUE_DOUBLE, "", -1, 1, "sin(90)*3", "1.000"},
        {KW_VALUE_TEXT, "<%s>", 0, 100, "2*3", "2*3"}, {KW_VALUE_NONE, nullptr, 0, 0, "2*3", "2*3"},
        // clang-format on
    };
    char variable[100] = "";
    const std::string longText(35000, 'x');
    HostDialog host;
    host.items = {{IDC_FIELD, KW_KIND_EDIT, nullptr, 0, 0, nullptr},
                  {IDC_LONG_FIELD, KW_KIND_EDIT | KW_VALUE_TEXT, variable, 0, 40000, nullptr}};
    host.opened = [&](HWND dialog) {
        for (const auto& c : cases) {
            host.items[0] = {IDC_FIELD, KW_KIND_EDIT | c.type, variable, c.minimum, c.maximum, c.format};
            SetDlgItemTextA(dialog, IDC_FIELD, c.typed);
            LeaveField(dialog, IDC_FIELD);
            EXPECT_EQ(TextOf(dialog, IDC_FIELD), c.shown) << c.typed;
        }
        SetDlgItemTextA(dialog, IDC_LONG_FIELD, longText.c_str());
        LeaveField(dialog, IDC_LONG_FIELD);
        EXPECT_EQ(TextOf(dialog, IDC_LONG_FIELD), longText);
    };
    host.endWith = IDCANCEL;
    EXPECT_EQ(host.Run(), 0);
    EXPECT_EQ(std::string(variable, sizeof(variable)), std::string(100, '\0')) << "not touched";
}

TEST(CheckFields, OneAndAll) {
    std::int32_t one = 1, two = 2;
    HostDialog host;
    host.items = {NumberField(&one), NumberField(&two, 0, IDC_OTHER_FIELD)};
    host.opened = [&](HWND dialog) {
        const auto check = [&](int index) {
            SetDlgItemTextA(dialog, IDC_FIELD, "1+1");
            SetDlgItemTextA(dialog, IDC_OTHER_FIELD, "2+2");
            const int done = CheckFields(dialog, index);
            return std::to_string(done) + " " + TextOf(dialog, IDC_FIELD) + " " + TextOf(dialog, IDC_OTHER_FIELD);
        };
        for (const auto& [index, shown] : {std::pair{1, "1 1+1 4"}, {-1, "1 2 4"}, {2, "0 1+1 2+2"}, {-2, "0 1+1 2+2"}})
            EXPECT_EQ(check(index), shown) << index;
        host.items[0].value = nullptr;
        EXPECT_EQ(check(-1), "0 1+1 2+2") << "stopped before the second";
    };
    EXPECT_EQ(host.Run(), 1);
}

static HWND SpinOf(HWND dialog, int fieldId) {
    HWND spin = nullptr;
    while ((spin = FindWindowExA(dialog, spin, UPDOWN_CLASSA, nullptr)) != nullptr)
        if (reinterpret_cast<HWND>(SendMessageA(spin, UDM_GETBUDDY, 0, 0)) == GetDlgItem(dialog, fieldId)) break;
    return spin;
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
        const std::tuple<int, const char*, int, const char*> cases[] = {
            {IDC_FIELD, "2*3", 1, "3.0"},    {IDC_FIELD, ".3", 7, "1.3"},     {IDC_FIELD, "x", -3, "-1.0"},
            {IDC_FIELD, "5", 0, "5.0"},      {IDC_OTHER_FIELD, "9", 1, "10"}, {IDC_OTHER_FIELD, "10", 1, "10"},
            {IDC_OTHER_FIELD, "0", -1, "0"},
        };
        for (const auto& [id, typed, delta, shown] : cases) {
            SetDlgItemTextA(dialog, id, typed);
            EXPECT_EQ(Step(dialog, id, delta), 0) << typed;
            EXPECT_EQ(TextOf(dialog, id), shown) << typed;
            EXPECT_EQ(GetFocus(), GetDlgItem(dialog, id));
            EXPECT_EQ(Send(dialog, id, EM_GETSEL), MAKELONG(0, strlen(shown)));
        }
        EXPECT_EQ(SpinOf(dialog, IDC_LABEL), nullptr) << "for fields only";
        Step(dialog, IDC_LABEL, 1);  // from nobody
        SendMessageA(dialog, WM_NOTIFY, 0, 0);
        const HWND spin = SpinOf(dialog, IDC_FIELD), field = GetDlgItem(dialog, IDC_FIELD);
        EXPECT_EQ(GetWindowLongA(spin, GWL_STYLE), 0x508000A5 & ~WS_BORDER) << "the control takes its border off";
        EnableWindow(field, FALSE), ShowWindow(field, SW_HIDE);
        EXPECT_FALSE(IsWindowEnabled(spin) || IsWindowVisible(spin)) << "goes with its field";
    };
    EXPECT_EQ(host.Run(), 1);
    EXPECT_EQ(real, 5);
    EXPECT_EQ(small, 0);
}
