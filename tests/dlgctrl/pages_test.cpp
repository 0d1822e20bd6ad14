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

static void ClickTab(HWND dialog, int index) {
    Send(dialog, IDC_TABS, TCM_SETCURSEL, static_cast<WPARAM>(index));
    NMHDR header = {GetDlgItem(dialog, IDC_TABS), IDC_TABS, static_cast<UINT>(TCN_SELCHANGE)};
    SendMessageA(dialog, WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
}

TEST(Pages, TabsSwitchThem) {
    PagedDialog host;
    host.opened = [](HWND dialog) {
        const HWND tabs = GetDlgItem(dialog, IDC_TABS), one = PageWindow(SetOf(dialog), 0);
        RECT area, place;
        GetWindowRect(tabs, &area);
        SendMessageA(tabs, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&area));
        GetWindowRect(one, &place);
        EXPECT_TRUE(EqualRect(&place, &area));
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
        EXPECT_EQ(Visible(dialog), "10");
    };
    EXPECT_EQ(host.Run(), 1);
}

TEST(Pages, FirstShown) {
    for (const auto& [first, shown] : {std::pair{1.5, 1}, {2.0, 0}, {-1.0, 0}}) {
        PagedDialog host;
        host.items[0].minimum = first;
        host.opened = [shown = shown](HWND dialog) { EXPECT_EQ(Send(dialog, IDC_TABS, TCM_GETCURSEL), shown); };
        host.Run();
        EXPECT_EQ(host.items[0].minimum, first) << "kept by wish only";
    }
}

TEST(Pages, WriteBack) {
    PagedDialog host;
    host.items[0].type |= KW_FLAG_KEEP_PAGE;
    host.opened = [](HWND dialog) {
        const HWND one = PageWindow(SetOf(dialog), 0), two = PageWindow(SetOf(dialog), 1);
        EXPECT_EQ(TextOf(one, IDC_FIELD) + TextOf(two, IDC_FIELD), "12");
        SetDlgItemTextA(one, IDC_FIELD, "3*4");
        LeaveField(one, IDC_FIELD);
        EXPECT_EQ(TextOf(one, IDC_FIELD), "10") << "checked on the page";
        SetDlgItemTextA(two, IDC_FIELD, "22");
        ClickTab(dialog, 1);
    };
    for (const int ending : {IDCANCEL, IDOK}) {
        host.endWith = ending;
        EXPECT_EQ(host.Run(), ending == IDOK);
        EXPECT_EQ(host.one * 100 + host.two, ending == IDOK ? 1022 : 102);
        EXPECT_EQ(host.items[0].minimum, ending == IDOK ? 1 : 0);
    }
}

TEST(Pages, OtherContainer) {
    PagedDialog host(IDC_PLAIN);
    host.opened = [](HWND dialog) {
        EXPECT_EQ(GetParent(PageWindow(SetOf(dialog), 0)), dialog);
        RECT place, wanted = {3, 4, 0, 0};
        GetWindowRect(PageWindow(SetOf(dialog), 0), &place);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
        MapDialogRect(dialog, &wanted);
        EXPECT_EQ(std::pair(place.left, place.top), std::pair(wanted.left, wanted.top));
        EXPECT_EQ(SelectPage(SetOf(dialog), 1), 0);
        NMHDR header = {nullptr, 0, static_cast<UINT>(TCN_SELCHANGE)};
        SendMessageA(dialog, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header));
        EXPECT_EQ(Visible(dialog), "01") << "a change from no window is none of a container without tabs";
    };
    EXPECT_EQ(host.Run(), 1);
}

TEST(Pages, RemovedAndDestroyed) {
    PagedDialog host;
    host.opened = [](HWND dialog) {
        const HGLOBAL set = SetOf(dialog);
        const HWND one = PageWindow(set, 0), two = PageWindow(set, 1);
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(RemovePage(set, 0) + IsWindow(one), 1);
            EXPECT_EQ(Send(dialog, IDC_TABS, TCM_GETITEMCOUNT), 1) << i;
            EXPECT_TRUE(PageCount(set) == 2 && !PageWindow(set, 0) && PageWindow(set, 1) == two) << "indices stay";
        }
        DestroyWindow(two);  // behind the set's back
        EXPECT_EQ(SelectPage(set, 1), 0);
    };
    EXPECT_EQ(host.Run(), 1);
}

TEST(Pages, OnesThatCannotBeCreated) {
    PagedDialog noTemplate, noItems;
    noTemplate.pages[1].templateName = "no such template";
    EXPECT_EQ(noTemplate.Run(), 0);
    noItems.pages[0].items = nullptr;
    EXPECT_EQ(noItems.Run(), 0);
    noItems.pages[0].itemCount = -5;  // as good as 0 items
    EXPECT_EQ(noItems.Run(), 1);

    for (const int page : {IDD_PAGE_ONE, IDD_SMALL, IDD_LOOSE_PAGE}) {  // a child, a pop-up, neither
        PagedDialog itself;                                             // a page that holds itself
        DialogItem again = {IDC_TABS, KW_KIND_PAGES | KW_VALUE_PAGES, itself.pages, 0, 1, nullptr};
        itself.pages[0] = {nullptr, MAKEINTRESOURCEA(page), HostCallback, 1, &again};
        int pageCount = -1;  // the dialog itself
        itself.callback = [&](HWND, UINT message, WPARAM) -> INT_PTR {
            pageCount += message == WM_DESTROY;
            return 0;
        };
        EXPECT_EQ(itself.Run(), 0);
        EXPECT_LE(pageCount, 32) << page;
    }
}

// Buttons of a page do not end the dialog; the Escape key in a field of many lines does not close a page.
TEST(Pages, DoNotEndByThemselves) {
    PagedDialog host;
    DialogItem button = {IDC_BUTTON, KW_KIND_BUTTON | KW_VALUE_ACCEPT, nullptr, 0, 0, nullptr};
    host.pages[0].items = &button;
    host.opened = [](HWND dialog) {
        const HWND page = PageWindow(SetOf(dialog), 0);
        SendMessageA(page, WM_COMMAND, IDC_BUTTON, 0);
        MSG posted;
        EXPECT_FALSE(PeekMessageA(&posted, page, WM_COMMAND, WM_COMMAND, PM_NOREMOVE));
        SendMessageA(page, WM_CLOSE, 0, 0);
    };
    host.endWith = 0;
    EXPECT_EQ(host.Run(), 0) << "closing a page is cancelling its dialog";
}
