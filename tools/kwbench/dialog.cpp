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

static constexpr int kFields = 60, kChecks = 20, kItems = 100;
static constexpr int kTurn = 5;  // so many dialogs of one work, then the same of the other

static double values[kItems];
static const char* const kTemplate = MAKEINTRESOURCEA(IDD_BENCH);

static std::vector<DialogItem> MakeItems() {
    std::vector<DialogItem> items;
    for (int i = 0; i < kItems; ++i) {
        DialogItem item = {IDC_BENCH_ITEM + i, KW_KIND_LABEL, nullptr, 0, 0, "label"};
        if (i < kFields) item = {IDC_BENCH_ITEM + i, KW_KIND_EDIT | KW_VALUE_DOUBLE, &values[i], 0, 100, nullptr};
        else if (i < kFields + kChecks)
            item = {item.controlId, KW_KIND_CHECK | KW_VALUE_DOUBLE, &values[i], 0, 0, "on"};
        items.push_back(item);
    }
    return items;
}

static INT_PTR CALLBACK AcceptAtOnce(HWND dialog, UINT message, WPARAM, LPARAM) {
    if (message == WM_INITDIALOG) PostMessageA(dialog, WM_COMMAND, IDOK, 0);
    return 0;
}

// Sends the controls what the controller sends them.
static INT_PTR CALLBACK BareProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    const bool isFilled = message == WM_INITDIALOG;
    if (!isFilled && (message != WM_COMMAND || LOWORD(wParam) != IDOK)) return FALSE;
    for (int i = 0; i < (isFilled ? kItems : kFields + kChecks); ++i) {
        const HWND control = GetDlgItem(dialog, IDC_BENCH_ITEM + i);
        char text[256] = "label";
        if (!isFilled && i < kFields) GetWindowTextA(control, text, sizeof(text));
        if (!isFilled && i >= kFields) SendMessageA(control, BM_GETCHECK, 0, 0);
        if (!isFilled) continue;
        if (i < kFields) std::snprintf(text, sizeof(text), "%.3f", values[i]);
        SetWindowTextA(control, text);
        if (i >= kFields && i < kFields + kChecks) SendMessageA(control, BM_SETCHECK, BST_UNCHECKED, 0);
    }
    if (isFilled) AcceptAtOnce(dialog, message, wParam, lParam);
    else EndDialog(dialog, 1);
    return TRUE;
}

void BenchDialog(Bench* bench) {
    std::vector<DialogItem> items = MakeItems();
    bool good = true;
    const std::vector<Work> works = {
        Timed([&] {
            for (int i = 0; i < kTurn; ++i) {
                good &= kwDlgBoxCtrl(ThisModule(), kTemplate, nullptr, items.data(), kItems, AcceptAtOnce) == 1;
            }
        }),
        Timed([&] {
            for (int i = 0; i < kTurn; ++i) good &= DialogBoxParamA(ThisModule(), kTemplate, nullptr, BareProc, 0) == 1;
        })};
    Measure(1, works);  // what the system loads for its first dialogs
    const std::vector<Series> times = Measure(bench->quick ? 5 : 15, works);
    Require(good, "dialog: a dialog could not be shown");
    bench->rows.push_back(TimeRow(std::to_string(kTurn) + " dialogs of 100 items", times[0], times[1], 1.5));
}
