#include "kit/guard.h"

#include <gtest/gtest.h>

#include <vector>

TEST(Guard, OutOfMemoryIsAFailureAllElseGoesOn) {
    EXPECT_EQ(Guarded(-1, [] { return 7; }), 7);
    EXPECT_EQ(Guarded(-1, []() -> int { throw std::bad_alloc(); }), -1);
    std::vector<int> numbers;
    EXPECT_EQ(Guarded(-1, [&] { return numbers.reserve(numbers.max_size() + 1), 0; }), -1);
    EXPECT_THROW(Guarded(-1, []() -> int { throw 3; }), int) << "a host's";
}

static INT_PTR CALLBACK ThrowAt(HWND, UINT message, WPARAM, LPARAM lParam) {
    if (message == static_cast<UINT>(lParam)) throw std::bad_alloc();
    return 5;
}

// A dialog that cannot be set up ends with 0; a later message is passed over.
TEST(Guard, Procedures) {
    struct {
        DLGTEMPLATE head = {WS_POPUP, 0, 0, 0, 0, 9, 9};
        WORD menu = 0, windowClass = 0, title = 0;
    } const dialog;
    EXPECT_EQ(
        DialogBoxIndirectParamA(nullptr, &dialog.head, nullptr, GuardedProcedure<INT_PTR, ThrowAt>, WM_INITDIALOG), 0);
    const auto procedure = GuardedProcedure<INT_PTR, ThrowAt>;
    EXPECT_EQ(procedure(nullptr, WM_TIMER, 0, WM_TIMER), 0);
    EXPECT_EQ(procedure(nullptr, WM_TIMER, 0, 0), 5);
}
