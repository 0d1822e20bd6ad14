#include "dlgctrl/pages.h"

#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

#include <cstring>
#include <utility>

#include "dlgctrl/dlgitem.h"
#include "dlgctrl/host_dialog.h"

// A dialog with a container of two pages, each with a field.
struct PagedDialog : HostDialog {
    std::int32_t one = 1, two = 2;
    DialogItem itemsOne[1] = {{IDC_FIELD, KW_KIND_EDIT | KW_VALUE_INT32, &one, 0, 10, nullptr}};
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
    const HWND tabs = GetDlgItem(dialog, IDC_TABS);
    SendMessageA(tabs, TCM_SETCURSEL, static_cast<WPARAM>(index), 0);
    NMHDR header = {tabs, IDC_TABS, static_cast<UINT>(TCN_SELCHANGE)};
    SendMessageA(dialog, WM_NOTIFY, IDC_TABS, reinterpret_cast<LPARAM>(&header));
}

TEST(Pages, TabsSwitchThem) {
    PagedDialog host;
    host.opened = [](HWND dialog) {
        const HWND tabs = GetDlgItem(dialog, IDC_TABS);
        EXPECT_EQ(PageWindow(SetOf(dialog), kOwnerWindow), dialog);
        EXPECT_EQ(PageWindow(SetOf(dialog), kTabControl), tabs);
        RECT area;
        GetWindowRect(tabs, &area);
        SendMessageA(tabs, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&area));
        for (int i = 0; i < 2; ++i) {
            char caption[16] = "";
            TCITEMA tab = {};
            tab.mask = TCIF_TEXT;
            tab.pszText = caption;
            tab.cchTextMax = sizeof(caption);
            SendMessageA(tabs, TCM_GETITEMA, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&tab));
            EXPECT_STREQ(caption, i == 0 ? "One" : "Two");
            const HWND page = PageWindow(SetOf(dialog), i);
            RECT place;
            GetWindowRect(page, &place);
            EXPECT_TRUE(EqualRect(&place, &area));
            EXPECT_EQ(GetParent(page), dialog);
            EXPECT_EQ(GetWindowLongA(page, GWL_STYLE) & (WS_DLGFRAME | WS_THICKFRAME), 0);
        }
        const HWND page = PageWindow(SetOf(dialog), 0);
        EXPECT_FALSE(IsWindowVisible(GetDlgItem(page, IDOK)) || IsWindowVisible(GetDlgItem(page, IDCANCEL)));
        EXPECT_EQ(Visible(dialog), "10");
        ClickTab(dialog, 1);
        EXPECT_EQ(Visible(dialog), "01");
        EXPECT_TRUE(IsChild(PageWindow(SetOf(dialog), 1), GetFocus()));
        EXPECT_EQ(GetTopWindow(dialog), PageWindow(SetOf(dialog), 1)) << "above the tab control";
        EXPECT_EQ(SelectPage(SetOf(dialog), 0), 1);
        EXPECT_EQ(SendMessageA(tabs, TCM_GETCURSEL, 0, 0), 0);
        SendMessageA(tabs, TCM_SETCURSEL, 1, 0);
        for (const int index : {-1, 0, 2}) EXPECT_EQ(SelectPage(SetOf(dialog), index), -1);
        EXPECT_EQ(SendMessageA(tabs, TCM_GETCURSEL, 0, 0), 0) << "corrected though nothing changed";
        EXPECT_EQ(Visible(dialog), "10");
    };
    EXPECT_EQ(host.Run(), 1);
}

TEST(Pages, FirstAndLastShown) {
    const struct {
        double first;
        int shown;
        DWORD flags;
        int clicked;
        int endWith;
        double kept;
    } cases[] = {
        {1, 1, 0, 0, IDOK, 1},
        {1.5, 1, KW_FLAG_KEEP_PAGE, 0, IDOK, 0},
        {0, 0, KW_FLAG_KEEP_PAGE, 1, IDOK, 1},
        {0, 0, KW_FLAG_KEEP_PAGE, 1, IDCANCEL, 0},
        {2, 0, 0, 0, IDOK, 2},
        {-1, 0, 0, 0, IDOK, -1},
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
    for (const int ending : {IDOK, IDCANCEL}) {
        PagedDialog host;
        host.opened = [](HWND dialog) {
            const HWND one = PageWindow(SetOf(dialog), 0), two = PageWindow(SetOf(dialog), 1);
            EXPECT_EQ(TextOf(one, IDC_FIELD) + TextOf(two, IDC_FIELD), "12");
            SetDlgItemTextA(one, IDC_FIELD, "3*4");
            LeaveField(one, IDC_FIELD);
            EXPECT_EQ(TextOf(one, IDC_FIELD), "10") << "checked on the page";
            SetDlgItemTextA(two, IDC_FIELD, "22");
        };
        host.endWith = ending;
        EXPECT_EQ(host.Run(), ending == IDOK);
        EXPECT_EQ(host.one, ending == IDOK ? 10 : 1);
        EXPECT_EQ(host.two, ending == IDOK ? 22 : 2);
    }
}

TEST(Pages, OtherContainer) {
    PagedDialog host(IDC_PLAIN);
    host.opened = [](HWND dialog) {
        EXPECT_EQ(PageWindow(SetOf(dialog), kOwnerWindow), GetDlgItem(dialog, IDC_PLAIN));
        EXPECT_EQ(PageWindow(SetOf(dialog), kTabControl), nullptr);
        const HWND page = PageWindow(SetOf(dialog), 0);
        RECT place, wanted = {3, 4, 0, 0};
        GetWindowRect(page, &place);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
        MapDialogRect(dialog, &wanted);
        EXPECT_EQ(GetParent(page), dialog);
        EXPECT_EQ(place.left, wanted.left);
        EXPECT_EQ(place.top, wanted.top);
        NMHDR header = {GetDlgItem(dialog, IDC_PLAIN), IDC_PLAIN, static_cast<UINT>(TCN_SELCHANGE)};
        SendMessageA(dialog, WM_NOTIFY, IDC_PLAIN, reinterpret_cast<LPARAM>(&header));
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
        DWORD userValue = 7;
        EXPECT_EQ(PageWindow(set, 1, &userValue), two);
        EXPECT_EQ(userValue, 0u);
        EXPECT_EQ(RemovePage(set, 0), 1);
        EXPECT_FALSE(IsWindow(one));
        EXPECT_EQ(Send(dialog, IDC_TABS, TCM_GETITEMCOUNT), 1);
        EXPECT_EQ(PageCount(set), 2) << "later indices keep their meaning";
        EXPECT_EQ(PageWindow(set, 0), nullptr);
        EXPECT_EQ(PageWindow(set, 1), two);
        EXPECT_EQ(PageWindow(set, 2), nullptr);
        EXPECT_EQ(RemovePage(set, 0), 1);
        EXPECT_EQ(Send(dialog, IDC_TABS, TCM_GETITEMCOUNT), 1) << "its tab went before";
        DestroyWindow(two);  // behind the set's back
        EXPECT_EQ(SelectPage(set, 1), 0);
    };
    EXPECT_EQ(host.Run(), 1);
    EXPECT_EQ(CreatePageSet(nullptr), nullptr);
    EXPECT_EQ(AddPage(nullptr, GetDesktopWindow(), 0), -1);
    EXPECT_EQ(PageCount(nullptr) + CurrentPage(nullptr), -2);
    EXPECT_EQ(PageWindow(nullptr, kOwnerWindow), nullptr);
}

// A page's callback destroys the set that is showing it, and other memory takes the set's place.
TEST(Pages, DestroyedWhileInUse) {
    PagedDialog host;
    host.pages[0].callback = HostCallback;
    std::vector<HGLOBAL> blocks;
    host.callback = [&](HWND window, UINT message, WPARAM shown) -> INT_PTR {
        if (message != WM_SHOWWINDOW || shown || !GetParent(window) || CurrentPage(SetOf(GetParent(window))) != 0)
            return 0;
        if (!blocks.empty()) return 0;
        DestroyPageSet(std::exchange(HandlesOf(GetParent(window), 0)->pageSet, nullptr));
        for (int i = 0; i < 50; ++i) {
            blocks.push_back(GlobalAlloc(GMEM_MOVEABLE, 100));
            std::memset(GlobalLock(blocks.back()), 0x11, 100);
            GlobalUnlock(blocks.back());
        }
        return 0;
    };
    host.opened = [](HWND dialog) {
        ClickTab(dialog, 1);
        EXPECT_EQ(Send(dialog, IDC_TABS, TCM_GETITEMCOUNT), 0);
    };
    EXPECT_EQ(host.Run(), 1);
    EXPECT_FALSE(blocks.empty());
    for (const HGLOBAL block : blocks) GlobalFree(block);
}

TEST(Pages, OnesThatCannotBeCreated) {
    PagedDialog missingTemplate;
    missingTemplate.pages[1].templateName = "no such template";
    EXPECT_EQ(missingTemplate.Run(), 0);
    PagedDialog badItem;
    badItem.itemsTwo[0].value = nullptr;
    EXPECT_EQ(badItem.Run(), 0);
    PagedDialog noTable;
    noTable.pages[0].items = nullptr;
    EXPECT_EQ(noTable.Run(), 0);
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
    PagedDialog negative;
    negative.pages[0].itemCount = -5;
    EXPECT_EQ(negative.Run(), 1);
}

// Buttons of a page do not end the dialog; the Escape key in a field of many lines does not close a page.
TEST(Pages, DoNotEndByThemselves) {
    PagedDialog host;
    DialogItem button[] = {{IDC_BUTTON, KW_KIND_BUTTON | KW_VALUE_ACCEPT, nullptr, 0, 0, nullptr}};
    host.pages[0].items = button;
    host.opened = [](HWND dialog) {
        SendMessageA(PageWindow(SetOf(dialog), 0), WM_COMMAND, IDC_BUTTON, 0);
        EXPECT_TRUE(IsWindow(PageWindow(SetOf(dialog), 0)));
        SendMessageA(PageWindow(SetOf(dialog), 0), WM_CLOSE, 0, 0);
    };
    host.endWith = 0;
    EXPECT_EQ(host.Run(), 0) << "closing a page is cancelling its dialog";
}
