#include "support/dialog_driver.h"

#include <windows.h>

#include <commctrl.h>
#include <commdlg.h>
#include <dlgs.h>
#include <gtest/gtest.h>

#include "resources/resource.h"
#include "support/picture.h"

static constexpr UINT kTickMilliseconds = 5;
static constexpr DWORD kStepMilliseconds = 20000;  // only ends what hangs

struct DialogRun {
    std::vector<DialogStep> steps;
    std::size_t next;
    DWORD stepStart;
    bool given_up;
    bool busy;
};
static DialogRun* run;  // of this thread; timers carry no pointer

static bool IsClass(HWND window, const char* className) {
    char name[32] = "";
    GetClassNameA(window, name, sizeof(name));
    return lstrcmpiA(name, className) == 0;
}

static BOOL CALLBACK TakeFrontDialog(HWND window, LPARAM out) {
    if (!IsClass(window, "#32770") || !IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
    *reinterpret_cast<HWND*>(out) = window;
    return FALSE;
}

static HWND FrontDialog() {
    HWND front = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), TakeFrontDialog, reinterpret_cast<LPARAM>(&front));
    return front;
}

static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD now) {
    const HWND dialog = run && !run->busy ? FrontDialog() : nullptr;
    if (!dialog) return;
    if (run->next == run->steps.size()) run->given_up = true;
    if (!run->given_up && now - run->stepStart > kStepMilliseconds) {
        ADD_FAILURE() << "step " << run->next << " waits in vain";
        run->given_up = true;
    }
    if (run->given_up) {  // nothing is left to do here, but a dialog stands open
        PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
        return;
    }
    run->busy = true;  // a step may let messages flow
    if (run->steps[run->next](dialog)) {
        ++run->next;
        run->stepStart = GetTickCount();
    }
    run->busy = false;
}

unsigned RunDialog(const std::function<unsigned()>& open, std::vector<DialogStep> steps) {
    DialogRun mine = {std::move(steps), 0, GetTickCount(), false, false};
    run = &mine;
    const UINT_PTR timer = SetTimer(nullptr, 0, kTickMilliseconds, Tick);
    const unsigned result = open();
    KillTimer(nullptr, timer);
    run = nullptr;
    EXPECT_EQ(mine.next, mine.steps.size()) << "steps taken when the dialogs were gone";
    return result;
}

struct ControlSearch {
    int id;
    const char* className;  // null: any
    HWND found;
};

static BOOL CALLBACK TakeControl(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<ControlSearch*>(parameter);
    if (search.className ? !IsClass(window, search.className) : GetDlgCtrlID(window) != search.id) return TRUE;
    search.found = window;
    return FALSE;
}

static HWND FindBelow(HWND dialog, ControlSearch search) {
    EnumChildWindows(dialog, TakeControl, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

DialogStep Press(int buttonId) {
    return [=](HWND dialog) {
        PostMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(buttonId),
                     reinterpret_cast<LPARAM>(FindControl(dialog, buttonId)));
        return true;
    };
}

DialogStep TypeFileName(std::string text) {
    return [=](HWND dialog) {
        const HWND edit = FileNameField(dialog);
        return edit && SendMessageA(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    };
}

DialogStep SelectFile(std::string name) {
    return [=](HWND dialog) {
        const HWND list = FindBelow(dialog, {0, WC_LISTVIEWA, nullptr});
        const int count = list ? static_cast<int>(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0)) : 0;
        for (int i = 0; i < count; ++i) {
            char text[MAX_PATH] = "";
            LVITEMA item = {};
            item.pszText = text;
            item.cchTextMax = MAX_PATH;
            SendMessageA(list, LVM_GETITEMTEXTA, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
            if (lstrcmpiA(text, name.c_str()) != 0) continue;
            item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
            SendMessageA(list, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&item));
            item.state = item.stateMask;
            SendMessageA(list, LVM_SETITEMSTATE, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
            return true;
        }
        return false;
    };
}

DialogStep Check(std::function<void(HWND dialog)> look) {
    return [=](HWND dialog) {
        look(dialog);
        return true;
    };
}

void SelectLine(HWND dialog, int listId, int line, int notification) {
    const HWND list = FindControl(dialog, listId);
    SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(line), 0);
    SendMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(MAKELONG(listId, notification)),
                 reinterpret_cast<LPARAM>(list));
}

HWND FindControl(HWND dialog, int id) { return FindBelow(dialog, {id, nullptr, nullptr}); }

HWND FileNameField(HWND dialog) {
    if (const HWND edit = FindControl(dialog, edt1)) return edit;
    const HWND combo = FindWindowExA(FindControl(dialog, cmb13), nullptr, WC_COMBOBOXA, nullptr);
    return combo ? FindWindowExA(combo, nullptr, WC_EDITA, nullptr) : nullptr;
}

std::string WindowText(HWND window) {
    std::string text(40000, '\0');
    text.resize(
        static_cast<std::size_t>(SendMessageA(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

std::string ControlText(HWND dialog, int id) { return WindowText(FindControl(dialog, id)); }

PaneContents ReadPane(HWND dialog) {
    const LRESULT bitmap = SendMessageA(FindControl(dialog, IDC_PREVIEW_PICTURE), STM_GETIMAGE, IMAGE_BITMAP, 0);
    return {PictureOf(reinterpret_cast<HBITMAP>(bitmap)), ControlText(dialog, IDC_PREVIEW_COMMENT)};
}
