#include "dlgctrl/controller.h"

#include <commctrl.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "dlgctrl/dlgitem.h"
#include "dlgctrl/field_value.h"
#include "dlgctrl/items.h"
#include "dlgctrl/pages.h"
#include "frame/os_kind.h"
#include "frame/services.h"
#include "kit/guard.h"

static INT_PTR CALLBACK ControllerProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

// ---- The beginning and the end of a dialog

// Null when memory runs out.
static DialogContext* NewContext(const DialogSetup& setup) {
    const auto count = static_cast<std::size_t>(setup.itemCount);
    if (count > (SIZE_MAX - sizeof(DialogContext)) / sizeof(ItemHandles)) return nullptr;
    auto* const context = static_cast<DialogContext*>(
        HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, sizeof(DialogContext) + count * sizeof(ItemHandles)));
    if (!context) return nullptr;
    context->setup = setup;
    context->procedure = GuardedProcedure<INT_PTR, ControllerProc>;
    return context;
}

// Ends the dialog, and its pages before it: accepted when the result is not 0.
static void EndControlledDialog(HWND dialog, int result) {
    for (int i = 0; i < ItemCountOf(dialog); ++i) {
        if (const HGLOBAL set = HandlesOf(dialog, i)->pageSet) CommandPages(set, result ? IDOK : IDCANCEL);
    }
    DialogContext* const context = ContextOf(dialog);
    if (context && context->setup.endingId == 0) context->setup.endingId = result;
    if (!context) EndDialog(dialog, result);
    else if (context->setup.pageDepth == 0) EndDialog(dialog, context->setup.endingId);
    else DestroyWindow(dialog);
}

// Systems before the new shell place dialogs themselves nowhere.
static void CenterOnOldSystems(HWND dialog) {
    if (!(GetWindowLongPtrA(dialog, GWL_STYLE) & DS_CENTER)) return;
    if (!HasNewShell(GetOsKind())) CenterWindow(dialog, nullptr);
}

static INT_PTR OnInitDialog(HWND dialog, WPARAM wParam, LPARAM lParam) {
    if (ContextOf(dialog)) return FALSE;  // sent again by somebody
    DialogContext* const context = NewContext(*reinterpret_cast<const DialogSetup*>(lParam));
    SetWindowLongPtrA(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(context));
    if (!context || !Guarded(0, [&] { return ConstructItems(dialog, -1); })) {
        EndControlledDialog(dialog, 0);
        return TRUE;
    }
    const DialogCallback callback = ContextOf(dialog)->setup.callback;
    if (callback) callback(dialog, WM_INITDIALOG, wParam, lParam);
    CenterOnOldSystems(dialog);
    return TRUE;
}

static INT_PTR OnDestroy(HWND dialog) {
    for (int i = 0; i < ItemCountOf(dialog); ++i) {
        if (const HGLOBAL set = std::exchange(HandlesOf(dialog, i)->pageSet, nullptr)) DestroyPageSet(set);
    }
    DialogContext* const context = ContextOf(dialog);
    SetWindowLongPtrA(dialog, DWLP_USER, 0);
    if (context) HeapFree(GetProcessHeap(), 0, context);
    return TRUE;
}

// ---- Commands and notifications

// Null when no item has that control.
static const DialogItem* FindItem(HWND dialog, int controlId, int* index) {
    for (int i = 0; i < ItemCountOf(dialog); ++i) {
        const DialogItem* const item = ItemOf(dialog, i);
        if (!item || item->controlId != controlId) continue;
        *index = i;
        return item;
    }
    return nullptr;
}

static constexpr struct {
    DWORD valueType;
    WORD commandId;
} kEndingButtons[] = {{KW_VALUE_ACCEPT, IDOK}, {KW_VALUE_DISMISS, IDCANCEL}};

// Leaves the button's id as the dialog's result and goes on as after OK or Cancel, so that a callback sees that too.
static void PressEndingButton(HWND dialog, const DialogItem& item) {
    DialogSetup& setup = ContextOf(dialog)->setup;
    for (const auto& button : kEndingButtons) {
        if (ValueTypeOf(item) != button.valueType || setup.pageDepth > 0) continue;
        setup.endingId = item.controlId;
        PostMessageA(dialog, WM_COMMAND, button.commandId, reinterpret_cast<LPARAM>(dialog));
    }
}

static INT_PTR OnCommand(HWND dialog, int commandId, int notification) {
    if (commandId == IDOK) {
        // Deliberate: accepted even when an item fails. Else OK would do nothing, and the user could only cancel.
        WriteBackItems(dialog, -1);
        EndControlledDialog(dialog, 1);
        return TRUE;
    }
    if (commandId == IDCANCEL) {
        EndControlledDialog(dialog, 0);
        return TRUE;
    }
    int index = 0;
    const DialogItem* const item = FindItem(dialog, commandId, &index);
    if (!item) return FALSE;
    if (KindOf(*item) == KW_KIND_EDIT && notification == EN_KILLFOCUS) CheckFields(dialog, index);
    else if (KindOf(*item) == KW_KIND_BUTTON) PressEndingButton(dialog, *item);
    return FALSE;
}

static void OnTabChange(HWND dialog, HWND tabControl) {
    for (int i = 0; i < ItemCountOf(dialog); ++i) {
        const HGLOBAL set = HandlesOf(dialog, i)->pageSet;
        if (!set || PageWindow(set, kTabControl) != tabControl) continue;
        SetFocus(tabControl);
        const auto page = static_cast<int>(SendMessageA(tabControl, TCM_GETCURSEL, 0, 0));
        const ItemHandles* const handles = HandlesOf(dialog, i);
        if (page >= 0 && handles) SelectPage(handles->pageSet, page);
        return;
    }
}

static INT_PTR OnNotify(HWND dialog, NMHDR* header) {
    if (!header || !header->hwndFrom) return FALSE;  // of no window, as the handle of a button or set that is not there
    if (header->code == UDN_DELTAPOS) StepField(dialog, reinterpret_cast<NMUPDOWN*>(header));
    if (header->code == TCN_SELCHANGE) OnTabChange(dialog, header->hwndFrom);
    return FALSE;
}

// A field of many lines closes its dialog at the Escape key: on a page that means the dialog, not the page alone.
static INT_PTR OnClose(HWND dialog) {
    const DialogContext* const context = ContextOf(dialog);
    if (!context || context->setup.pageDepth == 0) return FALSE;
    PostMessageA(GetParent(dialog), WM_CLOSE, 0, 0);
    return TRUE;
}

static INT_PTR CALLBACK ControllerProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    const DialogContext* const context = ContextOf(dialog);
    const DialogCallback callback = context ? context->setup.callback : nullptr;
    // Deliberate: TRUE whatever the callback's value. The value itself would reach the system as a brush or a result
    // from hosts that mean no more than "handled". At WM_DESTROY, too, nothing of ours is done then.
    if (callback && callback(dialog, message, wParam, lParam)) return TRUE;
    switch (message) {
        case WM_INITDIALOG: return OnInitDialog(dialog, wParam, lParam);
        case WM_COMMAND: return OnCommand(dialog, LOWORD(wParam), HIWORD(wParam));
        case WM_NOTIFY: return OnNotify(dialog, reinterpret_cast<NMHDR*>(lParam));
        case WM_CLOSE: return OnClose(dialog);
        case WM_DESTROY: return OnDestroy(dialog);
        default: return FALSE;
    }
}

// ---- Entry

int RunControlledDialog(HINSTANCE instance, const char* templateName, HWND owner, DialogItem* items, int itemCount,
                        DialogCallback callback) {
    const INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_TAB_CLASSES | ICC_UPDOWN_CLASS};
    InitCommonControlsEx(&controls);  // a host's template may hold a tab control before anybody has asked for it
    DialogSetup setup = {std::max(itemCount, 0), items, callback, 0, 0};
    return static_cast<int>(DialogBoxParamA(instance, templateName, owner, GuardedProcedure<INT_PTR, ControllerProc>,
                                            reinterpret_cast<LPARAM>(&setup)));
}

int FocusControl(HWND dialog, int controlId) {
    const HWND control = GetDlgItem(dialog, controlId);
    if (!control) return 0;
    FocusField(control);
    return 1;
}

DialogItem* ItemTable(HWND dialog) {
    const DialogContext* const context = ContextOf(dialog);
    return context ? context->setup.items : nullptr;
}
