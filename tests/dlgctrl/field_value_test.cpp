#include "dlgctrl/field_value.h"

#include <gtest/gtest.h>

#include <tuple>

#include "dlgctrl/dlgitem.h"
#include "dlgctrl/host_dialog.h"

// What the check makes of a typed text, in a field whose variable is `type`.
TEST(CheckFields, WhenTheUserLeavesAField) {
    const struct {
        DWORD type;
        const char* format;
        double minimum, maximum;
        const char *typed, *shown;
    } cases[] = {
        // clang-format off
        {KW_VALUE_INT32, nullptr, 0, 10, "3*4", "10"}, {KW_VALUE_INT32, nullptr, 0, 10, "2.7", "2"},
        {KW_VALUE_INT32, nullptr, 5, 10, "", "5"}, {KW_VALUE_INT32, "%04ld", 0, 0, "-2.7", "-002"},
        {KW_VALUE_INT32, nullptr, 0, 0, "7+", "7"}, {KW_VALUE_INT32, nullptr, 0, 0, "12 apples", "12"},
        {KW_VALUE_INT32, nullptr, 0, 0, "1e99", "-2147483648"}, {KW_VALUE_INT32, nullptr, 1, 5, "sqrt(-1)", "1"},
        {KW_VALUE_INT32, nullptr, 10, 5, "7", "10"},  // the minimum is stronger
        {KW_VALUE_INT8, nullptr, 0, 0, "300", "300"}, {KW_VALUE_INT16, nullptr, 0, 0, "70000", "4464"},
        {KW_VALUE_FLOAT, "%.9lf", 0, 0, "0.1", "0.100000001"}, {KW_VALUE_DOUBLE, "%.9lf", 0, 0, "0.1", "0.100000000"},
        {KW_VALUE_DOUBLE, nullptr, 0, 0.0000001, "5", "5.000"},  // too narrow for a range
        {KW_VALUE_TEXT, "<%s>", 0, 100, "2*3", "2*3"},
        // clang-format on
    };
    char variable[100] = "";
    HostDialog host;
    host.items = {{IDC_FIELD, KW_KIND_EDIT, nullptr, 0, 0, nullptr}};
    host.opened = [&](HWND dialog) {
        for (const auto& c : cases) {
            host.items[0] = {IDC_FIELD, KW_KIND_EDIT | c.type, variable, c.minimum, c.maximum, c.format};
            SetDlgItemTextA(dialog, IDC_FIELD, c.typed);
            LeaveField(dialog, IDC_FIELD);
            EXPECT_EQ(TextOf(dialog, IDC_FIELD), c.shown) << c.typed;
        }
    };
    host.endWith = IDCANCEL;
    EXPECT_EQ(host.Run(), 0);
    EXPECT_EQ(std::string(variable, sizeof(variable)), std::string(100, '\0')) << "not touched";
}

static int Step(HWND dialog, int index, int delta) {
    NMUPDOWN step = {};
    step.hdr = {HandlesOf(dialog, index)->spinButton, 0, static_cast<UINT>(UDN_DELTAPOS)};
    step.iDelta = delta;
    SendMessageA(dialog, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&step));
    return step.iDelta;
}

TEST(SpinButton, Steps) {
    double real = 2;
    std::int8_t small = 9;
    HostDialog host;
    host.items = {{IDC_FIELD, KW_KIND_EDIT | KW_VALUE_DOUBLE | KW_FLAG_SPIN, &real, 0, 0, "%.1lf"},
                  {IDC_OTHER_FIELD, KW_KIND_EDIT | KW_VALUE_INT8 | KW_FLAG_SPIN, &small, 0, 10, nullptr}};
    host.opened = [&](HWND dialog) {
        const std::tuple<int, const char*, int, const char*> cases[] = {
            {0, "2*3", 1, "3.0"}, {0, ".3", 7, "1.3"}, {0, "x", -3, "-1.0"}, {0, "5", 0, "5.0"}, {1, "10", 1, "10"},
        };
        for (const auto& [index, typed, delta, shown] : cases) {
            const int id = host.items[static_cast<std::size_t>(index)].controlId;
            SetDlgItemTextA(dialog, id, typed);
            EXPECT_EQ(Step(dialog, index, delta), 0) << typed;
            EXPECT_EQ(TextOf(dialog, id), shown) << typed;
            EXPECT_EQ(GetFocus(), GetDlgItem(dialog, id));
            EXPECT_EQ(Send(dialog, id, EM_GETSEL), MAKELONG(0, strlen(shown)));
        }
        const HWND spin = HandlesOf(dialog, 0)->spinButton, field = GetDlgItem(dialog, IDC_FIELD);
        EnableWindow(field, FALSE);
        ShowWindow(field, SW_HIDE);
        EXPECT_FALSE(IsWindowEnabled(spin) || IsWindowVisible(spin)) << "goes with its field";
    };
    EXPECT_EQ(host.Run(), 1);
    EXPECT_EQ(real, 5);
    EXPECT_EQ(small, 10);
}
