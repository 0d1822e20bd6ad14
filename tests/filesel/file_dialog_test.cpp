#include "filesel/file_dialog.h"

#include <windows.h>

#include <commdlg.h>
#include <dlgs.h>
#include <gtest/gtest.h>

#include "frame/module.h"
#include "frame/services.h"
#include "preview/dxf_reader.h"
#include "preview/file_type.h"
#include "resources/resource.h"
#include "support/dialog_driver.h"
#include "support/handle_counts.h"
#include "support/picture.h"
#include "support/samples.h"
#include "support/temp_folder.h"

static std::string CurrentDirectory() {
    char path[MAX_PATH] = "";
    GetCurrentDirectoryA(MAX_PATH, path);
    return path;
}

// A request on a folder of its own, and the host's point of view before and after.
class FileDialog : public testing::Test {
protected:
    TempFolder folder;
    char file[MAX_PATH] = "";
    SelectRequest request = {"A title", "Drawings\0*.dxf\0Anything\0*.*\0", folder.path.c_str(), 2, file, MAX_PATH,
                             nullptr,   KW_SORT_NAME | KW_SORT_DATE,        KW_SHOW_TIME};

    unsigned Run(int modeBits, std::vector<DialogStep> steps, int keepLongName = 1) {
        const std::string before = CurrentDirectory();
        const unsigned result =
            RunDialog([&] { return kwSelectFileName(nullptr, modeBits, keepLongName, &request); }, std::move(steps));
        EXPECT_EQ(CurrentDirectory(), before);
        return result;
    }
    void TearDown() override { kwSelectFileGUI(0); }
};
class ExplorerDialog : public FileDialog {
protected:
    // The size of the pane's picture.
    RECT PaneTarget() {
        RECT target = {};
        Run(KW_FILE_OPEN | KW_FILE_PREVIEW,
            {Check([&](HWND dialog) { GetClientRect(FindControl(dialog, IDC_PREVIEW_PICTURE), &target); }),
             Press(IDCANCEL)});
        return target;
    }
};
class ClassicDialog : public FileDialog {
    void SetUp() override { kwSelectFileGUI(1); }
};

static bool IsFileDialog(HWND dialog) { return FileNameField(dialog) != nullptr; }

// Presses a button of the message box in front.
static DialogStep Answer(int buttonId) {
    return [=](HWND dialog) { return !IsFileDialog(dialog) && Press(buttonId)(dialog); };
}

static DialogStep ChooseFilter(int index) {
    return [=](HWND dialog) {
        const HWND combo = FindControl(dialog, cmb1);
        if (!combo || SendMessageA(combo, CB_GETCOUNT, 0, 0) <= index) return false;
        SendMessageA(combo, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
        for (const int code : {CBN_SELENDOK, CBN_SELCHANGE})
            SendMessageA(GetParent(combo), WM_COMMAND, static_cast<WPARAM>(MAKELONG(cmb1, code)),
                         reinterpret_cast<LPARAM>(combo));
        return true;
    };
}

static std::string Placeholder(const RECT& target) {
    return TakePicture(CreatePlaceholderBitmap(2, LoadResString(ThisModule(), IDS_NO_PREVIEW), target));
}

// What the pane has to show for a drawing. Made before the dialog opens: a reader on this thread would stop the pane's.
static PaneContents DrawingOf(const std::string& path, const RECT& target) {
    std::string comment(32767, '\0');
    const std::string picture = TakePicture(ReadDxfPreview(2, path.c_str(), &target, comment.data(), 32767));
    return {picture, comment.c_str()};
}

// Waits until the pane shows that and keeps it: a picture comes shortly before its comment.
static DialogStep PaneShows(const PaneContents& expected, int looks = 10) {
    return [=, seen = 0](HWND dialog) mutable {
        const PaneContents pane = ReadPane(dialog);
        seen = pane.comment == expected.comment && pane.picture == expected.picture ? seen + 1 : 0;
        return seen == looks;
    };
}

static const std::string kDrawing = DxfDrawing(90, 60, "0 CIRCLE|10 40|20 30|40 25|0 TEXT|10 5|20 5|40 9|1 Bore");

TEST_F(ExplorerDialog, PaneShowsTheSelectedFile) {
    const std::string part = folder.Write("part.dxf", kDrawing), locked = folder.Write("locked.dxf", kDrawing);
    folder.Write("empty.dxf", "");
    folder.Write("random.dat", WithFlippedBytes(std::string(3000, '\1'), 1));
    folder.Write("notes.txt", "one\r\ntwo\r\n\n");
    folder.Write("picture.bmp",
                 BitmapFile(2, 2, 24, "", std::string("\0\0\0\xff\xff\xff\0\0\xff\xff\xff\0\0\0\0\0", 16)));
    const HANDLE owner = CreateFileA(locked.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    const RECT target = PaneTarget();
    const PaneContents drawing = DrawingOf(part, target);
    EXPECT_TRUE(HasInk(drawing.picture));
    const std::string nothing = Placeholder(target);
    const auto deletePart = [=](HWND) { EXPECT_TRUE(DeleteFileA(part.c_str())) << "a shown file is closed"; };
    EXPECT_EQ(Run(KW_FILE_OPEN | KW_FILE_PREVIEW,
                  {SelectFile("part.dxf"), PaneShows(drawing), SelectFile("locked.dxf"), PaneShows({nothing, ""}),
                   SelectFile("notes.txt"), PaneShows({nothing, "one\r\ntwo\r\n"}), SelectFile("random.dat"),
                   PaneShows({nothing, ""}), SelectFile("picture.bmp"), PaneShows({Picture(".#", "#."), ""}),
                   SelectFile("empty.dxf"), PaneShows({nothing, ""}), SelectFile("part.dxf"), PaneShows(drawing),
                   Check(deletePart), SelectFile("notes.txt"), Press(IDOK)}),
              1u);
    EXPECT_STREQ(file, folder.At("notes.txt").c_str());
    EXPECT_EQ(PreviewCancel(-1), 0);
    CloseHandle(owner);
}

TEST_F(ExplorerDialog, AChoiceInTheGalleryClosesIt) {
    folder.Write("one.dxf", kDrawing);
    folder.Write("two.dxf", kDrawing);
    folder.Write("three.txt", "not of this filter");
    const auto openGallery = [](HWND dialog) {
        PostMessageA(FindControl(dialog, IDC_PREVIEW_GALLERY), BM_CLICK, 0, 0);
        return true;
    };
    int listed = 0;
    const auto choose = [&](int line) {
        return [&, line](HWND dialog) {
            const HWND list = FindControl(dialog, IDC_GALLERY_LIST);
            if (!list) return false;
            listed = static_cast<int>(SendMessageA(list, LB_GETCOUNT, 0, 0));
            SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(line), 0);
            SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDC_GALLERY_LIST, LBN_SELCHANGE),
                         reinterpret_cast<LPARAM>(list));
            return true;
        };
    };
    request.filterIndex = 1;
    EXPECT_EQ(Run(KW_FILE_OPEN | KW_FILE_PREVIEW, {SelectFile("one.dxf"), openGallery, choose(1), Press(IDOK)}), 1u);
    EXPECT_STREQ(file, folder.At("two.dxf").c_str());
    EXPECT_EQ(listed, 2) << "what the selected filter lets through";
    file[0] = '\0';
    EXPECT_EQ(Run(KW_FILE_OPEN | KW_FILE_PREVIEW,
                  {SelectFile("one.dxf"), openGallery, choose(1), Press(IDCANCEL), SelectFile("one.dxf"), Press(IDOK)}),
              1u);
    EXPECT_STREQ(file, folder.At("one.dxf").c_str()) << "a cancelled gallery changes nothing";
}

TEST_F(ExplorerDialog, TheLastSelectionWins) {
    const std::string line = Dxf("0 LINE|10 0|20 9|11 90|21 50");
    std::string body;
    while (body.size() < 8000000) body += line;
    for (int i = 0; i < 4; ++i) {
        std::string text = DxfDrawing(90, 60, "0 LINE|10 0|20 0|11 90|21 " + std::to_string(i * 9));
        if (i < 3)
            text.insert(text.rfind("  0\r\nENDSEC"), body);  // the last one is done first, were it not for the wait
        folder.Write(std::to_string(i) + ".dxf", text);
    }
    const PaneContents last = DrawingOf(folder.At("3.dxf"), PaneTarget());
    std::vector<DialogStep> steps;
    for (int i = 0; i < 8; ++i) steps.push_back(SelectFile(std::to_string(i % 4) + ".dxf"));
    steps.insert(steps.end(), {PaneShows(last, 150), SelectFile("2.dxf"), Press(IDCANCEL)});  // closed while it runs
    EXPECT_EQ(Run(KW_FILE_OPEN | KW_FILE_PREVIEW, steps), 0u);
}

TEST_F(ExplorerDialog, OpensATypedName) {
    const std::string path = folder.MakeFolder("a long folder name") + "\\part of many.dxf";
    WriteWholeFile(path, kDrawing);
    char shortPath[MAX_PATH] = "";
    ASSERT_TRUE(GetShortPathNameA(path.c_str(), shortPath, MAX_PATH));
    for (const int pane : {0, KW_FILE_PREVIEW})
        for (const int keepLongName : {0, 1}) {
            request.filterIndex = 1;
            EXPECT_EQ(Run(KW_FILE_OPEN | pane, {ChooseFilter(1), TypeFileName(path), Press(IDOK)}, keepLongName), 1u);
            EXPECT_STREQ(file, keepLongName ? path.c_str() : shortPath);
            EXPECT_EQ(request.filterIndex, 2u);
            file[0] = '\0';
        }
    EXPECT_EQ(request.sortOptions, DWORD{KW_SORT_NAME | KW_SORT_DATE}) << "left alone";
}

TEST_F(ExplorerDialog, FilterIndexComesBackAfterCancel) {
    EXPECT_EQ(Run(KW_FILE_OPEN, {ChooseFilter(0), Press(IDCANCEL)}), 0u);
    EXPECT_EQ(request.filterIndex, 1u);
}

TEST_F(ExplorerDialog, Save) {
    folder.Write("old.dxf", kDrawing);
    const DialogStep question = [&](HWND dialog) {
        if (IsFileDialog(dialog)) return false;
        char text[600];
        wsprintfA(text, LoadResString(ThisModule(), IDS_OVERWRITE), folder.At("old.dxf").c_str());
        EXPECT_EQ(ControlText(dialog, 0xFFFF), text);
        return true;
    };
    const auto nameIsStill = [](const char* name) {
        return [=](HWND dialog) {
            return IsFileDialog(dialog) && WindowText(FileNameField(dialog)).find(name) != std::string::npos;
        };
    };
    const struct {
        const char* what;
        int modeBits;
        const char* extension;
        std::vector<DialogStep> steps;
        const char* chosen;  // null: cancelled
    } cases[] = {
        // clang-format off
        {"a new name", 0, nullptr, {TypeFileName("new"), Press(IDOK)}, "new"},
        {"the extension is added", 0, "dxf", {TypeFileName("new"), Press(IDOK)}, "new.dxf"},
        {"unless there is one", 0, "dxf", {TypeFileName("new.x"), Press(IDOK)}, "new.x"},
        {"with the pane", KW_FILE_PREVIEW, "dxf", {TypeFileName("new"), Press(IDOK)}, "new.dxf"},
        {"cancelled", 0, "dxf", {Press(IDCANCEL)}, nullptr},
        {"the question: no, then yes", 0, "dxf",
         {TypeFileName("old"), Press(IDOK), question, Answer(IDCANCEL), nameIsStill("old.dxf"), Press(IDOK),
          Answer(IDOK)}, "old.dxf"},
        {"no, then another name", 0, "dxf",
         {TypeFileName("old.dxf"), Press(IDOK), Answer(IDCANCEL), TypeFileName("other"), Press(IDOK)}, "other.dxf"},
        {"no, then cancelled", 0, nullptr,
         {TypeFileName("old.dxf"), Press(IDOK), Answer(IDCANCEL), nameIsStill("old.dxf"), Press(IDCANCEL)}, nullptr},
        {"without the question", KW_FILE_OVERWRITE, "dxf", {TypeFileName("old"), Press(IDOK)}, "old.dxf"},
        // clang-format on
    };
    for (const auto& c : cases) {
        file[0] = '\0';
        request.defaultExt = c.extension;
        EXPECT_EQ(Run(c.modeBits, c.steps), c.chosen ? 1u : 0u) << c.what;
        EXPECT_TRUE(!c.chosen || file == folder.At(c.chosen)) << c.what << ": " << file;
    }
}

TEST_F(ClassicDialog, OptionsGoInAndOut) {
    const auto click = [](std::initializer_list<int> ids) {
        return Check([ids = std::vector<int>(ids)](HWND dialog) {
            for (const int id : ids) SendMessageA(FindControl(dialog, id), BM_CLICK, 0, 0);
        });
    };
    std::string checked;
    const auto read = Check([&](HWND dialog) {
        EXPECT_FALSE(FindControl(dialog, IDC_PREVIEW_COMMENT)) << "the classic dialog has no pane";
        for (int id = IDC_SORT_NAME; id <= IDC_SHOW_COMMENT; ++id)
            checked += SendMessageA(FindControl(dialog, id), BM_GETCHECK, 0, 0) ? '1' : '0';
    });
    EXPECT_EQ(Run(KW_FILE_OPEN | KW_FILE_PREVIEW,
                  {read, click({IDC_SORT_NAME, IDC_SORT_SIZE, IDC_SHOW_TIME, IDC_SHOW_SIZE, IDC_SHOW_COMMENT}),
                   ChooseFilter(0), Press(IDCANCEL)}),
              0u);
    EXPECT_EQ(checked, "10010010");
    EXPECT_EQ(request.sortOptions, DWORD{KW_SORT_SIZE | KW_SORT_DATE});
    EXPECT_EQ(request.displayOptions, DWORD{KW_SHOW_SIZE | KW_SHOW_COMMENT});
    EXPECT_EQ(request.filterIndex, 1u);
}

TEST_F(ClassicDialog, ListAndStartingDirectory) {
    WriteWholeFile(folder.MakeFolder("sub") + "\\inside.dxf", kDrawing);
    folder.Write("outside.dxf", kDrawing);
    const auto lists = [](const char* name) {
        return [=](HWND dialog) {
            return SendMessageA(FindControl(dialog, IDC_FILE_LIST), LB_FINDSTRING, static_cast<WPARAM>(-1),
                                reinterpret_cast<LPARAM>(name)) >= 0;
        };
    };
    const auto selectLine = [](const char* line, const char* name) {
        return Check([=](HWND dialog) {
            const HWND list = FindControl(dialog, IDC_FILE_LIST);
            const LRESULT index = SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line));
            SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(index), 0);
            SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDC_FILE_LIST, LBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
            EXPECT_EQ(ControlText(dialog, IDC_FILE_NAME), name);
        });
    };
    const std::string before = CurrentDirectory(), withoutDrive = folder.path.substr(2) + "\\sub";
    SetCurrentDirectoryA(folder.path.c_str());
    const struct {
        const char* directory;
        const char* listed;
    } cases[] = {{"sub", "inside.dxf"}, {nullptr, "outside.dxf"}, {withoutDrive.c_str(), "inside.dxf"}};
    for (const auto& c : cases) {
        request.initialDir = c.directory;
        EXPECT_EQ(Run(KW_FILE_OPEN, {lists(c.listed), selectLine("a b.dxf\t12\t13", "a b.dxf"), selectLine("a b", "a"),
                                     TypeFileName(c.listed), Press(IDOK)}),
                  1u);
        EXPECT_EQ(file, std::string(folder.path + (c.listed[0] == 'i' ? "\\sub\\" : "\\") + c.listed));
        file[0] = '\0';
    }
    EXPECT_EQ(Run(0, {TypeFileName("new.dxf"), Press(IDOK)}), 1u) << "saved under a name that there is not";
    SetCurrentDirectoryA(before.c_str());
}

TEST_F(ExplorerDialog, ManyLeaveNothingBehind) {
    const std::string path = folder.Write("part.dxf", kDrawing);
    folder.Write("b.dxf", "");
    const DialogStep shown = PaneShows(DrawingOf(path, PaneTarget()), 1);
    const auto run = [&](int count) {
        for (int i = 0; i < count; ++i) {
            kwSelectFileGUI(i % 4 != 0);
            if (i % 4 != 0) Run(KW_FILE_OPEN, {Press(IDCANCEL)});
            else if (i % 8 == 0) Run(KW_FILE_OPEN | KW_FILE_PREVIEW, {SelectFile("part.dxf"), Press(IDCANCEL)});
            else
                Run(KW_FILE_OPEN | KW_FILE_PREVIEW,
                    {SelectFile("part.dxf"), shown, SelectFile("b.dxf"), Press(IDCANCEL)});
        }
    };
    run(16);  // what the system keeps from its first dialogs
    const HandleCounts before = CountHandles();
    run(200);
    const HandleCounts after = CountHandles();
    EXPECT_NEAR(after.gdi, before.gdi, 10);
    EXPECT_NEAR(after.user, before.user, 10);
    EXPECT_NEAR(after.kernel, before.kernel, 10);
}
