#include "frame/services.h"

#include <gtest/gtest.h>

#include <tuple>

#include "kit/handles.h"
#include "kwdialogs.h"
#include "preview/file_type.h"
#include "support/dialog_driver.h"
#include "support/temp_folder.h"

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
        bool resize;
        RECT expected;
    } cases[] = {
        // clang-format off
        {"over its owner", WS_POPUP, {100, 100, 500, 400}, {200, 100}, false, {200, 200, 400, 300}},
        {"odd sizes, each half cut", WS_POPUP, {100, 100, 501, 401}, {101, 51}, false, {250, 225, 351, 276}},
        {"takes the rectangle's size", WS_POPUP, {100, 100, 500, 400}, {50, 50}, true, {200, 200, 400, 300}},
        {"left and top of the screen", WS_POPUP, {-400, -300, -100, -50}, {200, 100}, false, {0, 0, 200, 100}},
        {"right and bottom", WS_POPUP, {screenX - 20, screenY - 10, screenX + 200, screenY + 100},
         {200, 100}, false, {screenX - 200, screenY - 100, screenX, screenY}},
        {"larger than the screen", WS_POPUP, {100, 100, 500, 400}, {screenX + 50, screenY + 30}, false,
         {0, 0, screenX + 50, screenY + 30}},
        {"minimised owner", WS_POPUP | WS_MINIMIZE, {10, 10, 60, 60}, {200, 100}, false,
         {desktop.right / 2 - 100, desktop.bottom / 2 - 50, desktop.right / 2 + 100, desktop.bottom / 2 + 50}},
        // clang-format on
    };
    for (const auto& c : cases) {
        const TestWindow owner(c.ownerStyle, nullptr, c.owner);
        const TestWindow window(WS_POPUP, owner.handle, {1, 2, 1 + c.own.cx, 2 + c.own.cy});
        const RECT size = {7, 8, 207, 108};
        EXPECT_EQ(CenterWindow(window.handle, c.resize ? &size : nullptr), 1) << c.what;
        RECT now;
        GetWindowRect(window.handle, &now);
        EXPECT_TRUE(EqualRect(&now, &c.expected))
            << c.what << ": " << now.left << " " << now.top << " " << now.right << " " << now.bottom;
        POINT position;
        SIZE outer;
        EXPECT_EQ(GetWindowPosSize(window.handle, &position, &outer), 1);
        const RECT measured = {position.x, position.y, position.x + outer.cx, position.y + outer.cy};
        EXPECT_TRUE(EqualRect(&now, &measured));
    }
    EXPECT_EQ(CenterWindow(nullptr, nullptr), 0);
}

TEST(Paths, FilesAndDirectories) {
    const TempFolder folder;
    const std::string file = folder.Write("a file.txt", "x"), empty = folder.Write("empty", "");
    const std::tuple<std::string, int, int> cases[] = {
        // clang-format off
        {folder.path, 1, 0}, {folder.path + "\\", 1, 0}, {file, 0, 1}, {empty, 0, 1},
        {folder.At("missing"), 0, 0}, {file + "\\below", 0, 0}, {"", 0, 0}, {":", 0, 0},
        {"q:\\", 0, 0}, {"q:\\a", 0, 0}, {"1:\\", 0, 0},
        // clang-format on
    };
    const UINT errorMode = SetErrorMode(SEM_NOALIGNMENTFAULTEXCEPT);
    for (const auto& [path, isDirectory, isFile] : cases) {
        EXPECT_EQ(IsDirectoryPath(path.c_str()), isDirectory) << path;
        EXPECT_EQ(IsFilePath(path.c_str()), isFile) << path;
    }
    EXPECT_EQ(IsDirectoryPath(nullptr), 0);
    EXPECT_EQ(IsFilePath(nullptr), 0);
    EXPECT_EQ(SetErrorMode(errorMode) & ~SEM_NOALIGNMENTFAULTEXCEPT, 0u) << "the host's error mode is back";
}

// None of these is opened, since that alone may block; a pipe is, and given back at once.
TEST(Paths, DevicesAreNoFiles) {
    const TempFolder folder;
    const UniqueHandle pipe(CreateNamedPipeA("\\\\.\\pipe\\kwtests", PIPE_ACCESS_DUPLEX, 0, 1, 0, 0, 0, nullptr));
    for (const std::string& path :
         {std::string("AUX"), folder.At("AUX.dxf"), folder.At("com1 .x"), std::string("COM1:"), std::string("nul"),
          std::string("CON  "), std::string("CONIN$"), std::string("\\\\.\\COM1"), std::string("//./COM1"),
          std::string("\\\\?\\COM1"), std::string("\\\\.\\pipe\\kwtests"), std::string("\\\\?\\pipe\\kwtests")}) {
        EXPECT_EQ(OpenDiskFile(path.c_str()), INVALID_HANDLE_VALUE) << path;
        EXPECT_EQ(IsFilePath(path.c_str()) + IsDirectoryPath(path.c_str()), 0) << path;
        EXPECT_EQ(IdentifyFileType(path.c_str(), nullptr, 0), FT_UNREADABLE) << path;
    }
    const std::string longForm = "\\\\?\\" + folder.Write("a.aux", "x");
    EXPECT_TRUE(UniqueHandle(OpenDiskFile(longForm.c_str())));
    EXPECT_EQ(IsFilePath(longForm.c_str()), 1);
}

TEST(LoadFileToGlobal, WholeOrNothing) {
    const TempFolder folder;
    const std::string contents("one\0two\xff", 8);
    const std::string path = folder.Write("data", contents);
    const HGLOBAL block = LoadFileToGlobal(path.c_str());
    ASSERT_TRUE(block);
    EXPECT_TRUE(DeleteFileA(path.c_str())) << "the file is closed";
    EXPECT_EQ(GlobalFlags(block) & GMEM_LOCKCOUNT, 1u);
    EXPECT_GE(GlobalSize(block), contents.size());
    EXPECT_EQ(std::string(static_cast<const char*>(GlobalLock(block)), contents.size()), contents);
    GlobalUnlock(block);
    GlobalUnlock(block);
    EXPECT_FALSE(GlobalFree(block));

    const std::string locked = folder.Write("locked", "x");
    const HANDLE owner = CreateFileA(locked.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    for (const std::string& bad : {folder.Write("empty", ""), folder.At("missing"), folder.path, locked})
        EXPECT_FALSE(LoadFileToGlobal(bad.c_str())) << bad;
    EXPECT_FALSE(LoadFileToGlobal(nullptr));
    CloseHandle(owner);
}

TEST(PreviewCancel, StoresOnlyZeroAndOne) {
    PreviewCancel(0);
    for (const auto& [value, before] : {std::pair{1, 0}, {-1, 1}, {2, 1}, {0, 1}, {-1, 0}})
        EXPECT_EQ(PreviewCancel(value), before) << value;
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

TEST(Exports, GuiModeIsKept) {
    for (const auto& [mode, before] : {std::pair{-1, 0}, {3, 0}, {-5, 3}, {0, 3}, {-1, 0}})
        EXPECT_EQ(kwSelectFileGUI(mode), before) << mode;
    EXPECT_EQ(kwSelectFileName(nullptr, 1, 1, nullptr), 0u);
}
