// A host's dialog on the test's templates.
#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "dlgctrl/test_dialogs.h"
#include "frame/module.h"
#include "kwdialogs.h"

constexpr UINT kOpened = WM_APP;  // posted to a dialog that has been initialised

struct HostDialog {
    std::vector<DialogItem> items;
    std::function<void(HWND dialog)> opened;  // once the dialog runs; without it, and behind it, OK is pressed
    std::function<INT_PTR(HWND dialog, UINT message, WPARAM wParam)> callback;  // sees what a DialogCallback sees
    int endWith = IDOK;  // command that ends it behind `opened`; 0: none
    bool shown = true;   // false: it ends before it is shown, which takes half the time
    int Run(int templateId = IDD_CONTROLS);
};

inline HostDialog* runningHost;  // a DialogCallback carries no pointer

inline INT_PTR CALLBACK HostCallback(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    HostDialog& host = *runningHost;
    const INT_PTR handled = host.callback ? host.callback(dialog, message, wParam) : 0;
    const auto send = [&](UINT command, int parameter) {
        if (host.shown) PostMessageA(dialog, command, static_cast<WPARAM>(parameter), 0);
        else SendMessageA(dialog, command, static_cast<WPARAM>(parameter), 0);
    };
    if (message == WM_INITDIALOG) send(kOpened, 0);
    if (message == kOpened) {
        if (host.opened) host.opened(dialog);
        if (host.endWith) send(WM_COMMAND, host.endWith);
    }
    return handled;
}

inline int HostDialog::Run(int templateId) {
    HostDialog* const outer = runningHost;
    runningHost = this;
    const int result = kwDlgBoxCtrl(ThisModule(), MAKEINTRESOURCEA(templateId), nullptr, items.data(),
                                    static_cast<int>(items.size()), HostCallback);
    runningHost = outer;
    return result;
}

inline DialogItem NumberField(std::int32_t* number, double maximum = 0, int id = IDC_FIELD) {
    return {id, KW_KIND_EDIT | KW_VALUE_INT32, number, 0, maximum, nullptr};
}

// Words of the tables.
inline DWORD ValueType(const std::string& word) {
    static const std::map<std::string, DWORD> types = {{"text", KW_VALUE_TEXT},   {"int8", KW_VALUE_INT8},
                                                       {"int16", KW_VALUE_INT16}, {"int32", KW_VALUE_INT32},
                                                       {"float", KW_VALUE_FLOAT}, {"double", KW_VALUE_DOUBLE}};
    return types.at(word);
}

inline const char* OrNull(const std::string& word) { return word == "none" ? nullptr : word.c_str(); }

inline std::string TextOf(HWND dialog, int id) {
    std::string text(70000, '\0');
    text.resize(GetDlgItemTextA(dialog, id, text.data(), static_cast<int>(text.size())));
    return text;
}

inline LRESULT Send(HWND dialog, int id, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
    return SendDlgItemMessageA(dialog, id, message, wParam, lParam);
}

// The user leaves a field.
inline void LeaveField(HWND dialog, int id) {
    SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(id, EN_KILLFOCUS), reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}
