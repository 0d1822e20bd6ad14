#include "dlgctrl/field_value.h"

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

#include "dlgctrl/dlgitem.h"
#include "dlgctrl/host_dialog.h"
#include "dlgctrl/items.h"
#include "support/cases.h"

// What the check makes of a typed text, in a field whose variable is `type`.
TEST(CheckFields, WhenTheUserLeavesAField) {
    auto rows = TableRows("dlgctrl/tables.txt", "fields");
    const std::string wide = std::string(299, ' ') + "7";
    rows.push_back({"double", "%300.0lf", "0", "0", "7", wide, wide});  // none of it is cut
    char variable[100] = "";
    HostDialog host;
    host.items = {{IDC_FIELD, KW_KIND_EDIT, nullptr, 0, 0, nullptr}};
    host.opened = [&](HWND dialog) {
        for (const auto& row : rows) {
            const DWORD type = ValueType(row[0]);
            host.items[0] = {IDC_FIELD,         KW_KIND_EDIT | type, variable,
                             std::stod(row[2]), std::stod(row[3]),   OrNull(row[1])};
            std::memset(variable, 0, sizeof(variable));
            SetDlgItemTextA(dialog, IDC_FIELD, row[4].c_str());
            LeaveField(dialog, IDC_FIELD);
            EXPECT_EQ(TextOf(dialog, IDC_FIELD), row[5]) << row[4];
            EXPECT_EQ(std::string(variable, sizeof(variable)), std::string(100, '\0')) << "not touched";
            if (type == KW_VALUE_TEXT) continue;
            WriteBackItems(dialog, 0);
            ConstructItems(dialog, 0);
            EXPECT_EQ(TextOf(dialog, IDC_FIELD), row[6]) << row[4] << ", stored";
        }
    };
    host.endWith = IDCANCEL;
    EXPECT_EQ(host.Run(), 0);
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
