#include "dlgctrl/controller.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include "dlgctrl/field_value.h"
#include "dlgctrl/host_dialog.h"
#include "dlgctrl/items.h"

TEST(Controller, Endings) {
    const struct {
        std::vector<int> commands;  // in this order; the callback holds back each OK or Cancel but the last
        int result, stored;
    } cases[] = {
        // clang-format off
        {{IDOK}, 1, 5}, {{IDCANCEL}, 0, 1}, {{IDC_BUTTON}, IDC_BUTTON, 5}, {{IDC_OTHER_BUTTON}, IDC_OTHER_BUTTON, 1},
        {{IDC_BUTTON, IDC_OTHER_BUTTON}, IDC_OTHER_BUTTON, 1},  // a later button replaces an earlier one
        {{IDC_BUTTON, IDCANCEL}, IDC_BUTTON, 1}, {{IDC_OTHER_BUTTON, IDOK}, IDC_OTHER_BUTTON, 5},  // OK and Cancel do not
        // clang-format on
    };
    for (const auto& c : cases) {
        std::int32_t number = 1;
        std::size_t held = 0;
        HostDialog host;
        host.items = {NumberField(&number),
                      {IDC_BUTTON, KW_KIND_BUTTON | KW_VALUE_ACCEPT, nullptr, 0, 0, nullptr},
                      {IDC_OTHER_BUTTON, KW_KIND_BUTTON | KW_VALUE_DISMISS, nullptr, 0, 0, nullptr}};
        host.opened = [&](HWND dialog) {
            SetDlgItemTextA(dialog, IDC_FIELD, "5");
            PostMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(c.commands[0]), 0);
        };
        host.callback = [&](HWND dialog, UINT message, WPARAM wParam) -> INT_PTR {
            if (message != WM_COMMAND || (wParam != IDOK && wParam != IDCANCEL)) return 0;
            if (++held == c.commands.size()) return 0;
            PostMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(c.commands[held]), 0);
            return 7;
        };
        host.endWith = 0;
        EXPECT_EQ(host.Run(), c.result) << c.commands[0];
        EXPECT_EQ(number, c.stored) << c.commands[0];
    }
}

TEST(Controller, NoTable) {
    HostDialog noTable;
    runningHost = &noTable;
    const char* const name = MAKEINTRESOURCEA(IDD_CONTROLS);
    for (const auto& [count, result] : {std::pair{-3, 1}, {0, 1}, {2, 0}, {0x7FFFFFFF, 0}})
        EXPECT_EQ(kwDlgBoxCtrl(ThisModule(), name, nullptr, nullptr, count, HostCallback), result) << count;
}

TEST(Controller, CallbackSeesMessagesFirst) {
    std::int32_t first = 2, second = 1;
    HostDialog host;
    host.items = {NumberField(&first, 5), NumberField(&second)};  // two items of one control
    bool takes = false;
    host.callback = [&](HWND dialog, UINT message, WPARAM wParam) -> INT_PTR {
        if (message == WM_INITDIALOG) { EXPECT_EQ(TextOf(dialog, IDC_FIELD), "1") << "after all items"; }
        return takes && (message == WM_APP + 1 || (message == WM_COMMAND && LOWORD(wParam) == IDC_FIELD)) ? 42 : 0;
    };
    host.opened = [&](HWND dialog) {
        SetDlgItemTextA(dialog, IDC_FIELD, "9");
        takes = true;
        LeaveField(dialog, IDC_FIELD);
        EXPECT_EQ(TextOf(dialog, IDC_FIELD), "9") << "the callback has taken it";
        const auto procedure = reinterpret_cast<DLGPROC>(GetWindowLongPtrA(dialog, DWLP_DLGPROC));
        EXPECT_EQ(procedure(dialog, WM_APP + 1, 0, 0), TRUE);
        takes = false;
        LeaveField(dialog, IDC_FIELD);  // reaches the first item, with its range
        EXPECT_EQ(ItemTable(dialog), host.items.data());
        EXPECT_EQ(FocusControl(dialog, IDC_FIELD), 1);
        EXPECT_EQ(Send(dialog, IDC_FIELD, EM_GETSEL), MAKELONG(0, 1));
        EXPECT_EQ(FocusControl(dialog, IDC_MISSING), 0);
    };
    EXPECT_EQ(host.Run(), 1);
    EXPECT_TRUE(first == 5 && second == 5) << first << " " << second;
}

// What a callback may do in any message without harm: each row does it at the first message that its own condition
// meets.
TEST(Controller, CallbacksThatInterfere) {
    std::int32_t number = 1, pageNumber = 2;
    DialogItem pageItems[] = {{IDC_FIELD, KW_KIND_EDIT | KW_VALUE_INT32 | KW_FLAG_SPIN, &pageNumber, 0, 0, nullptr}};
    PageDescriptor pages[] = {{nullptr, MAKEINTRESOURCEA(IDD_PAGE_ONE), HostCallback, 1, pageItems},
                              {nullptr, MAKEINTRESOURCEA(IDD_PAGE_TWO), HostCallback, 1, pageItems}};
    constexpr WPARAM kAny = ~WPARAM{0}, kTextSet = MAKEWPARAM(IDC_FIELD, EN_CHANGE);
    const auto dialogOf = [](HWND window) { return GetAncestor(window, GA_ROOT); };
    const std::pair<const char*, std::function<void(HWND window)>> acts[] = {
        {"destroys the dialog", [=](HWND window) { DestroyWindow(dialogOf(window)); }},
        {"destroys the window", [](HWND window) { DestroyWindow(window); }},
        {"ends the dialog", [=](HWND window) { EndDialog(dialogOf(window), 77); }},
        {"accepts", [=](HWND window) { SendMessageA(dialogOf(window), WM_COMMAND, IDOK, 0); }},
        {"sets up, checks and stores",
         [=](HWND w) { ConstructItems(dialogOf(w), -1), CheckFields(dialogOf(w), -1), WriteBackItems(w, -1); }},
        {"destroys a field", [](HWND window) { DestroyWindow(GetDlgItem(window, IDC_FIELD)); }},
        {"initialises again", [=](HWND window) { SendMessageA(dialogOf(window), WM_INITDIALOG, 0, 0); }},
        {"runs another dialog", [=](HWND) { EXPECT_EQ(HostDialog().Run(IDD_SMALL), 1); }},
    };
    const std::pair<UINT, WPARAM> moments[] = {
        {WM_COMMAND, kTextSet}, {WM_INITDIALOG, kAny}, {WM_SHOWWINDOW, TRUE}, {WM_COMMAND, IDOK}, {WM_DESTROY, kAny}};
    for (const auto& [what, interfere] : acts) {
        const auto& act = interfere;
        for (std::size_t i = 0; i < 2 * std::size(moments); ++i) {
            const bool onPage = i % 2;
            const UINT awaited = moments[i / 2].first;
            const WPARAM parameter = moments[i / 2].second;
            SCOPED_TRACE(std::string(what) + (onPage ? ", page, " : ", dialog, ") + std::to_string(awaited));
            bool done = false;
            HostDialog host;
            host.items = {{IDC_FIELD, KW_KIND_EDIT | KW_VALUE_INT32 | KW_FLAG_SPIN, &number, 0, 5, nullptr},
                          {IDC_TABS, KW_KIND_PAGES | KW_VALUE_PAGES | KW_FLAG_KEEP_PAGE, pages, 1, 2, nullptr}};
            host.callback = [&](HWND window, UINT message, WPARAM wParam) -> INT_PTR {
                const bool isMoment = message == awaited && (parameter == kAny || parameter == wParam);
                if (isMoment && onPage == (GetParent(window) != nullptr) && !std::exchange(done, true)) act(window);
                return 0;
            };
            host.Run(IDD_SMALL);
            EXPECT_EQ(done, onPage || awaited != WM_SHOWWINDOW) << "the dialog stays unseen";
            MSG message;
            while (PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) {}
        }
    }
}
