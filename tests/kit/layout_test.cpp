#include "kit/layout.h"

#include <gtest/gtest.h>

#include "support/dialog_driver.h"

static constexpr int kWidth = 400, kHeight = 300;

// A dialog with a layout, and what a test does to it when it is open.
struct LayoutDialog {
    RememberedSize remembered;
    LayoutRow rows[5] = {{1, kAnchorRight | kAnchorBottom, 0, 0, {}},
                         {2, kMoveHorizontally | kMoveVertically, 0, 0, {}},
                         {3, kAnchorRight, 50, 0, {}},
                         {4, kMoveHorizontally | kAnchorBottom, 25, 200, {}},
                         {99, kAnchorRight, 0, 0, {}}};  // there is none
    DialogLayout layout = {rows, 5, &remembered};

    void Open(const DialogStep& step);
};

static INT_PTR CALLBACK LayoutProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* record = reinterpret_cast<LayoutDialog*>(GetWindowLongPtrA(dialog, DWLP_USER));
    if (message == WM_INITDIALOG) {
        record = reinterpret_cast<LayoutDialog*>(lParam);
        SetWindowLongPtrA(dialog, DWLP_USER, lParam);
        SetWindowPos(dialog, nullptr, 200, 150, kWidth, kHeight, SWP_NOZORDER);
        for (int id = 1; id <= 4; ++id) {
            (void)CreateWindowA("STATIC", "", WS_CHILD | WS_VISIBLE, 10, 20, 100, 50, dialog,
                                reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
        }
        StartLayout(dialog, &record->layout);
    } else if ((message == WM_SIZE || message == WM_SHOWWINDOW) && record) {
        FollowDialogSize(dialog, &record->layout, message, wParam);
    } else if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) {
        EndDialog(dialog, 0);
    } else {
        return FALSE;
    }
    return TRUE;
}

void LayoutDialog::Open(const DialogStep& step) {
    layout.recordedSize = {};
    const struct {
        DLGTEMPLATE head;
        WORD menu, windowClass, title;
    } box = {{WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MAXIMIZEBOX, 0, 0, 0, 0, 50, 50}, 0, 0, 0};
    RunDialog(
        [&] {
            return static_cast<unsigned>(
                DialogBoxIndirectParamA(nullptr, &box.head, nullptr, LayoutProc, reinterpret_cast<LPARAM>(this)));
        },
        {Check([](HWND) {}), step, Press(IDCANCEL)});  // the dialog has come to rest before the step
}

static std::string RectText(RECT r) {
    return std::to_string(r.left) + "," + std::to_string(r.top) + " " + std::to_string(r.right) + "," +
           std::to_string(r.bottom);
}

static std::string Placed(HWND dialog, int id) {
    RECT rect = {};
    GetWindowRect(id ? GetDlgItem(dialog, id) : dialog, &rect);
    if (id) MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
    return RectText(rect);
}

TEST(Layout, ControlsFollowTheGrowth) {
    LayoutDialog box;
    box.Open(Check([](HWND dialog) {
        SetWindowPos(dialog, nullptr, 0, 0, kWidth + 3, kHeight + 1, SWP_NOMOVE | SWP_NOZORDER);  // must not add up
        SetWindowPos(dialog, nullptr, 0, 0, kWidth + 40, kHeight + 20, SWP_NOMOVE | SWP_NOZORDER);
        EXPECT_EQ(Placed(dialog, 1), "10,20 150,90");
        EXPECT_EQ(Placed(dialog, 2), "50,40 150,90");
        EXPECT_EQ(Placed(dialog, 3), "10,20 130,70");
        EXPECT_EQ(Placed(dialog, 4), "20,20 120,110");
        SetWindowPos(dialog, nullptr, 0, 0, kWidth - 60, kHeight - 30, SWP_NOMOVE | SWP_NOZORDER);
        EXPECT_EQ(Placed(dialog, 2), "-50,-10 50,40");
    }));
    box.Open(Check([](HWND dialog) {
        EXPECT_EQ(Placed(dialog, 0), "230,165 570,435") << "the last size, around the same centre";
        EXPECT_EQ(Placed(dialog, 1), "10,20 50,40");
    }));
}

TEST(Layout, MaximizedAgain) {
    LayoutDialog box;
    box.Open(Check([](HWND dialog) { ShowWindow(dialog, SW_MAXIMIZE); }));
    EXPECT_TRUE(box.remembered.maximized);
    EXPECT_EQ(box.remembered.size.cx, kWidth) << "the size to go back to";
    box.Open(Check([](HWND dialog) {
        EXPECT_TRUE(IsZoomed(dialog));
        ShowWindow(dialog, SW_RESTORE);
        EXPECT_EQ(Placed(dialog, 1), "10,20 110,70");
    }));
    EXPECT_FALSE(box.remembered.maximized);
}
