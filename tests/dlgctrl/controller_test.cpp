#include "dlgctrl/controller.h"

#include <gtest/gtest.h>

#include "dlgctrl/dlgitem.h"
#include "dlgctrl/field_value.h"
#include "dlgctrl/host_dialog.h"
#include "dlgctrl/items.h"
#include "support/handle_counts.h"

static const DialogItem kAcceptItem = {IDC_BUTTON, KW_KIND_BUTTON | KW_VALUE_ACCEPT, nullptr, 0, 0, nullptr};
static const DialogItem kDismissItem = {IDC_OTHER_BUTTON, KW_KIND_BUTTON | KW_VALUE_DISMISS, nullptr, 0, 0, nullptr};

TEST(Controller, Endings) {
    const struct {
        std::vector<int> commands;  // in this order, while the callback holds all OK and Cancel but the last back
        int result, stored;
    } cases[] = {
        {{IDOK}, 1, 5},
        {{IDCANCEL}, 0, 1},
        {{IDC_BUTTON}, IDC_BUTTON, 5},
        {{IDC_OTHER_BUTTON}, IDC_OTHER_BUTTON, 1},
        {{IDC_BUTTON, IDC_OTHER_BUTTON}, IDC_OTHER_BUTTON, 1},  // a later button replaces an earlier one
        {{IDC_BUTTON, IDCANCEL}, IDC_BUTTON, 1},                // plain Cancel and OK do not
        {{IDC_OTHER_BUTTON, IDOK}, IDC_OTHER_BUTTON, 5},
    };
    for (const auto& c : cases) {
        std::int32_t number = 1;
        std::size_t held = 0;
        HostDialog host;
        host.items = {{IDC_FIELD, KW_KIND_EDIT | KW_VALUE_INT32, &number, 0, 0, nullptr}, kAcceptItem, kDismissItem};
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

TEST(Controller, OddTables) {
    EXPECT_EQ(HostDialog().Run(), 1) << "none";
    HostDialog negative;
    negative.callback = [](HWND dialog, UINT message, WPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG) { EXPECT_EQ(ItemCountOf(dialog), 0); }
        return 0;
    };
    runningHost = &negative;
    const char* const name = MAKEINTRESOURCEA(IDD_CONTROLS);
    EXPECT_EQ(kwDlgBoxCtrl(ThisModule(), name, nullptr, nullptr, -3, HostCallback), 1);
    EXPECT_EQ(kwDlgBoxCtrl(ThisModule(), "no such template", nullptr, nullptr, 0, HostCallback), -1);
    EXPECT_EQ(kwDlgBoxCtrl(ThisModule(), name, nullptr, nullptr, 0x7FFFFFFF, HostCallback), 0);

    std::int32_t one = 1, two = 2;
    HostDialog twice;  // commands reach the first of two items with one id
    twice.items = {{IDC_FIELD, KW_KIND_EDIT | KW_VALUE_INT32, &one, 0, 5, nullptr},
                   {IDC_FIELD, KW_KIND_EDIT | KW_VALUE_INT32, &two, 0, 0, nullptr}};
    twice.opened = [](HWND dialog) {
        EXPECT_EQ(TextOf(dialog, IDC_FIELD), "2");
        SetDlgItemTextA(dialog, IDC_FIELD, "9");
        LeaveField(dialog, IDC_FIELD);
    };
    EXPECT_EQ(twice.Run(), 1);
    EXPECT_EQ(one, 5);
    EXPECT_EQ(two, 5);

    HostDialog okItem;  // OK and Cancel keep their own meaning
    okItem.items = {{IDOK, KW_KIND_BUTTON | KW_VALUE_DISMISS, nullptr, 0, 0, nullptr}};
    EXPECT_EQ(okItem.Run(), 1);
}

TEST(Controller, CallbackSeesMessagesFirst) {
    std::int32_t number = 1;
    HostDialog host;
    host.items = {{IDC_FIELD, KW_KIND_EDIT | KW_VALUE_INT32, &number, 0, 5, nullptr}};
    bool takes = false, told = false;
    LRESULT answer = 0;
    host.callback = [&](HWND dialog, UINT message, WPARAM wParam) -> INT_PTR {
        if (message == WM_INITDIALOG) {
            told = true;
            EXPECT_EQ(TextOf(dialog, IDC_FIELD), "1") << "after the items";
            EXPECT_EQ(ItemTable(dialog), host.items.data());
        }
        return takes && (message == WM_APP + 1 || (message == WM_COMMAND && LOWORD(wParam) == IDC_FIELD)) ? 42 : 0;
    };
    host.opened = [&](HWND dialog) {
        SetDlgItemTextA(dialog, IDC_FIELD, "9");
        takes = true;
        LeaveField(dialog, IDC_FIELD);
        EXPECT_EQ(TextOf(dialog, IDC_FIELD), "9") << "the callback has taken it";
        const auto procedure = reinterpret_cast<DLGPROC>(GetWindowLongPtrA(dialog, DWLP_DLGPROC));
        answer = procedure(dialog, WM_APP + 1, 0, 0);
        takes = false;
        EXPECT_EQ(FocusControl(dialog, IDC_FIELD), 1);
        EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDC_FIELD));
        EXPECT_EQ(Send(dialog, IDC_FIELD, EM_GETSEL), MAKELONG(0, 1));
        EXPECT_EQ(FocusControl(dialog, IDC_MISSING), 0);
    };
    EXPECT_EQ(host.Run(), 1);
    EXPECT_TRUE(told);
    EXPECT_EQ(answer, TRUE);
    EXPECT_EQ(ItemTable(GetDesktopWindow()), nullptr);
}

// What a callback may do in any message without harm: each row does it at the first message that its own condition
// meets.
TEST(Controller, CallbacksThatInterfere) {
    std::int32_t number = 1, pageNumber = 2;
    DialogItem pageItems[] = {{IDC_FIELD, KW_KIND_EDIT | KW_VALUE_INT32 | KW_FLAG_SPIN, &pageNumber, 0, 0, nullptr}};
    PageDescriptor pages[] = {{nullptr, MAKEINTRESOURCEA(IDD_PAGE_ONE), HostCallback, 1, pageItems},
                              {nullptr, MAKEINTRESOURCEA(IDD_PAGE_TWO), HostCallback, 1, pageItems}};
    const auto dialogOf = [](HWND window) { return GetAncestor(window, GA_ROOT); };
    const struct {
        const char* what;
        std::function<void(HWND window)> act;
    } acts[] = {
        {"destroys the dialog", [=](HWND window) { DestroyWindow(dialogOf(window)); }},
        {"destroys the window", [](HWND window) { DestroyWindow(window); }},
        {"ends the dialog", [=](HWND window) { EndDialog(dialogOf(window), 77); }},
        {"accepts", [=](HWND window) { SendMessageA(dialogOf(window), WM_COMMAND, IDOK, 0); }},
        {"cancels", [=](HWND window) { SendMessageA(dialogOf(window), WM_COMMAND, IDCANCEL, 0); }},
        {"sets up again", [=](HWND window) { ConstructItems(dialogOf(window), -1); }},
        {"checks and stores", [=](HWND window) { CheckFields(dialogOf(window), -1), WriteBackItems(window, -1); }},
        {"destroys a field", [](HWND window) { DestroyWindow(GetDlgItem(window, IDC_FIELD)); }},
        {"initialises again", [=](HWND window) { SendMessageA(dialogOf(window), WM_INITDIALOG, 0, 0); }},
        {"runs another dialog", [=](HWND) { EXPECT_EQ(HostDialog().Run(), 1); }},
    };
    const struct {
        const char* when;
        std::function<bool(HWND window, UINT message, WPARAM wParam)> is;
    } moments[] = {
        {"text is set",
         [](HWND, UINT m, WPARAM w) { return m == WM_COMMAND && w == MAKEWPARAM(IDC_FIELD, EN_CHANGE); }},
        {"a page's text is set",
         [](HWND d, UINT m, WPARAM w) {
             return m == WM_COMMAND && w == MAKEWPARAM(IDC_FIELD, EN_CHANGE) && GetParent(d);
         }},
        {"a dialog opens", [](HWND d, UINT m, WPARAM) { return m == WM_INITDIALOG && !GetParent(d); }},
        {"a page opens", [](HWND d, UINT m, WPARAM) { return m == WM_INITDIALOG && GetParent(d); }},
        {"a page is shown", [](HWND d, UINT m, WPARAM w) { return m == WM_SHOWWINDOW && w && GetParent(d); }},
        {"OK", [](HWND d, UINT m, WPARAM w) { return m == WM_COMMAND && w == IDOK && !GetParent(d); }},
        {"OK on a page", [](HWND d, UINT m, WPARAM w) { return m == WM_COMMAND && w == IDOK && GetParent(d); }},
        {"a page is destroyed", [](HWND d, UINT m, WPARAM) { return m == WM_DESTROY && GetParent(d); }},
        {"a dialog is destroyed", [](HWND d, UINT m, WPARAM) { return m == WM_DESTROY && !GetParent(d); }},
    };
    for (const auto& act : acts) {
        for (const auto& moment : moments) {
            SCOPED_TRACE(std::string(act.what) + " when " + moment.when);
            bool done = false;
            HostDialog host;
            host.items = {{IDC_FIELD, KW_KIND_EDIT | KW_VALUE_INT32 | KW_FLAG_SPIN, &number, 0, 5, nullptr},
                          {IDC_TABS, KW_KIND_PAGES | KW_VALUE_PAGES | KW_FLAG_KEEP_PAGE, pages, 1, 2, nullptr},
                          {IDC_PLAIN, KW_KIND_PAGES | KW_VALUE_PAGES, pages, 0, 2, nullptr}};
            host.callback = [&](HWND window, UINT message, WPARAM wParam) -> INT_PTR {
                if (!done && moment.is(window, message, wParam)) {
                    done = true;
                    act.act(window);
                }
                return 0;
            };
            host.Run();
            EXPECT_TRUE(done);
            MSG message;
            while (PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) {}
        }
    }
}

TEST(Controller, ManyLeaveNothingBehind) {
    double number = 1;
    std::int32_t pageNumber = 2;
    DialogItem good = {IDC_FIELD, KW_KIND_EDIT | KW_VALUE_INT32 | KW_FLAG_SPIN, &pageNumber, 0, 0, nullptr};
    DialogItem bad = {IDC_FIELD, KW_KIND_EDIT | KW_VALUE_INT32, nullptr, 0, 0, nullptr};
    const auto run = [&](int count) {
        for (int i = 0; i < count; ++i) {
            DialogItem* const second = i % 4 == 3 ? &bad : &good;
            PageDescriptor pages[] = {{nullptr, MAKEINTRESOURCEA(IDD_PAGE_TWO), nullptr, 1, &good},
                                      {nullptr, MAKEINTRESOURCEA(IDD_PAGE_TWO), nullptr, 1, second}};
            HostDialog host;
            host.items = {{IDC_FIELD, KW_KIND_EDIT | KW_VALUE_DOUBLE | KW_FLAG_SPIN, &number, 0, 5, nullptr},
                          {IDC_TABS, KW_KIND_PAGES | KW_VALUE_PAGES, pages, 0, 2, nullptr}};
            host.endWith = i % 2 ? IDOK : IDCANCEL;
            host.shown = i % 10 == 0;
            EXPECT_EQ(host.Run(IDD_SMALL), i % 4 == 1);
        }
    };
    const auto memory = [] {
        std::size_t size = 0;
        PROCESS_HEAP_ENTRY entry = {};
        while (HeapWalk(GetProcessHeap(), &entry)) size += entry.wFlags & PROCESS_HEAP_ENTRY_BUSY ? entry.cbData : 0;
        return size;
    };
    run(20);  // what the system keeps from its first dialogs
    const HandleCounts before = CountHandles();
    const std::size_t memoryBefore = memory();
    run(500);
    const HandleCounts after = CountHandles();
    EXPECT_NEAR(after.gdi, before.gdi, 10);
    EXPECT_NEAR(after.user, before.user, 10);
    EXPECT_NEAR(after.kernel, before.kernel, 10);
    EXPECT_LT(memory(), memoryBefore + 16000) << "a context or a page set is larger than 32 bytes";
}
