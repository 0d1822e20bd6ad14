#include "frame/services.h"

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

#include "frame/module.h"
#include "kit/handles.h"
#include "kwdialogs.h"
#include "preview/file_type.h"
#include "resources/resource.h"
#include "support/dialog_driver.h"
#include "support/resource_module.h"
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
    const DWORD errorMode = GetThreadErrorMode();
    for (const auto& [path, isDirectory, isFile] : cases) {
        EXPECT_EQ(IsDirectoryPath(path.c_str()), isDirectory) << path;
        EXPECT_EQ(IsFilePath(path.c_str()), isFile) << path;
    }
    EXPECT_EQ(IsDirectoryPath(nullptr), 0);
    EXPECT_EQ(IsFilePath(nullptr), 0);
    EXPECT_EQ(GetThreadErrorMode(), errorMode);
}

static void AskForFiles(void* worker) {
    while (!static_cast<Worker*>(worker)->stopRequested) IsFilePath("c:\\none");
}

TEST(Paths, LeaveTheErrorModeOfTheProcess) {
    Worker worker;
    const UINT before = GetErrorMode();
    ASSERT_TRUE(StartWorker(&worker, AskForFiles, &worker));
    int changes = 0;
    for (int i = 0; i < 100000; ++i) changes += GetErrorMode() != before;
    StopWorkerAndPump(&worker, nullptr);
    EXPECT_EQ(changes, 0);
}

// None of these is opened, since that alone may block; a pipe is, and given back at once.
TEST(Paths, DevicesAreNoFiles) {
    const TempFolder folder;
    const UniqueHandle pipe(CreateNamedPipeA("\\\\.\\pipe\\kwtests", PIPE_ACCESS_DUPLEX, 0, 1, 0, 0, 0, nullptr));
    const std::string paths[] = {"AUX",    folder.At("AUX.dxf"), folder.At("com1 .x"), "COM1:",
                                 "CONIN$", "\\\\.\\COM1",        "\\\\?\\COM1",        "\\\\.\\pipe\\kwtests"};
    for (const std::string& path : paths) {
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
    const std::string contents("one\0two\xff", 8), path = folder.Write("data", contents), empty = folder.Write("0", "");
    const HGLOBAL block = LoadFileToGlobal(path.c_str());
    EXPECT_EQ(GlobalFlags(block) & GMEM_LOCKCOUNT, 1u);
    EXPECT_EQ(std::string(static_cast<const char*>(GlobalLock(block)), contents.size()), contents);
    while (GlobalUnlock(block)) {}
    GlobalFree(block);
    const UniqueHandle owner(CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_TRUE(IsOpen(owner)) << "the file is closed";
    for (const char* bad : {path.c_str(), empty.c_str(), folder.path.c_str(), "missing"})
        EXPECT_FALSE(LoadFileToGlobal(bad)) << bad;
    EXPECT_FALSE(LoadFileToGlobal(nullptr));
}

TEST(PreviewCancel, StoresOnlyZeroAndOne) {
    PreviewCancel(0);
    for (const auto& [value, before] : {std::pair{1, 0}, {-1, 1}, {2, 1}, {0, 1}, {-1, 0}})
        EXPECT_EQ(PreviewCancel(value), before) << value;
}

struct StubbornWork {
    HWND window;
    Worker worker;
    LRESULT answer;
};

// Ends only when it has been cancelled and its last sent message has been answered.
static void WorkStubbornly(void* parameter) {
    auto& work = *static_cast<StubbornWork*>(parameter);
    PreviewCancel(1);
    while (PreviewCancel(-1) == 1 || !work.worker.stopRequested) Sleep(1);
    work.answer = SendMessageA(work.window, WM_GETTEXTLENGTH, 0, 0);
}

TEST(Worker, StopsKeepsMessagesFlowingAndPassesQuitOn) {
    const TestWindow window(WS_POPUP, nullptr, {0, 0, 10, 10});
    SetWindowTextA(window.handle, "four");
    StubbornWork work = {window.handle, {}, 0};
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(StartWorker(&work.worker, WorkStubbornly, &work));
        work.answer = 0;
        PostQuitMessage(77);
        StopWorkerAndPump(&work.worker, window.handle);
        EXPECT_EQ(work.answer, 4);
        MSG message;
        EXPECT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
        EXPECT_EQ(message.wParam, 77u);
    }
}

TEST(Exports, GuiModeIsKept) {
    for (const auto& [mode, before] : {std::pair{-1, 0}, {3, 0}, {-5, 3}, {0, 3}, {-1, 0}})
        EXPECT_EQ(kwSelectFileGUI(mode), before) << mode;
    EXPECT_EQ(kwSelectFileName(nullptr, 1, 1, nullptr), 0u);
    char file[MAX_PATH] = "";
    SelectRequest noRoom = {};
    noRoom.fileBuffer = file;
    EXPECT_EQ(kwSelectFileName(nullptr, 0, 1, &noRoom), 0u) << "no dialog asks for what cannot be returned";
}

TEST(StringCache, FlushesWhenAllSlotsAreTaken) {
    const TempFolder folder;
    std::vector<std::string> texts;
    for (int i = 0; i < 600; ++i) texts.push_back("text " + std::to_string(i));
    texts.insert(texts.end(), {"", std::string(125, 'a') + "bcdef"});  // 600 is absent, 601 longer than a slot
    WriteResourceModule(folder.At("strings.dll"), 100, texts);
    const HMODULE module = LoadLibraryExA(folder.At("strings.dll").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_TRUE(module);
    const auto get = [=](UINT number) { return LoadResString(module, 100 + number); };
    LoadResString(nullptr, 0);  // teardown
    const char* first = get(0);
    ASSERT_STREQ(first, "text 0");
    for (UINT i = 1; i < 512; ++i) {
        ASSERT_FALSE(get(600)) << "a missing string";  // takes no slot
        ASSERT_STREQ(get(i), texts[i].c_str());
        ASSERT_EQ(get(0), first) << "a string is held once";
    }
    const char* fifth = get(5);
    EXPECT_STREQ(fifth, "text 5") << "512 strings fit";
    EXPECT_EQ(get(512), first) << "the first slot is used again";
    EXPECT_STREQ(first, "text 512");
    EXPECT_STREQ(fifth, "") << "all texts are gone";
    EXPECT_EQ(std::string(get(601)), std::string(125, 'a') + "b");
    EXPECT_FALSE(LoadResString(ThisModule(), 612)) << "modules are kept apart";
    EXPECT_FALSE(LoadResString(nullptr, 0));
    EXPECT_STREQ(get(3), "text 3") << "made again after the teardown";
    LoadResString(nullptr, 0);
    FreeLibrary(module);
}

// Both languages hold every text that is shown; copies are bounded.
TEST(ResString, EveryTextIsThere) {
    for (const UINT id : {IDS_OVERWRITE, IDS_LOADING, IDS_NO_PREVIEW, IDS_TEXT_FACE, IDS_DRAWING_NAME,
                          IDS_DRAWING_NUMBER, IDS_DESIGNER, IDS_INVALID_VALUE, IDS_INITIAL_ERROR})
        EXPECT_TRUE(LoadResString(ThisModule(), id)) << id;
    EXPECT_TRUE(strstr(LoadResString(ThisModule(), IDS_OVERWRITE), "%s"));
    const std::string whole = LoadResString(ThisModule(), IDS_NO_PREVIEW);
    char text[9] = "########";
    CopyResString(IDS_NO_PREVIEW, text, 6);
    EXPECT_EQ(text, whole.substr(0, strlen(text)));
    EXPECT_EQ(text[6], '#');
    CopyResString(9999, text, sizeof(text));
    EXPECT_STREQ(text, "");
}
