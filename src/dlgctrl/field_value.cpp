#include "dlgctrl/field_value.h"

#include <iterator>

#include "dlgctrl/dlgitem.h"
#include "dlgctrl/value_format.h"

static constexpr int kFieldTextSize = 256;  // a longer text is cut
static constexpr int kStepTextSize = 128;

const NumberType* FindNumberType(DWORD valueType) {
    constexpr DWORD kStep = KW_VALUE_INT16 - KW_VALUE_INT8;
    static_assert((KW_VALUE_DOUBLE - KW_VALUE_INT8) / kStep + 1 == std::size(kNumberTypes));
    const DWORD kind = (valueType - KW_VALUE_INT8) / kStep;  // types below the first wrap
    return kind < std::size(kNumberTypes) ? &kNumberTypes[kind] : nullptr;
}

// ---- The check

static bool CheckField(HWND dialog, int index) {
    const DialogItem item = *ItemOf(dialog, index);
    if (KindOf(item) != KW_KIND_EDIT) return true;
    const HWND field = GetDlgItem(dialog, item.controlId);
    if (!field || !item.value) return false;
    const NumberType* const type = FindNumberType(ValueTypeOf(item));
    if (!type) return true;

    char text[kFieldTextSize] = "";
    GetWindowTextA(field, text, sizeof(text));
    const std::string shown = CheckedText(*type, text, item.minimum, item.maximum, item.text);
    SetWindowTextA(field, shown.c_str());
    return true;
}

int CheckFields(HWND dialog, int index) { return HandleItems(dialog, index, CheckField); }

// ---- Spin steps

static int FindBySpinButton(HWND dialog, HWND spinButton) {
    for (int i = 0; i < ItemCountOf(dialog); ++i) {
        if (HandlesOf(dialog, i)->spinButton == spinButton) return i;
    }
    return -1;
}

void StepField(HWND dialog, NMUPDOWN* step) {
    const int index = FindBySpinButton(dialog, step->hdr.hwndFrom);
    const DialogItem* const item = ItemOf(dialog, index);
    if (!item || KindOf(*item) != KW_KIND_EDIT) return;
    const int delta = step->iDelta;
    step->iDelta = 0;  // the button's own position never moves
    const HWND field = GetDlgItem(dialog, item->controlId);

    char text[kStepTextSize] = "";
    GetWindowTextA(field, text, sizeof(text));
    double value = LeadingNumber(text);
    if (delta >= 1) value += 1;
    else if (delta < 0) value -= 1;
    SetWindowTextA(field, FormatReal(nullptr, value).c_str());
    CheckFields(dialog, index);
    FocusField(field);
}

void FocusField(HWND field) {
    if (!IsWindow(field)) return;
    SetFocus(field);
    SendMessageA(field, EM_SETSEL, 0, -1);
}
