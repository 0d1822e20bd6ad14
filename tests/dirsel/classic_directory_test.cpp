#include "dirsel/classic_directory.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>

#include "frame/services.h"
#include "kwdialogs.h"
#include "resources/resource.h"
#include "support/dialog_driver.h"
#include "support/handle_counts.h"
#include "support/temp_folder.h"

class ClassicDirectory : public testing::Test {
protected:
    TempFolder folder;
    char directory[KW_MAX_PATH] = "";

    unsigned Run(const std::string& start, std::vector<DialogStep> steps) {
        char before[MAX_PATH] = "", after[MAX_PATH] = "";
        GetCurrentDirectoryA(MAX_PATH, before);
        std::memset(directory, '#', sizeof(directory));
        std::memcpy(directory, start.c_str(), start.size() + 1);
        const unsigned result =
            RunDialog([&] { return kwSelectDirectryName(nullptr, "A title", directory); }, std::move(steps));
        GetCurrentDirectoryA(MAX_PATH, after);
        EXPECT_STREQ(after, before);
        return result;
    }
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

// Goes into a folder of the list by its name.
static DialogStep Enter(const std::string& name) {
    return [=](HWND dialog) {
        const HWND list = GetDlgItem(dialog, IDC_DIRECTORY_LIST);
        const auto text = reinterpret_cast<LPARAM>(name.c_str());
        if (SendMessageA(list, LB_SELECTSTRING, static_cast<WPARAM>(-1), text) == LB_ERR) return false;
        SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDC_DIRECTORY_LIST, LBN_DBLCLK), reinterpret_cast<LPARAM>(list));
        return true;
    };
}

TEST_F(ClassicDirectory, ReturnsTheDirectoryShown) {
    const std::string work = folder.MakeFolder("WORK");
    for (const std::string& start : {work, work + "\\"}) {
        EXPECT_EQ(Run(start, {Press(IDOK)}), 1u);
        EXPECT_EQ(Normal(directory), Normal((work + "\\").c_str())) << start;
    }
    folder.Write("WORK\\Dummy.TXT", "an existing one is as good");
    EXPECT_EQ(Run(folder.path, {Enter("[work]"), Press(IDOK)}), 1u);
    EXPECT_EQ(Normal(directory), Normal((work + "\\").c_str()));
    EXPECT_EQ(Run(folder.path.substr(0, 3), {Press(IDOK)}), 1u);
    EXPECT_EQ(Normal(directory), Normal(folder.path.substr(0, 3).c_str()));
}

TEST_F(ClassicDirectory, CancelLeavesTheBuffer) {
    EXPECT_EQ(Run(folder.path, {Press(IDCANCEL)}), 0u);
    EXPECT_EQ(directory, folder.path);
}

TEST_F(ClassicDirectory, AnyStartWillDo) {
    const std::string file = folder.Write("part.dxf", "");
    for (const std::string& start :
         {std::string(), file, folder.At("missing"), std::string("Q:\\none"), std::string(KW_MAX_PATH - 1, 'x')}) {
        SCOPED_TRACE(start);
        EXPECT_EQ(Run(start, {Press(IDOK)}), 1u);
        EXPECT_TRUE(IsDirectoryPath(directory)) << directory;
        EXPECT_EQ(directory[std::strlen(directory) - 1], '\\');
        EXPECT_EQ(Run(start, {Press(IDCANCEL)}), 0u);
        EXPECT_EQ(directory, start);
    }
}

TEST_F(ClassicDirectory, ShowsDirectoriesAndDrivesOnly) {
    Run(folder.path,
        {Check([](HWND dialog) {
             EXPECT_EQ(ControlText(dialog, IDC_FILE_NAME), "Dummy.TXT");
             RECT client, rect, overlap;
             GetClientRect(dialog, &client);
             MapWindowPoints(dialog, nullptr, reinterpret_cast<POINT*>(&client), 2);
             for (const int id : {IDC_FILE_LABEL, IDC_FILE_NAME, IDC_FILE_LIST, IDC_TYPE_LABEL, IDC_TYPE_COMBO,
                                  IDC_READ_ONLY, IDC_HELP_BUTTON}) {
                 GetWindowRect(GetDlgItem(dialog, id), &rect);
                 EXPECT_FALSE(IsWindowVisible(GetDlgItem(dialog, id)) && IntersectRect(&overlap, &rect, &client)) << id;
             }
             const HWND focus = GetFocus();
             GetWindowRect(focus, &rect);
             EXPECT_TRUE(IntersectRect(&overlap, &rect, &client)) << GetDlgCtrlID(focus);
         }),
         Press(IDCANCEL)});
}

TEST_F(ClassicDirectory, LeaksNothing) {
    for (int i = 0; i < 3; ++i) Run(folder.path, {Press(IDOK)});
    const HandleCounts before = CountHandles();
    for (int i = 0; i < 100; ++i) Run(folder.path, {Press(i % 2 ? IDOK : IDCANCEL)});
    const HandleCounts after = CountHandles();
    EXPECT_LE(after.gdi, before.gdi);
    EXPECT_LE(after.user, before.user);
    EXPECT_LE(after.kernel, before.kernel);
}
