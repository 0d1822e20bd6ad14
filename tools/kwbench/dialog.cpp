// kwDlgBoxCtrl with a hundred items against the bare DialogBoxParamA of the same template with the same messages to the
// controls.
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "frame/module.h"
#include "kwbench.h"
#include "kwdialogs.h"
#include "resource.h"

static constexpr int kFields = 60, kBoth = 80, kItems = 100;  // with the check boxes, with the labels
static constexpr int kTurn = 5;                               // so many dialogs of one work, then the same of the other

static double values[kItems];
static const char* const kTemplate = MAKEINTRESOURCEA(IDD_BENCH);

static INT_PTR CALLBACK AcceptAtOnce(HWND dialog, UINT message, WPARAM, LPARAM) {
    if (message == WM_INITDIALOG) PostMessageA(dialog, WM_COMMAND, IDOK, 0);
    return 0;
}

// Sends the controls what the controller sends them.
static INT_PTR CALLBACK BareProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    const bool filling = message == WM_INITDIALOG;
    if (!filling && (message != WM_COMMAND || LOWORD(wParam) != IDOK)) return FALSE;
    for (int i = 0; i < (filling ? kItems : kBoth); ++i) {
        const HWND control = GetDlgItem(dialog, IDC_BENCH_ITEM + i);
        char text[256] = "label";
        if (filling) {
            if (i < kFields) std::snprintf(text, sizeof(text), "%.3f", values[i]);
            SetWindowTextA(control, text);
            if (i >= kFields && i < kBoth) SendMessageA(control, BM_SETCHECK, BST_UNCHECKED, 0);
        } else if (i < kFields) {
            GetWindowTextA(control, text, sizeof(text));
        } else {
            SendMessageA(control, BM_GETCHECK, 0, 0);
        }
    }
    if (!filling) EndDialog(dialog, 1);
    AcceptAtOnce(dialog, message, wParam, lParam);
    return TRUE;
}

void BenchDialog(Bench* bench) {
    std::vector<DialogItem> items;
    for (int i = 0; i < kItems; ++i) {
        const int id = IDC_BENCH_ITEM + i;
        if (i < kFields) items.push_back({id, KW_KIND_EDIT | KW_VALUE_DOUBLE, &values[i], 0, 100, nullptr});
        else if (i < kBoth) items.push_back({id, KW_KIND_CHECK | KW_VALUE_DOUBLE, &values[i], 0, 0, "on"});
        else items.push_back({id, KW_KIND_LABEL, nullptr, 0, 0, "label"});
    }
    const auto controlled = [&] {
        return kwDlgBoxCtrl(ThisModule(), kTemplate, nullptr, &items[0], kItems, AcceptAtOnce);
    };
    const auto bare = [] { return DialogBoxParamA(ThisModule(), kTemplate, nullptr, BareProc, 0); };
    const auto several = [](auto show) {
        return Timed([=] {
            for (int i = 0; i < kTurn; ++i) Require(show() == 1, "dialog: a dialog could not be shown");
        });
    };
    Measure(1, {several(controlled), several(bare)});  // what the system loads for its first dialogs
    std::string what = std::to_string(kTurn);
    what += " dialogs of 100 items";
    AddComparison(bench, what, bench->quick ? 5 : 15, several(controlled), several(bare), 1.5);
}
