#include "dirsel/classic_directory.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

#include "frame/services.h"
#include "kwdialogs.h"
#include "resources/resource.h"
#include "support/dialog_driver.h"
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

TEST_F(ClassicDirectory, ReturnsTheDirectoryShown) {
    const std::string work = folder.MakeFolder("WORK"), drive = folder.path.substr(0, 3);
    folder.Write("WORK\\Dummy.TXT", "an existing one is as good");
    const DialogStep enter = [=](HWND dialog) {  // goes into a folder of the list
        const HWND list = GetDlgItem(dialog, IDC_DIRECTORY_LIST);
        if (SendMessageA(list, LB_SELECTSTRING, 0, reinterpret_cast<LPARAM>("[work]")) == LB_ERR) return false;
        SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDC_DIRECTORY_LIST, LBN_DBLCLK), reinterpret_cast<LPARAM>(list));
        return true;
    };
    const DialogStep wait = Check([](HWND) {});
    const std::tuple<std::string, DialogStep, std::string> cases[] = {
        {work + "\\", wait, work + "\\"}, {folder.path, enter, work + "\\"}, {drive, wait, drive}};
    for (const auto& [start, step, end] : cases) {
        EXPECT_EQ(Run(start, {step, Press(IDOK)}), 1u);
        EXPECT_EQ(Normal(directory), Normal(end.c_str())) << start;
    }
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
