#include "dialog_robot.h"

#include <commctrl.h>

static constexpr UINT kTickMilliseconds = 5;
static constexpr DWORD kStepMilliseconds = 20000;  // only ends what hangs

// ---- The run

struct Run {
    std::vector<DialogStep> steps;
    std::size_t next;
    DWORD stepStart;
    bool isOver;  // nothing is left to do here
    bool isBusy;  // a step lets messages through, the timer's too
};
static Run* run;  // of this thread; timers carry no pointer

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

static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD now) {
    HWND dialog = nullptr;
    if (run && !run->isBusy)
        EnumThreadWindows(GetCurrentThreadId(), TakeFrontDialog, reinterpret_cast<LPARAM>(&dialog));
    if (!dialog) return;
    if (run->next == run->steps.size() || now - run->stepStart > kStepMilliseconds) run->isOver = true;
    if (run->isOver) {
        PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
        return;
    }
    run->isBusy = true;
    if (run->steps[run->next](dialog)) {
        ++run->next;
        run->stepStart = GetTickCount();
    }
    run->isBusy = false;
}

std::string DriveDialogs(const std::function<void()>& open, std::vector<DialogStep> steps) {
    Run mine = {std::move(steps), 0, GetTickCount(), false, false};
    run = &mine;
    const UINT_PTR timer = SetTimer(nullptr, 0, kTickMilliseconds, Tick);
    open();
    KillTimer(nullptr, timer);
    run = nullptr;
    if (mine.next == mine.steps.size()) return "";
    return (mine.isOver ? "waited in vain at step " : "the dialogs were gone at step ") + std::to_string(mine.next);
}

// ---- Steps

DialogStep Press(int buttonId) {
    return [=](HWND dialog) {
        const HWND own = GetDlgItem(dialog, buttonId), button = own ? own : FindControl(dialog, buttonId);
        return button && PostMessageA(GetParent(button), WM_COMMAND, static_cast<WPARAM>(buttonId),
                                      reinterpret_cast<LPARAM>(button));
    };
}

DialogStep SelectFile(const std::string& name) {
    return [=](HWND dialog) {
        const HWND list = FindControl(dialog, WC_LISTVIEWA);
        LVFINDINFOA find = {LVFI_STRING, name.c_str(), 0, {}, 0};
        const LRESULT index =
            list ? SendMessageA(list, LVM_FINDITEMA, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&find)) : -1;
        if (index < 0) return false;
        SetFocus(list);
        LVITEMA item = {};
        item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        SendMessageA(list, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&item));
        item.state = item.stateMask;
        SendMessageA(list, LVM_SETITEMSTATE, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
        SendMessageA(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(index), FALSE);
        return true;
    };
}

DialogStep Check(const std::function<void(HWND dialog)>& look) {
    return [=](HWND dialog) {
        look(dialog);
        return true;
    };
}

DialogStep Lasts(const DialogStep& condition, DWORD milliseconds) {
    return [=, since = DWORD{0}](HWND dialog) mutable {  // 0: it does not hold
        const DWORD now = GetTickCount();
        if (!condition(dialog)) since = 0;
        else if (since == 0) since = now;
        return since != 0 && now - since >= milliseconds;
    };
}

void SelectLine(HWND dialog, int listId, int line, int notification) {
    const HWND list = FindControl(dialog, listId);
    SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(line), 0);
    SendMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(MAKELONG(listId, notification)),
                 reinterpret_cast<LPARAM>(list));
}

// ---- Controls

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

HWND FindControl(HWND dialog, int id) { return FindBelow(dialog, {id, nullptr, nullptr}); }
HWND FindControl(HWND dialog, const char* className) { return FindBelow(dialog, {0, className, nullptr}); }

std::string WindowText(HWND window) {
    std::string text(40000, '\0');
    text.resize(
        static_cast<std::size_t>(SendMessageA(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

std::string ControlText(HWND dialog, int id) { return WindowText(FindControl(dialog, id)); }
