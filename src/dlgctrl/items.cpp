#include "dlgctrl/items.h"

#include <commctrl.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "dlgctrl/dlgitem.h"
#include "dlgctrl/field_value.h"
#include "dlgctrl/pages.h"
#include "dlgctrl/value_format.h"
#include "frame/module.h"
#include "kit/numbers.h"

namespace {

constexpr int kMostButtons = 0xFFFF;      // of a radio group: more than a template can hold
constexpr int kDeepestPages = 32;         // pages in pages: a table that holds itself comes to an end
constexpr int kNoId = 0xFFFF;             // what a template writes as -1: labels and frames that nobody addresses
constexpr DWORD kSpinStyle = 0x508000A5;  // child, visible, border; no thousands, arrow keys, right of the field, wraps

// One item that is being handled. The record is a copy: see dlgitem.h.
struct Item {
    HWND dialog;
    int index;
    DialogItem record;
    HWND control;            // the first one of a radio group
    const NumberType* type;  // null when the value is no number
};

LPARAM TextParam(const char* text) { return reinterpret_cast<LPARAM>(text); }

bool Nothing(const Item&) { return true; }

// ---- Text

// The host's string; in a buffer whose size is known it is read no further.
bool ShowText(const Item& item) {
    const char* const value = static_cast<const char*>(item.record.value);
    const bool isBuffer = KindOf(item.record) == KW_KIND_EDIT;
    const std::string text(
        value, isBuffer ? strnlen(value, static_cast<std::size_t>(CountOf(item.record))) : std::strlen(value));
    SetWindowTextA(item.control, FormatText(item.record.text, text.c_str()).c_str());
    return true;
}

bool ShowTextField(const Item& item) {
    const int size = CountOf(item.record);
    if (size <= 0) return false;
    SendMessageA(item.control, EM_LIMITTEXT, static_cast<WPARAM>(size - 1), 0);
    return ShowText(item);
}

bool StoreTextField(const Item& item) {
    const int size = CountOf(item.record);
    if (size <= 0) return false;
    char* const buffer = static_cast<char*>(item.record.value);
    GetWindowTextA(item.control, buffer, size);
    std::string text(buffer, strnlen(buffer, static_cast<std::size_t>(size)));
    DropSplitCharacter(&text);
    buffer[text.size()] = '\0';
    return true;
}

// ---- Numbers

double LoadNumber(const Item& item) { return item.type->load(item.record.value); }

double LimitToRange(const Item& item, double number) {
    return HasRange(item.record) ? item.type->limit(number, item.record.minimum, item.record.maximum) : number;
}

bool ShowNumberField(const Item& item) {
    const double number = LimitToRange(item, item.type->shown(LoadNumber(item)));
    SetWindowTextA(item.control, item.type->format(item.record.text, number).c_str());
    return true;
}

// Deliberate: no evaluation here; a field that has not been checked gives its leading number. Evaluated, 2*3 and Enter
// would store 6 in every host, where it stores 2.
bool StoreNumberField(const Item& item) {
    char text[kNumberSize] = "";
    GetWindowTextA(item.control, text, sizeof(text));
    item.type->store(item.record.value, LimitToRange(item, item.type->leading(text)));
    return true;
}

bool ShowCheck(const Item& item) {
    SendMessageA(item.control, BM_SETCHECK, LoadNumber(item) != 0 ? BST_CHECKED : BST_UNCHECKED, 0);
    return true;
}

bool StoreCheck(const Item& item) {
    item.type->store(item.record.value, SendMessageA(item.control, BM_GETCHECK, 0, 0) != 0 ? 1 : 0);
    return true;
}

// ---- Radio groups

// How many there are by the host's table.
int ButtonCount(const Item& item) { return std::clamp(CountOf(item.record), 0, kMostButtons); }
int ButtonId(const Item& item, int button) { return WrappingAdd(item.record.controlId, button); }

// The buttons by their index, up to the last that exists; null where an id has no control.
std::vector<HWND> Buttons(const Item& item) {
    std::vector<HWND> buttons;
    for (HWND child = GetWindow(item.dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        const int id = GetDlgCtrlID(child), index = WrappingSubtract(id, item.record.controlId);
        if (id == kNoId || index < 0 || index >= ButtonCount(item)) continue;
        const auto at = static_cast<std::size_t>(index);
        if (at >= buttons.size()) buttons.resize(at + 1);
        if (!buttons[at]) buttons[at] = child;
    }
    return buttons;
}

bool ShowRadio(const Item& item) {
    const int count = ButtonCount(item);
    if (count == 0) return true;
    const int checked = std::clamp(SaturateTo<int>(LoadNumber(item)), 0, count - 1);
    CheckRadioButton(item.dialog, ButtonId(item, 0), ButtonId(item, count - 1), ButtonId(item, checked));
    return true;
}

bool StoreRadio(const Item& item) {
    int index = 0;
    for (const HWND button : Buttons(item)) {
        if (button && SendMessageA(button, BM_GETCHECK, 0, 0) != 0) {
            item.type->store(item.record.value, index);
            break;
        }
        ++index;
    }
    return true;
}

// ---- Combo lists

bool ShowCombo(const Item& item) {
    SendMessageA(item.control, CB_RESETCONTENT, 0, 0);
    const char* entry = item.record.text;
    for (int i = 0; entry && i < CountOf(item.record); ++i, entry += std::strlen(entry) + 1) {
        SendMessageA(item.control, CB_ADDSTRING, 0, TextParam(entry));
    }
    const int selected = SaturateTo<int>(LoadNumber(item));
    SendMessageA(item.control, CB_SETCURSEL, static_cast<WPARAM>(selected), 0);  // none when it is outside
    return true;
}

bool StoreCombo(const Item& item) {
    const LRESULT selected = SendMessageA(item.control, CB_GETCURSEL, 0, 0);
    if (selected >= 0) item.type->store(item.record.value, static_cast<double>(selected));
    return true;
}

// ---- Pages

// A modeless dialog under the same procedure; null when it cannot be created or one of its items fails.
HWND CreatePage(HWND dialog, const PageDescriptor& descriptor) {
    const auto own = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(dialog, GWLP_HINSTANCE));
    const HINSTANCE instance = descriptor.instance ? descriptor.instance : own;
    const int depth = ContextOf(dialog)->setup.pageDepth + 1;
    DialogSetup setup = {std::max(descriptor.itemCount, 0), descriptor.items, descriptor.callback, depth, 0};
    const HWND page = CreateDialogParamA(instance, descriptor.templateName, dialog, ContextOf(dialog)->procedure,
                                         reinterpret_cast<LPARAM>(&setup));
    if (ContextOf(page)) return page;  // the handle of a page that has failed is dead already
    if (IsWindow(page)) DestroyWindow(page);
    return nullptr;
}

bool AddNewPage(const Item& item, const PageDescriptor& descriptor) {
    const HWND page = CreatePage(item.dialog, descriptor);
    if (!page) return false;
    const ItemHandles* const handles = HandlesOf(item.dialog, item.index);
    if (handles) return AddPage(handles->pageSet, page, 0) >= 0;
    DestroyWindow(page);
    return false;
}

int FirstPage(const DialogItem& record) {
    const bool isPage = record.minimum >= 0 && record.maximum > record.minimum;
    const int first = isPage ? SaturateTo<int>(record.minimum) : 0;
    return first < CountOf(record) ? first : 0;
}

bool ShowPages(const Item& item) {
    ItemHandles* handles = HandlesOf(item.dialog, item.index);
    if (!item.record.value || !(item.record.maximum > 0) || !handles) return false;
    if (handles->pageSet) return true;
    if (ContextOf(item.dialog)->setup.pageDepth >= kDeepestPages) return false;
    handles->pageSet = CreatePageSet(item.control);
    if (!handles->pageSet) return false;
    const auto* const descriptors = static_cast<const PageDescriptor*>(item.record.value);
    for (int i = 0; i < CountOf(item.record); ++i) {
        if (!ContextOf(item.dialog) || !AddNewPage(item, descriptors[i])) return false;
    }
    handles = HandlesOf(item.dialog, item.index);
    if (handles) SelectPage(handles->pageSet, FirstPage(item.record));
    return handles != nullptr;
}

bool KeepPage(const Item& item) {
    const ItemHandles* const handles = HandlesOf(item.dialog, item.index);
    if (!(item.record.type & KW_FLAG_KEEP_PAGE) || !handles) return true;
    ItemOf(item.dialog, item.index)->minimum = CurrentPage(handles->pageSet);
    return true;
}

// ---- What a kind does with a value type

enum class ValueClass { kNone, kText, kNumber, kButton, kPages };

struct ValueRule {
    DWORD valueType;
    ValueClass valueClass;
    bool needsValue;      // a null value address is a failure
    bool otherKindsFail;  // kinds without a row below; else they neither show nor store anything
};
constexpr ValueRule kValueRules[] = {
    {KW_VALUE_TEXT, ValueClass::kText, true, true},      {KW_VALUE_INT8, ValueClass::kNumber, true, false},
    {KW_VALUE_INT16, ValueClass::kNumber, true, false},  {KW_VALUE_INT32, ValueClass::kNumber, true, false},
    {KW_VALUE_FLOAT, ValueClass::kNumber, true, false},  {KW_VALUE_DOUBLE, ValueClass::kNumber, true, false},
    {KW_VALUE_ACCEPT, ValueClass::kButton, false, true}, {KW_VALUE_DISMISS, ValueClass::kButton, false, true},
    {KW_VALUE_PAGES, ValueClass::kPages, false, true},
};
constexpr ValueRule kNoValue = {KW_VALUE_NONE, ValueClass::kNone, false, false};  // and unknown types

using ItemWork = bool (*)(const Item&);
struct ItemRule {
    DWORD kind;
    ValueClass valueClass;
    ItemWork show, store;
};
constexpr ItemRule kItemRules[] = {
    {KW_KIND_EDIT, ValueClass::kText, ShowTextField, StoreTextField},
    {KW_KIND_LABEL, ValueClass::kText, ShowText, Nothing},
    {KW_KIND_EDIT, ValueClass::kNumber, ShowNumberField, StoreNumberField},
    {KW_KIND_CHECK, ValueClass::kNumber, ShowCheck, StoreCheck},
    {KW_KIND_RADIO, ValueClass::kNumber, ShowRadio, StoreRadio},
    {KW_KIND_COMBO, ValueClass::kNumber, ShowCombo, StoreCombo},
    {KW_KIND_BUTTON, ValueClass::kButton, Nothing, Nothing},
    {KW_KIND_PAGES, ValueClass::kPages, ShowPages, KeepPage},
};

const ValueRule& RuleOfValue(DWORD valueType) {
    for (const ValueRule& rule : kValueRules) {
        if (rule.valueType == valueType) return rule;
    }
    return kNoValue;
}

bool ApplyRule(const Item& item, ItemWork ItemRule::*work) {
    const ValueRule& valueRule = RuleOfValue(ValueTypeOf(item.record));
    if (valueRule.needsValue && !item.record.value) return false;
    for (const ItemRule& rule : kItemRules) {
        if (rule.kind == KindOf(item.record) && rule.valueClass == valueRule.valueClass) return (rule.*work)(item);
    }
    return !valueRule.otherKindsFail;
}

// ---- Labels and flags

void LabelControl(const Item& item) { SetWindowTextA(item.control, item.record.text); }

void LabelButtons(const Item& item) {
    const char* label = item.record.text;
    for (const HWND button : Buttons(item)) {
        if (button) SetWindowTextA(button, label);
        label += std::strlen(label) + 1;
    }
}

constexpr struct {
    DWORD kind;
    void (*label)(const Item&);
} kLabelRules[] = {
    {KW_KIND_CHECK, LabelControl},
    {KW_KIND_RADIO, LabelButtons},
    {KW_KIND_LABEL, LabelControl},
    {KW_KIND_BUTTON, LabelControl},
};

void SetLabel(const Item& item) {
    if (!item.record.text) return;
    for (const auto& rule : kLabelRules) {
        if (rule.kind == KindOf(item.record)) rule.label(item);
    }
}

void ApplyFlags(const Item& item, HWND control) {
    if (item.record.type & KW_FLAG_DISABLED) EnableWindow(control, FALSE);
    if (item.record.type & KW_FLAG_HIDDEN) ShowWindow(control, SW_HIDE);
}

void ApplyFlags(const Item& item) {
    if (KindOf(item.record) != KW_KIND_RADIO) return ApplyFlags(item, item.control);
    if (!(item.record.type & (KW_FLAG_DISABLED | KW_FLAG_HIDDEN))) return;
    for (const HWND button : Buttons(item)) {
        if (button) ApplyFlags(item, button);
    }
}

// ---- Spin buttons

void FollowField(HWND field, HWND spinButton) {
    EnableWindow(spinButton, IsWindowEnabled(field));
    ShowWindow(spinButton, GetWindowLongPtrA(field, GWL_STYLE) & WS_VISIBLE ? SW_SHOWNA : SW_HIDE);
}

// A field takes its spin button along when a host disables or hides it later.
LRESULT CALLBACK FieldWithSpin(HWND field, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR spin) {
    const LRESULT result = DefSubclassProc(field, message, wParam, lParam);
    if (message == WM_ENABLE || message == WM_WINDOWPOSCHANGED) FollowField(field, reinterpret_cast<HWND>(spin));
    if (message == WM_NCDESTROY) RemoveWindowSubclass(field, FieldWithSpin, id);
    return result;
}

// Does without one when it cannot be created.
void AddSpinButton(const Item& item) {
    const bool isWanted = KindOf(item.record) == KW_KIND_EDIT && (item.record.type & KW_FLAG_SPIN);
    const ItemHandles* const before = HandlesOf(item.dialog, item.index);
    if (!isWanted || !before || before->spinButton) return;
    const HWND spin =
        CreateWindowExA(0, UPDOWN_CLASSA, "", kSpinStyle, 0, 0, 0, 0, item.dialog, nullptr, ThisModule(), nullptr);
    if (!spin) return;
    SendMessageA(spin, UDM_SETBUDDY, reinterpret_cast<WPARAM>(item.control), 0);
    SendMessageA(spin, UDM_SETRANGE, 0, MAKELPARAM(1, -1));
    ItemHandles* const handles = HandlesOf(item.dialog, item.index);
    if (!handles) return;  // the button has gone with the dialog
    handles->spinButton = spin;
    SetWindowSubclass(item.control, FieldWithSpin, 0, reinterpret_cast<DWORD_PTR>(spin));
    FollowField(item.control, spin);
}

// ---- One item

Item ItemAt(HWND dialog, int index) {
    const DialogItem record = *ItemOf(dialog, index);
    return {dialog, index, record, GetDlgItem(dialog, record.controlId), FindNumberType(ValueTypeOf(record))};
}

bool Construct(HWND dialog, int index) {
    const Item item = ItemAt(dialog, index);
    if (!item.control) return false;
    ApplyFlags(item);
    AddSpinButton(item);
    SetLabel(item);
    return ApplyRule(item, &ItemRule::show);
}

bool WriteBack(HWND dialog, int index) {
    const Item item = ItemAt(dialog, index);
    if (!item.control) return true;  // destroyed meanwhile: the variable keeps its value
    return ApplyRule(item, &ItemRule::store);
}

}  // namespace

int ConstructItems(HWND dialog, int index) { return HandleItems(dialog, index, Construct); }

int WriteBackItems(HWND dialog, int index) { return HandleItems(dialog, index, WriteBack); }
