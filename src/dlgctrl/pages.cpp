#include "dlgctrl/pages.h"

#include <commctrl.h>

#include <initializer_list>

namespace {

struct PageEntry {
    HWND window;  // null: removed
    DWORD userValue;
};

struct PageSet {
    HWND owner;       // the dialog, or the container when that is no tab control
    HWND tabControl;  // or null
    int current;      // -1: none shown yet
    int count;
    int users;       // operations that are under way
    bool destroyed;  // freed by the last of them
    PageEntry pages[1];
};

// The set's memory for the length of a scope. No code but ours runs meanwhile: another operation may move the memory.
struct LockedSet {
    const HGLOBAL handle;
    PageSet* const set;
    explicit LockedSet(HGLOBAL source)
        : handle(source), set(source ? static_cast<PageSet*>(GlobalLock(source)) : nullptr) {}
    ~LockedSet() {
        if (set) GlobalUnlock(handle);
    }
    LockedSet(const LockedSet&) = delete;
    LockedSet& operator=(const LockedSet&) = delete;
    explicit operator bool() const { return set != nullptr; }
    PageSet* operator->() const { return set; }
};

// Keeps the memory while an operation sends messages, even when one of them destroys the set.
struct UsedSet {
    const HGLOBAL handle;
    explicit UsedSet(HGLOBAL source) : handle(source) {
        if (const LockedSet set{handle}) ++set->users;
    }
    ~UsedSet() {
        bool isLast = false;
        if (const LockedSet set{handle}) isLast = --set->users == 0 && set->destroyed;
        if (isLast) GlobalFree(handle);
    }
    UsedSet(const UsedSet&) = delete;
    UsedSet& operator=(const UsedSet&) = delete;
};

// Calls work(window) for every page that exists.
template <typename Work>
void ForEachPage(HGLOBAL set, Work work) {
    for (int i = 0; i < PageCount(set); ++i) {
        const HWND page = PageWindow(set, i);
        if (IsWindow(page)) work(page);
    }
}

bool IsTabControl(HWND control) {
    char name[128] = "";
    GetClassNameA(control, name, sizeof(name));
    return lstrcmpiA(name, WC_TABCONTROLA) == 0;
}

// Takes the frame away; what is inside stays where it is.
void RemoveFrame(HWND page) {
    RECT place = {};
    GetClientRect(page, &place);
    MapWindowPoints(page, GetAncestor(page, GA_PARENT), reinterpret_cast<POINT*>(&place), 2);
    const auto style = static_cast<DWORD>(GetWindowLongPtrA(page, GWL_STYLE)) & ~DWORD{WS_CAPTION | WS_THICKFRAME};
    SetWindowLongPtrA(page, GWL_STYLE, static_cast<LONG_PTR>(style));
    AdjustWindowRectEx(&place, style, FALSE, static_cast<DWORD>(GetWindowLongPtrA(page, GWL_EXSTYLE)));
    SetWindowPos(page, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
}

// A page has no frame and no buttons of its own to end it, and the Tab key goes through its controls.
void MakePage(HWND page) {
    ShowWindow(page, SW_HIDE);
    RemoveFrame(page);
    SetWindowLongPtrA(page, GWL_EXSTYLE, GetWindowLongPtrA(page, GWL_EXSTYLE) | WS_EX_CONTROLPARENT);
    for (const int id : {IDOK, IDCANCEL}) {
        if (const HWND button = GetDlgItem(page, id)) ShowWindow(button, SW_HIDE);
    }
}

// Puts an entry at the end and returns their number; -1 when memory runs out.
int AppendEntry(HGLOBAL handle, const PageEntry& entry) {
    const int count = PageCount(handle);
    const SIZE_T size = sizeof(PageSet) + (static_cast<SIZE_T>(count) + 1) * sizeof(PageEntry);
    const HGLOBAL grown = GlobalReAlloc(handle, size, GMEM_MOVEABLE | GMEM_ZEROINIT);
    const LockedSet set(grown);  // a movable block keeps its handle
    if (!set) return -1;
    set->pages[count] = entry;
    return ++set->count;
}

void AddTab(HWND tabControl, HWND page) {
    char caption[256] = "";
    GetWindowTextA(page, caption, sizeof(caption));
    TCITEMA tab = {};
    tab.mask = TCIF_TEXT | TCIF_PARAM;
    tab.pszText = caption;
    const LRESULT count = SendMessageA(tabControl, TCM_GETITEMCOUNT, 0, 0);
    SendMessageA(tabControl, TCM_INSERTITEMA, static_cast<WPARAM>(count), reinterpret_cast<LPARAM>(&tab));
}

// Lays every page into the tab control, whose rows of tabs may have become more.
void ArrangePages(HGLOBAL set, HWND owner, HWND tabControl) {
    RECT area = {};
    GetWindowRect(tabControl, &area);
    SendMessageA(tabControl, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&area));
    MapWindowPoints(nullptr, owner, reinterpret_cast<POINT*>(&area), 2);
    ForEachPage(set, [&](HWND page) {
        MoveWindow(page, area.left, area.top, area.right - area.left, area.bottom - area.top, FALSE);
    });
}

}  // namespace

HGLOBAL CreatePageSet(HWND container) {
    if (!IsWindow(container)) return nullptr;
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, sizeof(PageSet));
    {
        const LockedSet set(handle);
        if (set) {
            const bool hasTabs = IsTabControl(container);
            set->owner = hasTabs ? GetParent(container) : container;
            set->tabControl = hasTabs ? container : nullptr;
            set->current = -1;
            return handle;
        }
    }
    if (handle) GlobalFree(handle);
    return nullptr;
}

int AddPage(HGLOBAL set, HWND page, DWORD userValue) {
    if (!set || !page) return -1;
    const UsedSet used(set);
    MakePage(page);
    const int count = AppendEntry(set, {page, userValue});
    if (count < 0) {
        DestroyWindow(page);
        return -1;
    }
    const HWND tabControl = PageWindow(set, kTabControl);
    if (tabControl) {
        AddTab(tabControl, page);
        ArrangePages(set, PageWindow(set, kOwnerWindow), tabControl);
    }
    return count;
}

static void SetCurrent(HGLOBAL handle, int index) {
    const LockedSet set(handle);
    if (set) set->current = index;
}

int SelectPage(HGLOBAL set, int index) {
    const UsedSet used(set);
    const int shown = CurrentPage(set);
    const bool isPage = index >= 0 && index < PageCount(set);
    if (isPage && index != shown) {
        ForEachPage(set, [](HWND page) { ShowWindow(page, SW_HIDE); });
        SetCurrent(set, index);
        const HWND page = PageWindow(set, index);
        SetWindowPos(page, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW);
        SetFocus(page);
    }
    const HWND tabControl = PageWindow(set, kTabControl);
    const auto current = static_cast<LRESULT>(CurrentPage(set));
    if (tabControl && isPage && SendMessageA(tabControl, TCM_GETCURSEL, 0, 0) != current) {
        SendMessageA(tabControl, TCM_SETCURSEL, static_cast<WPARAM>(current), 0);
    }
    return isPage && index != shown ? shown : -1;
}

// Takes the page out of its entry.
static HWND ClearEntry(HGLOBAL handle, int index) {
    const LockedSet set(handle);
    if (!set || index < 0 || index >= set->count) return nullptr;
    const HWND page = set->pages[index].window;
    set->pages[index] = {};
    return page;
}

int RemovePage(HGLOBAL set, int index) {
    const UsedSet used(set);
    const HWND page = ClearEntry(set, index);
    if (IsWindow(page)) DestroyWindow(page);
    const HWND tabControl = PageWindow(set, kTabControl);
    if (tabControl && page) SendMessageA(tabControl, TCM_DELETEITEM, static_cast<WPARAM>(index), 0);
    return 1;
}

int DestroyPageSet(HGLOBAL handle) {
    const UsedSet used(handle);  // frees it
    {
        const LockedSet set(handle);
        if (!set || set->destroyed) return 1;
        set->destroyed = true;
    }
    ForEachPage(handle, DestroyWindow);
    if (const HWND tabControl = PageWindow(handle, kTabControl)) SendMessageA(tabControl, TCM_DELETEALLITEMS, 0, 0);
    return 1;
}

void CommandPages(HGLOBAL set, WORD commandId) {
    const UsedSet used(set);
    ForEachPage(set, [=](HWND page) { SendMessageA(page, WM_COMMAND, commandId, 0); });
}

int CurrentPage(HGLOBAL handle) {
    const LockedSet set(handle);
    return set ? set->current : -1;
}

int PageCount(HGLOBAL handle) {
    const LockedSet set(handle);
    return set ? set->count : -1;
}

HWND PageWindow(HGLOBAL handle, int index, DWORD* userValue) {
    const LockedSet set(handle);
    if (!set) return nullptr;
    if (index == kOwnerWindow) return set->owner;
    if (index == kTabControl) return set->tabControl;
    if (index < 0 || index >= set->count) return nullptr;
    if (userValue) *userValue = set->pages[index].userValue;
    return set->pages[index].window;
}
