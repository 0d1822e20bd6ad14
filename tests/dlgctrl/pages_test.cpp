#include "dlgctrl/pages.h"

#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

#include "dlgctrl/dlgitem.h"
#include "dlgctrl/host_dialog.h"

// A dialog with a container of two pages, each with a field.
struct PagedDialog : HostDialog {
    std::int32_t one = 1, two = 2;
    DialogItem itemsOne[1] = {NumberField(&one, 10)};
    DialogItem itemsTwo[1] = {{IDC_FIELD, KW_KIND_EDIT | KW_VALUE_INT32 | KW_FLAG_SPIN, &two, 0, 0, nullptr}};
    PageDescriptor pages[2] = {{nullptr, MAKEINTRESOURCEA(IDD_PAGE_ONE), nullptr, 1, itemsOne},
                               {ThisModule(), MAKEINTRESOURCEA(IDD_PAGE_TWO), nullptr, 1, itemsTwo}};
    explicit PagedDialog(int container = IDC_TABS) {
        items = {{container, KW_KIND_PAGES | KW_VALUE_PAGES, pages, 0, 2, nullptr}};
    }
};

static HGLOBAL SetOf(HWND dialog) { return HandlesOf(dialog, 0)->pageSet; }

// Which pages can be seen: "10" is the first of two.
static std::string Visible(HWND dialog) {
    std::string visible;
    for (int i = 0; i < PageCount(SetOf(dialog)); ++i)
        visible += IsWindowVisible(PageWindow(SetOf(dialog), i)) ? '1' : '0';
    return visible;
}

// The container tells its dialog that another page has been chosen.
static void Notify(HWND dialog, int container) {
    NMHDR header = {GetDlgItem(dialog, container), static_cast<UINT_PTR>(container), static_cast<UINT>(TCN_SELCHANGE)};
    SendMessageA(dialog, WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
}

static void ClickTab(HWND dialog, int index) {
    Send(dialog, IDC_TABS, TCM_SETCURSEL, static_cast<WPARAM>(index));
    Notify(dialog, IDC_TABS);
}

TEST(Pages, TabsSwitchThem) {
    PagedDialog host;
    host.opened = [](HWND dialog) {
        const HWND tabs = GetDlgItem(dialog, IDC_TABS), one = PageWindow(SetOf(dialog), 0);
        EXPECT_EQ(PageWindow(SetOf(dialog), kOwnerWindow), dialog);
        EXPECT_EQ(PageWindow(SetOf(dialog), kTabControl), tabs);
        RECT area, place;
        GetWindowRect(tabs, &area);
        SendMessageA(tabs, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&area));
        GetWindowRect(one, &place);
        EXPECT_TRUE(EqualRect(&place, &area));
        EXPECT_EQ(GetParent(one), dialog);
        EXPECT_EQ(GetWindowLongA(one, GWL_STYLE) & (WS_DLGFRAME | WS_THICKFRAME), 0);
        EXPECT_FALSE(IsWindowVisible(GetDlgItem(one, IDOK)) || IsWindowVisible(GetDlgItem(one, IDCANCEL)));
        char caption[16] = "";
        TCITEMA tab = {TCIF_TEXT, 0, 0, caption, sizeof(caption), 0, 0};
        Send(dialog, IDC_TABS, TCM_GETITEMA, 1, reinterpret_cast<LPARAM>(&tab));
        EXPECT_STREQ(caption, "Two");
        EXPECT_EQ(Visible(dialog), "10");
        ClickTab(dialog, 1);
        EXPECT_EQ(Visible(dialog), "01");
        EXPECT_TRUE(IsChild(PageWindow(SetOf(dialog), 1), GetFocus()));
        EXPECT_EQ(GetTopWindow(dialog), PageWindow(SetOf(dialog), 1)) << "above the tab control";
        EXPECT_EQ(SelectPage(SetOf(dialog), 0), 1);
        EXPECT_EQ(Send(dialog, IDC_TABS, TCM_GETCURSEL), 0);
        Send(dialog, IDC_TABS, TCM_SETCURSEL, 1);
        for (const int index : {-1, 0, 2}) EXPECT_EQ(SelectPage(SetOf(dialog), index), -1);
        EXPECT_EQ(Send(dialog, IDC_TABS, TCM_GETCURSEL), 0) << "corrected though nothing changed";
        EXPECT_EQ(Visible(dialog), "10");
    };
    EXPECT_EQ(host.Run(), 1);
}

TEST(Pages, FirstAndLastShown) {
    const struct {
        double first;
        int shown;
        DWORD flags;
        int clicked, endWith;
        double kept;
    } cases[] = {
        // clang-format off
        {1, 1, 0, 0, IDOK, 1}, {1.5, 1, KW_FLAG_KEEP_PAGE, 0, IDOK, 0}, {0, 0, KW_FLAG_KEEP_PAGE, 1, IDOK, 1},
        {0, 0, KW_FLAG_KEEP_PAGE, 1, IDCANCEL, 0}, {2, 0, 0, 0, IDOK, 2}, {-1, 0, 0, 0, IDOK, -1},
        // clang-format on
    };
    for (const auto& c : cases) {
        PagedDialog host;
        host.items[0].minimum = c.first;
        host.items[0].type |= c.flags;
        host.opened = [&](HWND dialog) {
            EXPECT_EQ(CurrentPage(SetOf(dialog)), c.shown) << c.first;
            EXPECT_EQ(Send(dialog, IDC_TABS, TCM_GETCURSEL), c.shown) << c.first;
            ClickTab(dialog, c.clicked);
        };
        host.endWith = c.endWith;
        host.Run();
        EXPECT_EQ(host.items[0].minimum, c.kept) << c.first;
    }
}

TEST(Pages, WriteBack) {
    PagedDialog host;
    host.opened = [](HWND dialog) {
        const HWND one = PageWindow(SetOf(dialog), 0), two = PageWindow(SetOf(dialog), 1);
        EXPECT_EQ(TextOf(one, IDC_FIELD) + TextOf(two, IDC_FIELD), "12");
        SetDlgItemTextA(one, IDC_FIELD, "3*4");
        LeaveField(one, IDC_FIELD);
        EXPECT_EQ(TextOf(one, IDC_FIELD), "10") << "checked on the page";
        SetDlgItemTextA(two, IDC_FIELD, "22");
    };
    for (const int ending : {IDCANCEL, IDOK}) {
        host.endWith = ending;
        EXPECT_EQ(host.Run(), ending == IDOK);
        EXPECT_EQ(host.one * 100 + host.two, ending == IDOK ? 1022 : 102);
    }
}

TEST(Pages, OtherContainer) {
    PagedDialog host(IDC_PLAIN);
    host.opened = [](HWND dialog) {
        EXPECT_EQ(PageWindow(SetOf(dialog), kOwnerWindow), GetDlgItem(dialog, IDC_PLAIN));
        EXPECT_EQ(PageWindow(SetOf(dialog), kTabControl), nullptr);
        RECT place, wanted = {3, 4, 0, 0};
        GetWindowRect(PageWindow(SetOf(dialog), 0), &place);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
        MapDialogRect(dialog, &wanted);
        EXPECT_EQ(place.left, wanted.left);
        EXPECT_EQ(place.top, wanted.top);
        Notify(dialog, IDC_PLAIN);
        EXPECT_EQ(SelectPage(SetOf(dialog), 1), 0);
        EXPECT_EQ(Visible(dialog), "01");
    };
    EXPECT_EQ(host.Run(), 1);
}

TEST(Pages, RemovedAndDestroyed) {
    PagedDialog host;
    host.opened = [](HWND dialog) {
        const HGLOBAL set = SetOf(dialog);
        const HWND one = PageWindow(set, 0), two = PageWindow(set, 1);
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(RemovePage(set, 0), 1);
            EXPECT_FALSE(IsWindow(one));
            EXPECT_EQ(Send(dialog, IDC_TABS, TCM_GETITEMCOUNT), 1) << i;
            EXPECT_TRUE(PageCount(set) == 2 && !PageWindow(set, 0) && PageWindow(set, 1) == two) << "indices stay";
        }
        DestroyWindow(two);  // behind the set's back
        EXPECT_EQ(SelectPage(set, 1), 0);
    };
    EXPECT_EQ(host.Run(), 1);
}

TEST(Pages, OnesThatCannotBeCreated) {
    const std::pair<std::function<void(PagedDialog & host)>, int> cases[] = {
        {[](PagedDialog& host) { host.pages[1].templateName = "no such template"; }, 0},
        {[](PagedDialog& host) { host.itemsTwo[0].value = nullptr; }, 0},
        {[](PagedDialog& host) { host.pages[0].items = nullptr; }, 0},
        {[](PagedDialog& host) { host.pages[0].itemCount = -5; }, 1},
    };
    for (const auto& [change, result] : cases) {
        PagedDialog host;
        change(host);
        EXPECT_EQ(host.Run(), result) << host.pages[0].itemCount;
    }
    PagedDialog itself;  // a page that holds itself
    DialogItem again = {IDC_TABS, KW_KIND_PAGES | KW_VALUE_PAGES, itself.pages, 0, 1, nullptr};
    itself.pages[0].items = &again;
    itself.pages[0].callback = HostCallback;
    int pageCount = 0;
    itself.callback = [&](HWND window, UINT message, WPARAM) -> INT_PTR {
        pageCount += message == WM_DESTROY && GetParent(window);
        return 0;
    };
    EXPECT_EQ(itself.Run(), 0);
    EXPECT_LT(pageCount, 40) << "long before the stack ends";
}

// Buttons of a page do not end the dialog; the Escape key in a field of many lines does not close a page.
TEST(Pages, DoNotEndByThemselves) {
    PagedDialog host;
    DialogItem button = {IDC_BUTTON, KW_KIND_BUTTON | KW_VALUE_ACCEPT, nullptr, 0, 0, nullptr};
    host.pages[0].items = &button;
    host.opened = [](HWND dialog) {
        const HWND page = PageWindow(SetOf(dialog), 0);
        SendMessageA(page, WM_COMMAND, IDC_BUTTON, 0);
        EXPECT_TRUE(IsWindow(page));
        SendMessageA(page, WM_CLOSE, 0, 0);
    };
    host.endWith = 0;
    EXPECT_EQ(host.Run(), 0) << "closing a page is cancelling its dialog";
}
