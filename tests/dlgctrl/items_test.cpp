#include "dlgctrl/items.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <tuple>

#include "dlgctrl/field_value.h"
#include "dlgctrl/host_dialog.h"
#include "support/cases.h"
#include "support/guard_block.h"

static int ControlOf(DWORD kind) {
    const int ids[] = {IDC_FIELD, IDC_CHECK, IDC_RADIO, IDC_COMBO, IDC_LABEL};
    return ids[kind - KW_KIND_EDIT];
}

// What a control shows of its value: a text, a check state, an index (-1: none).
static std::string Shown(HWND dialog, DWORD kind) {
    int button = 2;
    while (button >= 0 && !IsDlgButtonChecked(dialog, IDC_RADIO + button)) --button;
    switch (kind) {
        case KW_KIND_CHECK: return std::to_string(IsDlgButtonChecked(dialog, IDC_CHECK));
        case KW_KIND_RADIO: return std::to_string(button);
        case KW_KIND_COMBO: return std::to_string(Send(dialog, IDC_COMBO, CB_GETCURSEL));
        default: return TextOf(dialog, ControlOf(kind));
    }
}

static void Enter(HWND dialog, DWORD kind, const char* entered) {
    const auto number = static_cast<UINT>(atoi(entered));
    if (kind == KW_KIND_CHECK) CheckDlgButton(dialog, IDC_CHECK, number);
    else if (kind == KW_KIND_RADIO) CheckRadioButton(dialog, IDC_RADIO, IDC_RADIO + 2, IDC_RADIO + atoi(entered));
    else if (kind == KW_KIND_COMBO) Send(dialog, IDC_COMBO, CB_SETCURSEL, number);
    else SetDlgItemTextA(dialog, ControlOf(kind), entered);
}

static constexpr DWORD kEdit = KW_KIND_EDIT, kCheck = KW_KIND_CHECK, kRadio = KW_KIND_RADIO, kCombo = KW_KIND_COMBO,
                       kLabel = KW_KIND_LABEL, kButton = KW_KIND_BUTTON, kPages = KW_KIND_PAGES;
static constexpr DWORD kText = KW_VALUE_TEXT, kInt8 = KW_VALUE_INT8, kInt32 = KW_VALUE_INT32, kAccept = KW_VALUE_ACCEPT,
                       kPageArray = KW_VALUE_PAGES;

static DWORD KindOf(const std::string& word) {
    static const std::map<std::string, DWORD> kinds = {
        {"edit", kEdit}, {"check", kCheck}, {"radio", kRadio}, {"combo", kCombo}, {"label", kLabel}};
    return kinds.at(word);
}

TEST(Items, NumbersInEveryKind) {
    unsigned char variable[17], before[17];
    HostDialog host;
    host.items = {{IDC_LABEL, kLabel, nullptr, 0, 0, nullptr}};
    host.opened = [&](HWND dialog) {
        for (auto& row : TableRows("dlgctrl/tables.txt", "items")) {
            const std::string what = row[0] + " " + row[1] + " " + row[5];
            const DWORD kind = KindOf(row[0]), valueType = ValueType(row[1]);
            const NumberType& type = *FindNumberType(valueType);
            std::memset(variable, 0xA5, sizeof(variable));
            type.store(variable + 1, std::stod(row[5]));  // at an odd address, between bytes of others
            std::memcpy(before, variable, sizeof(variable));
            for (int i = 0; i < 3; ++i) CheckDlgButton(dialog, IDC_RADIO + i, BST_UNCHECKED);
            std::replace(row[2].begin(), row[2].end(), ';', '\0');
            host.items[0] = {ControlOf(kind),   kind | valueType,  variable + 1,
                             std::stod(row[3]), std::stod(row[4]), OrNull(row[2])};
            EXPECT_EQ(ConstructItems(dialog, 0), 1) << what;
            EXPECT_EQ(Shown(dialog, kind), row[6]) << what;
            EXPECT_EQ(std::memcmp(variable, before, sizeof(variable)), 0) << what;
            if (OrNull(row[7])) Enter(dialog, kind, row[7].c_str());
            EXPECT_EQ(WriteBackItems(dialog, 0), 1) << what;
            EXPECT_EQ(type.load(variable + 1), std::stod(row[8])) << what;
            type.store(before + 1, std::stod(row[8]));
            EXPECT_EQ(std::memcmp(variable, before, sizeof(variable)), 0) << "bytes of others, " << what;
        }
    };
    EXPECT_EQ(host.Run(), 1);
}

TEST(Items, OnesThatFail) {
    PageDescriptor page = {nullptr, MAKEINTRESOURCEA(IDD_PAGE_ONE), nullptr, 0, nullptr};
    char variable[100] = "";
    std::int32_t one = 1;
    const DialogItem bad[] = {
        // clang-format off
        {IDC_MISSING, kLabel, nullptr, 0, 0, nullptr}, {IDC_CHECK, kCheck | kInt8, nullptr, 0, 0, nullptr},
        {IDC_LABEL, kLabel | kText, nullptr, 0, 0, nullptr}, {IDC_OTHER_FIELD, kEdit | kText, variable, 0, -4, nullptr},
        {IDC_TABS, kPages | kPageArray, &page, 0, 0, nullptr}, {IDC_TABS, kPages | kPageArray, nullptr, 0, 1, nullptr},
        // a kind with another kind's value type
        {IDC_COMBO, kCombo | kText, variable, 0, 1, nullptr}, {IDC_OTHER_FIELD, kEdit | kAccept, variable, 0, 1, nullptr},
        {IDC_LABEL, kLabel | kPageArray, &page, 0, 1, nullptr},
        // clang-format on
    };
    for (const DialogItem& item : bad) {
        HostDialog host;
        host.items = {NumberField(&one), item, {IDC_BUTTON, kButton, nullptr, 0, 0, "never set"}};
        host.callback = [&](HWND dialog, UINT message, WPARAM) {
            EXPECT_NE(message, UINT{WM_INITDIALOG});
            if (message == WM_DESTROY) { EXPECT_EQ(TextOf(dialog, IDC_FIELD) + TextOf(dialog, IDC_BUTTON), "1button"); }
            return INT_PTR{0};
        };
        EXPECT_EQ(host.Run(), 0) << "item " << &item - bad;
    }
}

TEST(Items, Texts) {
    char field[8] = "abcdefg", label[] = "world", unterminated[4] = {'w', 'x', 'y', 'z'};
    HostDialog host;
    host.items = {{IDC_FIELD, kEdit | kText, field, 0, 5, "<%s>"},
                  {IDC_LABEL, kLabel | kText, label, 0, 0, "Hello %s"},
                  {IDC_OTHER_FIELD, kEdit | kText, unterminated, 0, sizeof(unterminated), nullptr}};
    host.opened = [&](HWND dialog) {
        EXPECT_EQ(TextOf(dialog, IDC_FIELD), "<abcde>");
        EXPECT_EQ(Send(dialog, IDC_FIELD, EM_GETLIMITTEXT), 4);
        EXPECT_EQ(TextOf(dialog, IDC_LABEL), "Hello world");
        EXPECT_EQ(TextOf(dialog, IDC_OTHER_FIELD), "wxyz");
        SetDlgItemTextA(dialog, IDC_FIELD, "12345678");
        SetDlgItemTextA(dialog, IDC_LABEL, "changed");
        SetDlgItemTextA(dialog, IDC_OTHER_FIELD, "\x93\xFA\x96\x7B");
    };
    EXPECT_EQ(host.Run(), 1);
    EXPECT_EQ(std::memcmp(field, "1234\0fg", sizeof(field)), 0) << field;
    EXPECT_STREQ(label, "world");
    EXPECT_STREQ(unterminated, IsDBCSLeadByte(0x93) ? "\x93\xFA" : "\x93\xFA\x96") << "no half of a character";
}

TEST(Items, LabelsAndFlags) {
    const GuardBlock labels(std::string("one\0two\0three\0", 14));  // not read beyond the buttons that there are
    std::int32_t zero = 0;
    constexpr DWORD kOff = KW_FLAG_DISABLED | KW_FLAG_HIDDEN;
    HostDialog host;
    host.items = {{IDC_CHECK, kCheck | kOff, nullptr, 0, 0, "check me"},
                  {IDC_RADIO, kRadio | kOff | kInt32, &zero, 0, 1e9, labels.Text()},
                  {IDC_LABEL, kLabel | KW_FLAG_HIDDEN, nullptr, 0, 0, "a label"},
                  {IDC_BUTTON, kButton | KW_FLAG_DISABLED, nullptr, 0, 0, "a button"},
                  {IDC_FIELD, kEdit | KW_FLAG_SPIN | KW_FLAG_HIDDEN | KW_FLAG_DISABLED, nullptr, 0, 0, "no label"}};
    host.opened = [](HWND dialog) {
        const std::tuple<int, const char*, bool, bool> cases[] = {
            {IDC_CHECK, "check me", false, false}, {IDC_RADIO, "one", false, false},
            {IDC_RADIO + 1, "two", false, false},  {IDC_RADIO + 2, "three", false, false},
            {IDC_LABEL, "a label", true, false},   {IDC_BUTTON, "a button", false, true},
            {IDC_FIELD, "", false, false},         {0, "", false, false},  // the spin button
        };
        for (const auto& [id, text, isEnabled, isVisible] : cases) {
            EXPECT_EQ(TextOf(dialog, id), text);
            EXPECT_EQ(IsWindowEnabled(GetDlgItem(dialog, id)), isEnabled) << text;
            EXPECT_EQ(IsWindowVisible(GetDlgItem(dialog, id)), isVisible) << text;
        }
    };
    EXPECT_EQ(host.Run(), 1);
}

// The dialog is accepted all the same.
TEST(Items, OneThatCannotBeWrittenBack) {
    std::int32_t first = 1, last = 2;
    HostDialog host;
    host.items = {{IDC_LABEL, kLabel, nullptr, 0, 0, nullptr},
                  NumberField(&first),
                  {IDC_CHECK, kCheck | kInt32, &last, 0, 0, nullptr},
                  NumberField(&last)};
    host.opened = [&](HWND dialog) {
        DestroyWindow(GetDlgItem(dialog, IDC_LABEL));  // no failure
        SetDlgItemTextA(dialog, IDC_FIELD, "7");
        host.items[2].value = nullptr;
    };
    EXPECT_EQ(host.Run(), 1);
    EXPECT_EQ(std::pair(first, last), std::pair(7, 2)) << "before and behind the failure";
}
