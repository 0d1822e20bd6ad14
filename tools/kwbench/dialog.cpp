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

static constexpr double kLimit = 1.5;
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

static void FillBare(HWND dialog) {
    for (int i = 0; i < kItems; ++i) {
        const HWND control = GetDlgItem(dialog, IDC_BENCH_ITEM + i);
        char text[64] = "label";
        if (i < kFields) std::snprintf(text, sizeof(text), "%.3f", values[i]);
        SetWindowTextA(control, text);
        if (i >= kFields && i < kFields + kChecks) SendMessageA(control, BM_SETCHECK, BST_UNCHECKED, 0);
    }
}

static void ReadBare(HWND dialog) {
    for (int i = 0; i < kFields + kChecks; ++i) {
        const HWND control = GetDlgItem(dialog, IDC_BENCH_ITEM + i);
        char text[256];
        if (i < kFields) GetWindowTextA(control, text, sizeof(text));
        else SendMessageA(control, BM_GETCHECK, 0, 0);
    }
}

static INT_PTR CALLBACK BareProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        FillBare(dialog);
        AcceptAtOnce(dialog, message, wParam, lParam);
        return TRUE;
    }
    if (message != WM_COMMAND || LOWORD(wParam) != IDOK) return FALSE;
    ReadBare(dialog);
    EndDialog(dialog, 1);
    return TRUE;
}

bool BenchDialog(Bench* bench) {
    std::vector<DialogItem> items = MakeItems();
    bool good = true;
    const auto controlled = [&] {
        for (int i = 0; i < kTurn; ++i) {
            good &= kwDlgBoxCtrl(ThisModule(), kTemplate, nullptr, items.data(), kItems, AcceptAtOnce) == 1;
        }
    };
    const auto bare = [&] {
        for (int i = 0; i < kTurn; ++i) good &= DialogBoxParamA(ThisModule(), kTemplate, nullptr, BareProc, 0) == 1;
    };
    controlled();  // what the system loads for its first dialogs
    bare();
    const Comparison rounds = Compare(
        bench->quick ? 5 : 15, [&] { return SecondsOf(controlled); }, [&] { return SecondsOf(bare); });
    if (!good) return Fail("dialog: a dialog could not be shown");
    bench->rows.push_back(TimeRow(Number(kTurn, 0) + " dialogs of 100 items", rounds, kLimit));
    return true;
}
