#include "frame/services.h"

#include <gtest/gtest.h>

#include "support/dialog_driver.h"

struct TestWindow {
    const HWND handle;
    TestWindow(DWORD style, HWND owner, RECT r)
        : handle(CreateWindowExA(0, "STATIC", "", style, r.left, r.top, r.right - r.left, r.bottom - r.top, owner,
                                 nullptr, nullptr, nullptr)) {}
    ~TestWindow() { DestroyWindow(handle); }
    TestWindow(const TestWindow&) = delete;
};

TEST(CenterWindow, Places) {
    const int screenX = GetSystemMetrics(SM_CXSCREEN), screenY = GetSystemMetrics(SM_CYSCREEN);
    RECT desktop;
    GetWindowRect(GetDesktopWindow(), &desktop);
    const struct {
        const char* what;
        DWORD ownerStyle;
        RECT owner;
        SIZE own;
        RECT expected;
    } cases[] = {
        // clang-format off
        {"over its owner, each half cut", WS_POPUP, {100, 100, 501, 401}, {101, 51}, {250, 225, 351, 276}},
        {"left and top of the screen", WS_POPUP, {-400, -300, -100, -50}, {200, 100}, {0, 0, 200, 100}},
        {"right and bottom", WS_POPUP, {screenX - 20, screenY - 10, screenX + 200, screenY + 100},
         {200, 100}, {screenX - 200, screenY - 100, screenX, screenY}},
        {"larger than the screen", WS_POPUP, {100, 100, 500, 400}, {screenX + 50, screenY + 30},
         {0, 0, screenX + 50, screenY + 30}},
        {"minimised owner", WS_POPUP | WS_MINIMIZE, {10, 10, 60, 60}, {200, 100},
         {desktop.right / 2 - 100, desktop.bottom / 2 - 50, desktop.right / 2 + 100, desktop.bottom / 2 + 50}},
        // clang-format on
    };
    for (const auto& c : cases) {
        const TestWindow owner(c.ownerStyle, nullptr, c.owner);
        const TestWindow window(WS_POPUP, owner.handle, {1, 2, 1 + c.own.cx, 2 + c.own.cy});
        EXPECT_EQ(CenterWindow(window.handle, nullptr), 1) << c.what;
        RECT now;
        GetWindowRect(window.handle, &now);
        EXPECT_TRUE(EqualRect(&now, &c.expected))
            << c.what << ": " << now.left << " " << now.top << " " << now.right << " " << now.bottom;
    }
    EXPECT_EQ(CenterWindow(nullptr, nullptr), 0);
}

TEST(Paths, TheHostsErrorModeComesBack) {
    const UINT errorMode = SetErrorMode(SEM_NOALIGNMENTFAULTEXCEPT);
    EXPECT_FALSE(IsFilePath("c:\\")) << "a folder";
    EXPECT_EQ(SetErrorMode(errorMode) & ~SEM_NOALIGNMENTFAULTEXCEPT, 0u);
}

struct StubbornWorker {
    HWND window;
    volatile LONG word;
    LRESULT answer;
};

// Ends only when it has been cancelled and its last sent message has been answered.
static void WorkStubbornly(void* parameter) {
    auto& worker = *static_cast<StubbornWorker*>(parameter);
    PreviewCancel(1);
    while (PreviewCancel(-1) == 1 || !(worker.word & 128)) Sleep(1);
    worker.answer = SendMessageA(worker.window, WM_GETTEXTLENGTH, 0, 0);
    InterlockedAnd(&worker.word, ~1L);
}

TEST(StopWorkerAndPump, StopsKeepsMessagesFlowingAndPassesQuitOn) {
    const TestWindow window(WS_POPUP, nullptr, {0, 0, 10, 10});
    SetWindowTextA(window.handle, "four");
    StubbornWorker worker = {window.handle, 1, 0};
    ASSERT_TRUE(StartModuleThread(WorkStubbornly, &worker));
    PostQuitMessage(77);
    StopWorkerAndPump(window.handle, &worker.word, 1, 128);
    EXPECT_EQ(worker.answer, 4);
    EXPECT_EQ(worker.word & 1, 0);
    MSG message;
    EXPECT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 77u);
}
