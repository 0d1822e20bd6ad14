#include "dirsel/folder_tree.h"

#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>
#include <shlobj.h>

#include <cstring>

#include "dirsel/folder_nodes.h"
#include "dirsel/shell_item.h"
#include "kwdialogs.h"
#include "resources/resource.h"
#include "support/dialog_driver.h"
#include "support/handle_counts.h"
#include "support/temp_folder.h"

// A folder that the shell shows: the user's own place for temporary files may be hidden.
struct VisibleTemp {
    char path[MAX_PATH] = "", previous[MAX_PATH] = "";
    VisibleTemp() {
        GetTempPathA(MAX_PATH, previous);
        GetEnvironmentVariableA("PUBLIC", path, MAX_PATH);
        SetEnvironmentVariableA("TMP", path);
    }
    ~VisibleTemp() { SetEnvironmentVariableA("TMP", previous); }
};

class FolderTree : public testing::Test {
protected:
    VisibleTemp visible;
    TempFolder folder;
    char directory[KW_MAX_PATH] = "";
    const char* title = "A title";

    unsigned Run(const std::string& start, std::vector<DialogStep> steps) {
        std::memset(directory, '#', sizeof(directory));
        std::memcpy(directory, start.c_str(), start.size() + 1);
        return RunDialog([&] { return kwSelectDirectryName(nullptr, title, directory); }, std::move(steps));
    }
};

static HWND View(HWND dialog) { return GetDlgItem(dialog, IDC_FOLDER_TREE); }
static HTREEITEM Selected(HWND dialog) { return TreeView_GetSelection(View(dialog)); }

static std::string NodeText(HWND view, HTREEITEM node) {
    char text[MAX_PATH] = "";
    TVITEMA item = {};
    item.mask = TVIF_TEXT;
    item.hItem = node;
    item.pszText = text;
    item.cchTextMax = sizeof(text);
    SendMessageA(view, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item));
    return text;
}

// The names below the selected node, as they stand.
static std::string Level(HWND dialog) {
    std::string names;
    HTREEITEM node = TreeView_GetChild(View(dialog), Selected(dialog));
    for (; node; node = TreeView_GetNextSibling(View(dialog), node)) names += NodeText(View(dialog), node) + " ";
    return names;
}

static DialogStep Expand() {
    return Check([](HWND dialog) { TreeView_Expand(View(dialog), Selected(dialog), TVE_EXPAND); });
}

static DialogStep SelectChild(const std::string& name) {
    return [=](HWND dialog) {
        HTREEITEM node = TreeView_GetChild(View(dialog), Selected(dialog));
        while (node && NodeText(View(dialog), node) != name) node = TreeView_GetNextSibling(View(dialog), node);
        return node && TreeView_SelectItem(View(dialog), node);
    };
}

static DialogStep PressF5() {
    return Check([](HWND dialog) { SendMessageA(View(dialog), WM_KEYDOWN, VK_F5, 0); });
}

static DialogStep LevelIs(const std::string& names) {
    return Check([=](HWND dialog) { EXPECT_EQ(Level(dialog), names); });
}

static DialogStep CaptionIs(const std::string& caption) {
    return Check([=](HWND dialog) {
        char text[2 * MAX_PATH] = "";
        GetWindowTextA(dialog, text, sizeof(text));
        EXPECT_STRCASEEQ(text, caption.c_str());
    });
}

static const char kDrives[] = "::{20D04FE0-3AEA-1069-A2D8-08002B30309D}";

TEST_F(FolderTree, OpensWithTheStartingDirectory) {
    const std::string work = folder.MakeFolder("WORK"), drive = work.substr(0, 3);
    folder.Write("WORK\\part.dxf", "");
    folder.MakeFolder("WORKSHOP");
    std::string upper = work + "\\", whole = work + "\\";
    CharUpperA(upper.data());
    whole.resize(KW_MAX_PATH - 1, 'x');
    const struct {
        std::string start, selected;
    } cases[] = {
        {work + "\\", work},
        {upper, work},
        {work, folder.path},  // deliberate
        {folder.At("WORKSHOP\\"), folder.At("WORKSHOP")},
        {folder.At("missing\\"), folder.path},
        {work + "\\part.dxf", work},
        {work + "\\part.dxf\\", work},
        {whole, work},
        {drive, drive},
        {"", kDrives},
        {"relative\\", kDrives},
        {"Q:\\none\\", kDrives},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.start);
        EXPECT_EQ(Run(c.start, {CaptionIs("A title - [" + c.selected + "]"), Press(IDCANCEL)}), 0u);
        EXPECT_EQ(directory, c.start);
    }
    EXPECT_EQ(Run("\\\\nowhere\\share\\", {Press(IDCANCEL)}), 0u);
    title = nullptr;
    Run(work + "\\", {CaptionIs("DirSelection - [" + work + "]"), Press(IDCANCEL)});

    EXPECT_EQ(kwSelectDirectryName(nullptr, nullptr, nullptr), 0u);
    std::memset(directory, 'x', sizeof(directory));
    EXPECT_EQ(kwSelectDirectryName(nullptr, nullptr, directory), 0u) << "no end in sight";
}

TEST(FolderNodes, StepsOfTheWay) {
    const struct {
        const char* name;
        bool inNetwork;
        const char* path;
    } cases[] = {
        {"C:\\", false, "C:\\"},
        {"C:\\a", false, "C:\\a\\"},
        {"", false, ""},
        {"server", false, "server\\"},
        {"server", true, "\\\\server\\"},
        {"\\\\s\\share", true, "\\\\s\\share\\"},
        {"", true, ""},
    };
    for (const auto& c : cases) EXPECT_EQ(StepPath(c.name, c.inNetwork), c.path) << c.name;
    // A second byte that looks like a backslash, where the code page has such characters.
    EXPECT_EQ(StepPath("\x95\\", true), GetACP() == 932 ? "\\\\\x95\\\\" : "\x95\\");
}

TEST_F(FolderTree, AcceptsTheSelectedFolder) {
    folder.MakeFolder("WORK");
    EXPECT_EQ(Run(folder.At(""), {Expand(), SelectChild("WORK"), Press(IDOK)}), 1u);
    EXPECT_STRCASEEQ(directory, folder.At("WORK\\").c_str());
    const std::string drive = folder.path.substr(0, 3);
    EXPECT_EQ(Run(drive, {Press(IDOK)}), 1u);
    EXPECT_EQ(directory, drive);
    EXPECT_EQ(Run("", {Press(IDOK)}), 1u);
    EXPECT_STRCASEEQ(directory, (std::string(kDrives) + "\\").c_str());
    EXPECT_EQ(directory[KW_MAX_PATH - 1], '#');
}

TEST_F(FolderTree, FillsOneLevelAtATime) {
    folder.Write("file.txt", "");
    for (const char* name : {"b", "A", "_c", "A\\inner"}) folder.MakeFolder(name);
    const DialogStep collapse =
        Check([](HWND dialog) { TreeView_Expand(View(dialog), Selected(dialog), TVE_COLLAPSE); });
    Run(folder.At(""), {LevelIs(""), Expand(), LevelIs("_c A b "), collapse, Expand(), LevelIs("_c A b "),
                        SelectChild("A"), LevelIs(""), Expand(), LevelIs("inner "), Press(IDCANCEL)});
}

TEST_F(FolderTree, F5ReadsTheFoldersAnew) {
    folder.MakeFolder("old");
    const DialogStep change = Check([&](HWND) {
        folder.MakeFolder("new");
        EXPECT_TRUE(RemoveDirectoryA(folder.At("old").c_str())) << "a shown folder is not held";
    });
    Run(folder.At(""), {Expand(), LevelIs("old "), SelectChild("old"), change, PressF5(),
                        CaptionIs("A title - [" + folder.path + "]"), Expand(), LevelIs("new "), Press(IDCANCEL)});
}

TEST_F(FolderTree, KeepsItsSize) {
    RECT first = {}, second = {};
    const DialogStep grow = Check([&](HWND dialog) {
        GetWindowRect(dialog, &first);
        SetWindowPos(dialog, nullptr, 0, 0, first.right - first.left + 60, first.bottom - first.top + 40,
                     SWP_NOMOVE | SWP_NOZORDER);
    });
    const DialogStep look = Check([&](HWND dialog) {
        GetWindowRect(dialog, &second);
        RECT client, tree, cancel;
        GetClientRect(dialog, &client);
        GetWindowRect(View(dialog), &tree);
        GetWindowRect(GetDlgItem(dialog, IDCANCEL), &cancel);
        MapWindowPoints(dialog, nullptr, reinterpret_cast<POINT*>(&client), 2);
        EXPECT_NEAR(tree.left - client.left, client.right - tree.right, 1) << "rounding of dialog units";
        EXPECT_EQ(cancel.right, tree.right);
        EXPECT_GT(cancel.top, tree.bottom);
        EXPECT_GT(client.bottom, cancel.bottom);
    });
    Run("", {grow, look, Press(IDCANCEL)});
    Run("", {look, Press(IDCANCEL)});
    const RECT expected = {first.left - 30, first.top - 20, first.right + 30, first.bottom + 20};
    EXPECT_TRUE(EqualRect(&second, &expected)) << second.left << "," << second.top;
    const DialogStep shrink =
        Check([](HWND dialog) { SetWindowPos(dialog, nullptr, 0, 0, 1, 1, SWP_NOMOVE | SWP_NOZORDER); });
    Run("", {shrink, look, Press(IDCANCEL)});
}

TEST_F(FolderTree, LeavesComAsItWas) {
    const DialogStep isOpen = Check([](HWND) {
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_FALSE);
        CoUninitialize();
    });
    Run("", {isOpen, Press(IDCANCEL)});
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK) << "closed again";
    Run("", {CaptionIs("A title - [" + std::string(kDrives) + "]"), Press(IDCANCEL)});
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE) << "the host's own stays open";
    CoUninitialize();
    CoUninitialize();
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    CoUninitialize();
}

// ---- Leaks

// References to the shell's desktop folder, which is one object for the whole process.
static int DesktopReferences() {
    IShellFolder* desktop = nullptr;
    return SUCCEEDED(SHGetDesktopFolder(&desktop)) ? static_cast<int>(desktop->Release()) : -1;
}

// Blocks in use in all heaps: nodes, id lists, and the shell's folder objects.
static int HeapBlocks() {
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(64, heaps);
    int blocks = 0;
    for (DWORD i = 0; i < count && i < 64; ++i) {
        PROCESS_HEAP_ENTRY entry = {};
        HeapLock(heaps[i]);
        while (HeapWalk(heaps[i], &entry)) blocks += entry.wFlags & PROCESS_HEAP_ENTRY_BUSY ? 1 : 0;
        HeapUnlock(heaps[i]);
    }
    return blocks;
}

TEST_F(FolderTree, LeaksNothing) {
    folder.MakeFolder("WORK");
    const ComApartment com;
    const auto visit = [&](int i) {
        std::vector<DialogStep> steps = {Expand(), SelectChild("WORK"), Press(i % 2 ? IDOK : IDCANCEL)};
        if (i % 5 == 0) steps.insert(steps.begin(), PressF5());
        Run(folder.At(""), steps);
    };
    for (int i = 0; i < 5; ++i) visit(i);  // what the system makes once
    const HandleCounts before = CountHandles();
    const int references = DesktopReferences(), blocks = HeapBlocks();
    for (int i = 0; i < 100; ++i) visit(i);
    EXPECT_EQ(DesktopReferences(), references);
    EXPECT_LT(HeapBlocks() - blocks, 50) << "less than one in two dialogs";
    const HandleCounts after = CountHandles();
    EXPECT_LE(after.gdi, before.gdi);
    EXPECT_LE(after.user, before.user);
    EXPECT_LE(after.kernel, before.kernel);
}
