#include "dlgctrl/field_value.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <tuple>

#include "dlgctrl/dlgitem.h"
#include "dlgctrl/host_dialog.h"
#include "dlgctrl/items.h"

// What the check makes of a typed text, in a field whose variable is `type`.
TEST(CheckFields, WhenTheUserLeavesAField) {
    const std::string wide = std::string(299, ' ') + "7";
    const struct {
        DWORD type;
        const char* format;
        double minimum, maximum;
        const char *typed, *shown;
        const char* reopened = nullptr;  // what a field then shows of the stored value, where that is something else
    } cases[] = {
        // clang-format off
        {KW_VALUE_INT32, nullptr, 0, 10, "3*4", "10"}, {KW_VALUE_INT32, nullptr, 0, 10, "2.7", "2"},
        {KW_VALUE_INT32, nullptr, 5, 10, "", "5"}, {KW_VALUE_INT32, "%04ld", 0, 0, "-2.7", "-002"},
        {KW_VALUE_INT32, nullptr, 0, 0, "7+", "7"}, {KW_VALUE_INT32, nullptr, 0, 0, "12 apples", "12"},
        {KW_VALUE_INT32, nullptr, 0, 0, "1e99", "-2147483648"}, {KW_VALUE_INT32, nullptr, 1, 5, "sqrt(-1)", "1"},
        {KW_VALUE_INT32, nullptr, 10, 5, "7", "10", "10"},  // the minimum is stronger
        {KW_VALUE_INT8, nullptr, 0, 0, "300", "300", "44"}, {KW_VALUE_INT16, nullptr, 0, 0, "70000", "4464"},
        {KW_VALUE_FLOAT, "%.9lf", 0, 0, "0.1", "0.100000001"}, {KW_VALUE_DOUBLE, "%.9lf", 0, 0, "0.1", "0.100000000"},
        {KW_VALUE_DOUBLE, nullptr, 0, 0.0000001, "5", "5.000", "0.000"},  // too narrow for a range
        // no finite result: the leading number, of which the nearest finite one
        {KW_VALUE_INT8, nullptr, 0, 0, "-7/0", "-7"}, {KW_VALUE_INT16, nullptr, 0, 0, "1e999", "0"},
        {KW_VALUE_INT32, nullptr, 0, 0, "1e999", "-2147483648"}, {KW_VALUE_DOUBLE, nullptr, 0, 0, "1/0", "1.000"},
        {KW_VALUE_DOUBLE, nullptr, 0, 9, "2/0", "2.000"}, {KW_VALUE_DOUBLE, nullptr, 0, 9, "1e999", "9.000"},
        {KW_VALUE_FLOAT, "%g", 0, 0, "-1e39", "-3.40282e+38"}, {KW_VALUE_DOUBLE, "%g", 0, 0, "1e999", "1.79769e+308"},
        {KW_VALUE_DOUBLE, "%300.0lf", 0, 0, "7", wide.c_str()},  // none of it is cut
        // a range beyond the type ends where the type does
        {KW_VALUE_INT8, nullptr, -1000, 1000, "300", "127"}, {KW_VALUE_INT16, nullptr, 0, 1e6, "70000", "4464"},
        {KW_VALUE_INT16, nullptr, 1e4, 1e6, "70000", "10000"},  // narrowed, then forced into the range once more
        {KW_VALUE_INT32, nullptr, 0, 1e10, "5e9", "2147483647"},
        {KW_VALUE_INT32, nullptr, -1e10, 0, "-5e9", "-2147483648"},
        {KW_VALUE_FLOAT, "%g", 0, 1e99, "1e50", "3.40282e+38"},
        {KW_VALUE_TEXT, "<%s>", 0, 100, "2*3", "2*3"},
        // clang-format on
    };
    char variable[100] = "";
    HostDialog host;
    host.items = {{IDC_FIELD, KW_KIND_EDIT, nullptr, 0, 0, nullptr}};
    host.opened = [&](HWND dialog) {
        for (const auto& c : cases) {
            host.items[0] = {IDC_FIELD, KW_KIND_EDIT | c.type, variable, c.minimum, c.maximum, c.format};
            std::memset(variable, 0, sizeof(variable));
            SetDlgItemTextA(dialog, IDC_FIELD, c.typed);
            LeaveField(dialog, IDC_FIELD);
            EXPECT_EQ(TextOf(dialog, IDC_FIELD), c.shown) << c.typed;
            EXPECT_EQ(std::string(variable, sizeof(variable)), std::string(100, '\0')) << "not touched";
            if (c.type == KW_VALUE_TEXT) continue;
            WriteBackItems(dialog, 0);
            ConstructItems(dialog, 0);
            EXPECT_EQ(TextOf(dialog, IDC_FIELD), c.reopened ? c.reopened : c.shown) << c.typed << ", stored";
        }
    };
    host.endWith = IDCANCEL;
    EXPECT_EQ(host.Run(), 0);
}

// A variable may hold what no field can: it shows, and then stores, the nearest number.
TEST(CheckFields, VariablesThatAreNoNumbers) {
    double numbers[] = {-INFINITY, NAN};
    HostDialog host;
    host.items = {{IDC_FIELD, KW_KIND_EDIT | KW_VALUE_DOUBLE, &numbers[0], 0, 0, nullptr},
                  {IDC_OTHER_FIELD, KW_KIND_EDIT | KW_VALUE_DOUBLE, &numbers[1], 5, 9, nullptr}};
    host.opened = [](HWND dialog) { EXPECT_EQ(TextOf(dialog, IDC_OTHER_FIELD), "5.000"); };
    EXPECT_EQ(host.Run(), 1);
    EXPECT_EQ(numbers[0], -DBL_MAX);
    EXPECT_EQ(numbers[1], 5);
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
    std::int32_t plain = 0;
    HostDialog host;
    host.items = {{IDC_FIELD, KW_KIND_EDIT | KW_VALUE_DOUBLE | KW_FLAG_SPIN, &real, 0, 0, "%.1lf"},
                  {IDC_OTHER_FIELD, KW_KIND_EDIT | KW_VALUE_INT8 | KW_FLAG_SPIN, &small, 0, 10, nullptr},
                  NumberField(&plain)};  // without a button
    host.opened = [&](HWND dialog) {
        const HWND spin = HandlesOf(dialog, 0)->spinButton;
        ConstructItems(dialog, 0);
        EXPECT_EQ(HandlesOf(dialog, 0)->spinButton, spin) << "a field has one";
        SetDlgItemTextA(dialog, IDC_FIELD, "7");
        EXPECT_EQ(Step(dialog, 2, 1), 1) << "from no window";
        EXPECT_EQ(TextOf(dialog, IDC_FIELD), "7");
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
        const HWND field = GetDlgItem(dialog, IDC_FIELD);
        EnableWindow(field, FALSE);
        ShowWindow(field, SW_HIDE);
        EXPECT_FALSE(IsWindowEnabled(spin) || IsWindowVisible(spin)) << "goes with its field";
    };
    EXPECT_EQ(host.Run(), 1);
    EXPECT_EQ(real, 5);
    EXPECT_EQ(small, 10);
}
