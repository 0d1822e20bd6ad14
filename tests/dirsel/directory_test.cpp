// Both ways to choose a directory: the tree of the shell's folders and the classic dialog.
#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

#include "dirsel/folder_nodes.h"
#include "frame/services.h"
#include "kwdialogs.h"
#include "resources/resource.h"
#include "support/dialog_driver.h"
#include "support/temp_folder.h"

class FolderTree : public testing::Test {
protected:
    TempFolder folder{"PUBLIC"};  // which the shell shows: the user's own place for temporary files may be hidden
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
    TVITEMA item = {TVIF_TEXT, node, 0, 0, text, sizeof(text), 0, 0, 0, 0};
    SendMessageA(view, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item));
    return text;
}

static DialogStep Expand(UINT code = TVE_EXPAND) {
    return Check([=](HWND dialog) { TreeView_Expand(View(dialog), Selected(dialog), code); });
}

static DialogStep SelectChild(const std::string& name) {
    return [=](HWND dialog) {
        HTREEITEM node = TreeView_GetChild(View(dialog), Selected(dialog));
        while (node && NodeText(View(dialog), node) != name) node = TreeView_GetNextSibling(View(dialog), node);
        return node && TreeView_SelectItem(View(dialog), node);
    };
}

static const DialogStep kPressF5 = Check([](HWND dialog) { SendMessageA(View(dialog), WM_KEYDOWN, VK_F5, 0); });

// The names below the selected node, as they stand.
static DialogStep LevelIs(const std::string& expected) {
    return Check([=](HWND dialog) {
        std::string names;
        HTREEITEM node = TreeView_GetChild(View(dialog), Selected(dialog));
        for (; node; node = TreeView_GetNextSibling(View(dialog), node)) names += NodeText(View(dialog), node) + " ";
        EXPECT_EQ(names, expected);
    });
}

static DialogStep CaptionIs(const std::string& caption) {
    return Check([=](HWND dialog) { EXPECT_STRCASEEQ(WindowText(dialog).c_str(), caption.c_str()); });
}

static const char kDrives[] = "::{20D04FE0-3AEA-1069-A2D8-08002B30309D}";

TEST_F(FolderTree, OpensWithTheStartingDirectory) {
    const std::string work = folder.MakeFolder("WORK"), drive = work.substr(0, 3);
    folder.Write("WORK\\part.dxf", "");
    folder.MakeFolder("WORKSHOP");
    std::string upper = work + "\\", whole = work + "\\";
    CharUpperA(upper.data());
    whole.resize(KW_MAX_PATH - 1, 'x');
    const std::pair<std::string, std::string> cases[] = {
        // clang-format off
        {work + "\\", work}, {upper, work}, {work, folder.path},  // the last one is deliberate
        {folder.At("WORKSHOP\\"), folder.At("WORKSHOP")}, {folder.At("missing\\"), folder.path},
        {work + "\\part.dxf\\", work}, {whole, work}, {drive, drive}, {"", kDrives}, {"Q:\\none\\", kDrives},
        // clang-format on
    };
    for (const auto& [start, selected] : cases) {
        SCOPED_TRACE(start);
        EXPECT_EQ(Run(start, {CaptionIs("A title - [" + selected + "]"), Press(IDCANCEL)}), 0u);
        EXPECT_EQ(directory, start);
    }
    EXPECT_EQ(Run("\\\\nowhere\\share\\", {Press(IDCANCEL)}), 0u);
    title = nullptr;
    Run(work + "\\", {CaptionIs("DirSelection - [" + work + "]"), Press(IDCANCEL)});

    EXPECT_EQ(kwSelectDirectryName(nullptr, nullptr, nullptr), 0u);
    std::memset(directory, 'x', sizeof(directory));
    EXPECT_EQ(kwSelectDirectryName(nullptr, nullptr, directory), 0u) << "no end in sight";
}

TEST(FolderNodes, StepsOfTheWay) {
    EXPECT_EQ(StepPath("C:\\", false), "C:\\");
    EXPECT_EQ(StepPath("server", true), "\\\\server\\");
    EXPECT_EQ(StepPath("\\\\s\\share", true), "\\\\s\\share\\");
    // A second byte that looks like a backslash, where the code page has such characters.
    EXPECT_EQ(StepPath("\x95\\", true), GetACP() == 932 ? "\\\\\x95\\\\" : "\x95\\");
}

TEST_F(FolderTree, AcceptsTheSelectedFolder) {
    folder.MakeFolder("WORK");
    EXPECT_EQ(Run(folder.At(""), {Expand(), SelectChild("WORK"), Press(IDOK)}), 1u);
    EXPECT_STRCASEEQ(directory, folder.At("WORK\\").c_str());
    EXPECT_EQ(Run("", {Press(IDOK)}), 1u);
    EXPECT_STRCASEEQ(directory, (std::string(kDrives) + "\\").c_str());
    EXPECT_EQ(directory[KW_MAX_PATH - 1], '#');
}

TEST_F(FolderTree, FillsOneLevelAtATimeAndAnewAtF5) {
    folder.Write("file.txt", "");
    for (const char* name : {"b", "A", "_c", "A\\inner"}) folder.MakeFolder(name);
    const DialogStep change = Check([&](HWND) {
        folder.MakeFolder("new");
        EXPECT_TRUE(RemoveDirectoryA(folder.At("b").c_str())) << "a shown folder is not held";
    });
    Run(folder.At(""), {LevelIs(""), Expand(), LevelIs("_c A b "), Expand(TVE_COLLAPSE), Expand(), LevelIs("_c A b "),
                        SelectChild("A"), LevelIs(""), Expand(), LevelIs("inner "), change, kPressF5,
                        CaptionIs("A title - [" + folder.path + "]"), Expand(), LevelIs("_c A new "), Press(IDCANCEL)});
}

TEST_F(FolderTree, KeepsItsSize) {
    RECT first = {}, second = {}, button = {};
    const DialogStep grow = Check([&](HWND dialog) {
        GetWindowRect(dialog, &first);
        GetClientRect(GetDlgItem(dialog, IDCANCEL), &button);
        InflateRect(&first, 30, 20);
        SetWindowPos(dialog, nullptr, 0, 0, first.right - first.left, first.bottom - first.top, SWP_NOZORDER);
    });
    const DialogStep look = Check([&](HWND dialog) {
        EXPECT_TRUE(SendMessageA(dialog, WM_GETICON, ICON_SMALL, 0));
        GetWindowRect(dialog, &second);
        RECT tree, cancel, client;
        GetClientRect(GetDlgItem(dialog, IDCANCEL), &client);
        EXPECT_TRUE(EqualRect(&client, &button)) << "moved, not stretched";
        GetWindowRect(View(dialog), &tree);
        GetWindowRect(GetDlgItem(dialog, IDCANCEL), &cancel);
        EXPECT_TRUE(cancel.right == tree.right && cancel.top > tree.bottom && cancel.bottom < second.bottom);
        EXPECT_NEAR(tree.left - second.left, second.right - tree.right, 1) << "rounding of dialog units";
    });
    Run("", {grow, Press(IDCANCEL)});
    Run("", {look, Press(IDCANCEL)});
    EXPECT_TRUE(EqualRect(&second, &first)) << second.left << "," << second.top;
}

TEST_F(FolderTree, LeavesComAsItWas) {
    Run("", {Press(IDCANCEL)});
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK) << "closed again";
    Run("", {CaptionIs("A title - [" + std::string(kDrives) + "]"), Press(IDCANCEL)});
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE) << "the host's own stays open";
    for (int i = 0; i < 2; ++i) CoUninitialize();
}

class ClassicDirectory : public FolderTree {
protected:
    // Short names in either path, and letters of either case, make no difference.
    static std::string Normal(const char* path) {
        char text[MAX_PATH] = "";
        EXPECT_NE(GetLongPathNameA(path, text, MAX_PATH), 0u) << path;
        CharLowerA(text);
        return text;
    }
    void SetUp() override { kwSelectFileGUI(1); }
    void TearDown() override { kwSelectFileGUI(0); }
};

TEST_F(ClassicDirectory, ReturnsTheDirectoryShown) {
    const std::string work = folder.MakeFolder("WORK"), drive = folder.path.substr(0, 3);
    folder.Write("WORK\\Dummy.TXT", "an existing one is as good");
    const DialogStep wait = Check([](HWND) {}), enter = [=](HWND dialog) {  // goes into a folder of the list
        const HWND list = GetDlgItem(dialog, IDC_DIRECTORY_LIST);
        if (SendMessageA(list, LB_SELECTSTRING, 0, reinterpret_cast<LPARAM>("[work]")) == LB_ERR) return false;
        SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDC_DIRECTORY_LIST, LBN_DBLCLK), reinterpret_cast<LPARAM>(list));
        return true;
    };
    const std::tuple<std::string, DialogStep, std::string> cases[] = {
        // clang-format off
        {work + "\\", wait, work + "\\"}, {folder.path, enter, work + "\\"}, {drive, wait, drive},
        {"", wait, ""}, {folder.At("missing"), wait, ""}, {std::string(KW_MAX_PATH - 1, 'x'), wait, ""},  // any will do
        // clang-format on
    };
    for (const auto& [start, step, end] : cases) {
        EXPECT_EQ(Run(start, {step, Press(IDCANCEL)}), 0u);
        EXPECT_EQ(directory, start);
        EXPECT_EQ(Run(start, {step, Press(IDOK)}), 1u);
        EXPECT_TRUE(end.empty() || Normal(directory) == Normal(end.c_str())) << start << " " << directory;
        EXPECT_TRUE(IsDirectoryPath(directory) && directory[std::strlen(directory) - 1] == '\\') << directory;
    }
}

TEST_F(ClassicDirectory, ShowsDirectoriesAndDrivesOnly) {
    const auto look = [](HWND dialog) {
        RECT client, rect, overlap;
        GetClientRect(dialog, &client);
        MapWindowPoints(dialog, nullptr, reinterpret_cast<POINT*>(&client), 2);
        for (const int id : {IDC_FILE_NAME, IDC_FILE_LIST, IDC_TYPE_COMBO, IDC_READ_ONLY, IDC_HELP_BUTTON}) {
            GetWindowRect(GetDlgItem(dialog, id), &rect);
            EXPECT_FALSE(IsWindowVisible(GetDlgItem(dialog, id)) && IntersectRect(&overlap, &rect, &client)) << id;
        }
        GetWindowRect(GetFocus(), &rect);
        EXPECT_TRUE(IntersectRect(&overlap, &rect, &client)) << GetDlgCtrlID(GetFocus());
    };
    Run(folder.path, {Check(look), Press(IDCANCEL)});
}
