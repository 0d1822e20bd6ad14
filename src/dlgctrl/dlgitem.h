// What the sources of the dialog controller share: the parts of an item's type word and the record of a running dialog.
// The records and constants that a host sees are in kwdialogs.h.
//
// A callback or a sent message may end the dialog, destroy its window or set items up anew. So whatever handles an item
// takes a copy of it, and asks for the context again by the dialog's window after each such call.
#pragma once

#include <windows.h>

#include "kit/numbers.h"
#include "kwdialogs.h"

inline DWORD KindOf(const DialogItem& item) { return item.type & 0xFF; }
inline DWORD ValueTypeOf(const DialogItem& item) { return item.type & 0xFF00; }

// A bound that is not a number makes no range.
inline bool HasRange(const DialogItem& item) { return item.minimum < item.maximum || item.minimum > item.maximum; }

// The maximum of kinds and types that count something: buttons, entries, pages, bytes.
inline int CountOf(const DialogItem& item) { return SaturateTo<int>(item.maximum); }

// What the opener of a controlled dialog passes as its creation parameter. It stays the opener's.
struct DialogSetup {
    int itemCount;  // not negative
    DialogItem* items;
    DialogCallback callback;
    int modal;     // 1: run by kwDlgBoxCtrl, 0: a page
    int endingId;  // 0 until an accept or dismiss button has left its control id
};

// What belongs to an item besides the host's record; null until made.
struct ItemHandles {
    HWND spinButton;
    HGLOBAL pageSet;  // see pages.h
};

// One running dialog; its window's DWLP_USER slot holds the address from WM_INITDIALOG to WM_DESTROY.
struct DialogContext {
    DialogSetup setup;
    DLGPROC procedure;       // runs the dialog, and its pages
    ItemHandles handles[1];  // one for each item, and one more
};

// Null when the window is gone or no controlled dialog.
inline DialogContext* ContextOf(HWND dialog) {
    return reinterpret_cast<DialogContext*>(GetWindowLongPtrA(dialog, DWLP_USER));
}

inline int ItemCountOf(HWND dialog) {
    const DialogContext* context = ContextOf(dialog);
    return context ? context->setup.itemCount : 0;
}

// The host's record of an item; null when there is none of that index, or no dialog any more.
inline DialogItem* ItemOf(HWND dialog, int index) {
    if (index < 0 || index >= ItemCountOf(dialog)) return nullptr;
    DialogItem* items = ContextOf(dialog)->setup.items;
    return items ? items + index : nullptr;
}

// Null as above.
inline ItemHandles* HandlesOf(HWND dialog, int index) {
    if (index < 0 || index >= ItemCountOf(dialog)) return nullptr;
    return ContextOf(dialog)->handles + index;
}

// Calls handle(dialog, index) for one item, or for all in table order when the index is -1, until one fails.
// 1 when all went well; 0 at a failure and when the dialog is gone.
template <typename Handle>
int HandleItems(HWND dialog, int index, Handle handle) {
    if (index != -1) return ItemOf(dialog, index) && handle(dialog, index);
    for (int i = 0; i < ItemCountOf(dialog); ++i) {
        if (!ItemOf(dialog, i) || !handle(dialog, i)) return 0;
    }
    return ContextOf(dialog) != nullptr;
}
