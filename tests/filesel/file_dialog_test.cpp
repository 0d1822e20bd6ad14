#include "filesel/file_dialog.h"

#include <windows.h>

#include <commctrl.h>
#include <dlgs.h>
#include <gtest/gtest.h>

#include <tuple>

#include "frame/module.h"
#include "frame/services.h"
#include "preview/drawing/placeholder.h"
#include "preview/reader.h"
#include "resources/resource.h"
#include "support/dialog_driver.h"
#include "support/picture.h"
#include "support/samples.h"
#include "support/temp_folder.h"

// A request on a folder of its own, and the host's point of view before and after.
class FileDialog : public testing::Test {
protected:
    TempFolder folder;
    char file[MAX_PATH] = "";
    SelectRequest request = {"A title", "Drawings\0*.dxf\0Anything\0*.*\0", folder.path.c_str(), 2, file, MAX_PATH,
                             nullptr,   KW_SORT_NAME | KW_SORT_DATE,        KW_SHOW_TIME};
    RECT pane = {};  // the size of the pane's picture, once a drawing has been asked for

    unsigned Run(int modeBits, std::vector<DialogStep> steps, int keepLongName = 1) {
        return RunDialog([&] { return kwSelectFileName(nullptr, modeBits, keepLongName, &request); }, std::move(steps));
    }
    // What the pane has to show for a drawing. Made before the dialog opens: a reader on this thread would stop the
    // pane's.
    PaneContents DrawingOf(const std::string& path) {
        const auto measure = [&](HWND dialog) { GetClientRect(FindControl(dialog, IDC_PREVIEW_PICTURE), &pane); };
        Run(KW_FILE_OPEN | KW_FILE_PREVIEW, {Check(measure), Press(IDCANCEL)});
        std::string comment(32767, '\0');
        const std::string picture = TakePicture(ReadDxfPreview(2, path.c_str(), &pane, comment.data(), 32767));
        return {picture, comment.c_str()};
    }
    void TearDown() override { kwSelectFileGUI(0); }
};
class ExplorerDialog : public FileDialog {};
class ClassicDialog : public FileDialog {
    void SetUp() override { kwSelectFileGUI(1); }
};

static bool IsFileDialog(HWND dialog) { return FileNameField(dialog) != nullptr; }

// Presses a button of the question in front.
static DialogStep Answer(int buttonId, const std::string& question) {
    return [=](HWND dialog) {
        if (IsFileDialog(dialog)) return false;
        EXPECT_EQ(ControlText(dialog, 0xFFFF), question);
        return Press(buttonId)(dialog);
    };
}

static DialogStep NameIs(const std::string& name) {
    return [=](HWND dialog) {
        return IsFileDialog(dialog) && WindowText(FileNameField(dialog)).find(name) != std::string::npos;
    };
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

// Waits until the pane shows that and keeps it: a picture comes shortly before its comment.
static DialogStep PaneShows(const PaneContents& expected, int looks = 10) {
    return [=, seen = 0](HWND dialog) mutable {
        const PaneContents pane = ReadPane(dialog);
        seen = pane.comment == expected.comment && pane.picture == expected.picture ? seen + 1 : 0;
        return seen == looks;
    };
}

// A key as the keyboard sends it to the control that has the focus.
static DialogStep PressKeyIn(int controlId, WPARAM key) {
    return [=](HWND dialog) {
        const HWND control = FindControl(dialog, controlId);
        SetFocus(control);
        return PostMessageA(control, WM_KEYDOWN, key, 0) != FALSE;
    };
}

// Clicks twice, as a user does who sees nothing happen.
static bool OpenGallery(HWND dialog) {
    for (int i = 0; i < 2; ++i) PostMessageA(FindControl(dialog, IDC_PREVIEW_GALLERY), BM_CLICK, 0, 0);
    return true;
}

static const std::string kDrawing = DxfDrawing(90, 60, "0 CIRCLE|10 40|20 30|40 25|0 TEXT|10 5|20 5|40 9|1 Bore");

TEST_F(ExplorerDialog, PaneShowsTheSelectedFile) {
    const std::string part = folder.Write("part.dxf", kDrawing), locked = folder.Write("locked.dxf", kDrawing);
    folder.Write("random.dat", WithFlippedBytes(std::string(3000, '\1'), 1));
    folder.Write("notes.txt", "one\r\ntwo\r\n\n");
    const HANDLE owner = CreateFileA(locked.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    const PaneContents drawing = DrawingOf(part);
    EXPECT_TRUE(HasInk(drawing.picture));
    const std::string nothing =
        TakePicture(CreatePlaceholderBitmap(2, LoadResString(ThisModule(), IDS_NO_PREVIEW), pane));
    const auto deletePart = [=](HWND) { EXPECT_TRUE(DeleteFileA(part.c_str())) << "a shown file is closed"; };
    EXPECT_EQ(Run(KW_FILE_OPEN | KW_FILE_PREVIEW,
                  {SelectFile("part.dxf"), PaneShows(drawing), SelectFile("locked.dxf"), PaneShows({nothing, ""}),
                   SelectFile("notes.txt"), PaneShows({nothing, "one\r\ntwo\r\n"}), SelectFile("random.dat"),
                   PaneShows({nothing, ""}), SelectFile("part.dxf"), PaneShows(drawing), Check(deletePart),
                   SelectFile("notes.txt"), PressKeyIn(IDC_PREVIEW_COMMENT, VK_RETURN)}),
              1u);
    EXPECT_STREQ(file, folder.At("notes.txt").c_str());
    EXPECT_EQ(PreviewCancel(-1), 0);
    CloseHandle(owner);
}

TEST_F(ExplorerDialog, AChoiceInTheGalleryClosesIt) {
    for (const char* name : {"one.dxf", "two.dxf", "three.txt"}) folder.Write(name, kDrawing);
    const auto choose = [](HWND dialog) {
        const HWND list = FindControl(dialog, IDC_GALLERY_LIST);
        if (!list) return false;
        EXPECT_EQ(SendMessageA(list, LB_GETCOUNT, 0, 0), 2) << "what the selected filter lets through";
        SelectLine(dialog, IDC_GALLERY_LIST, 1);
        return true;
    };
    request.filterIndex = 1;
    EXPECT_EQ(Run(KW_FILE_OPEN | KW_FILE_PREVIEW, {SelectFile("one.dxf"), OpenGallery, choose, Press(IDCANCEL),
                                                   NameIs("one.dxf"), OpenGallery, choose, Press(IDOK)}),
              1u);
    EXPECT_STREQ(file, folder.At("two.dxf").c_str());
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
    const PaneContents last = DrawingOf(folder.At("3.dxf"));
    std::vector<DialogStep> steps;
    for (int i = 0; i < 8; ++i) steps.push_back(SelectFile(std::to_string(i % 4) + ".dxf"));
    const auto selectBehind = [](HWND gallery) {
        return !IsFileDialog(gallery) && SelectFile("3.dxf")(GetWindow(gallery, GW_OWNER));
    };
    const auto paneRests = [&, looks = 0](HWND gallery) mutable {
        EXPECT_TRUE(ReadPane(GetWindow(gallery, GW_OWNER)).picture != last.picture);
        return ++looks == 50;
    };
    steps.insert(steps.end(), {PaneShows(last, 150), SelectFile("1.dxf"), OpenGallery, selectBehind, paneRests,
                               Press(IDCANCEL), PaneShows(last), SelectFile("2.dxf"),
                               PressKeyIn(IDC_PREVIEW_COMMENT, VK_ESCAPE)});  // closed while it runs
    EXPECT_EQ(Run(KW_FILE_OPEN | KW_FILE_PREVIEW, steps), 0u);
}

TEST_F(ExplorerDialog, OpensATypedName) {
    const std::string path = folder.MakeFolder("a long folder name") + "\\part of many.dxf";
    WriteWholeFile(path, kDrawing);
    char shortPath[MAX_PATH] = "";
    ASSERT_TRUE(GetShortPathNameA(path.c_str(), shortPath, MAX_PATH));
    for (const int keepLongName : {0, 1}) {
        request.filterIndex = 1;
        const int mode = KW_FILE_OPEN | (keepLongName ? KW_FILE_PREVIEW : 0);
        EXPECT_EQ(Run(mode, {ChooseFilter(1), TypeFileName(path), Press(IDOK)}, keepLongName), 1u);
        EXPECT_STREQ(file, keepLongName ? path.c_str() : shortPath);
        EXPECT_EQ(request.filterIndex, 2u);
        file[0] = '\0';
    }
    EXPECT_EQ(Run(KW_FILE_OPEN, {ChooseFilter(0), Press(IDCANCEL)}), 0u);
    EXPECT_EQ(request.filterIndex, 1u) << "comes back after Cancel too";
    EXPECT_EQ(request.sortOptions, DWORD{KW_SORT_NAME | KW_SORT_DATE}) << "left alone";
}

TEST_F(ExplorerDialog, Save) {
    folder.Write("old.dxf", kDrawing);
    char question[600];
    wsprintfA(question, LoadResString(ThisModule(), IDS_OVERWRITE), folder.At("old.dxf").c_str());
    const DialogStep no = Answer(IDCANCEL, question), yes = Answer(IDOK, question);
    const struct {
        const char* what;
        int modeBits;
        const char* extension;
        std::vector<DialogStep> steps;
        const char* chosen;  // null: cancelled
    } cases[] = {
        // clang-format off
        {"the extension is added", KW_FILE_PREVIEW, "dxf", {TypeFileName("new"), Press(IDOK)}, "new.dxf"},
        {"unless there is one", 0, "dxf", {TypeFileName("new.x"), Press(IDOK)}, "new.x"},
        {"no, then yes", 0, "dxf", {TypeFileName("old"), Press(IDOK), no, NameIs("old.dxf"), Press(IDOK), yes}, "old.dxf"},
        {"no, then another name", 0, "dxf",
         {TypeFileName("old.dxf"), Press(IDOK), no, TypeFileName("other"), Press(IDOK)}, "other.dxf"},
        {"no, then cancelled", 0, nullptr, {TypeFileName("old.dxf"), Press(IDOK), no, Press(IDCANCEL)}, nullptr},
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

// Notes when redrawing is switched, as somebody sees who stands before the list's own procedure.
static LRESULT CALLBACK NoteRedraw(HWND list, UINT message, WPARAM on, LPARAM lParam, UINT_PTR, DWORD_PTR switches) {
    if (message == WM_SETREDRAW) *reinterpret_cast<std::string*>(switches) += on ? '1' : '0';
    return DefSubclassProc(list, message, on, lParam);
}

static std::string Listed(HWND dialog) {
    std::string lines;
    char line[600];
    for (LRESULT i = 0; i < InList(dialog, IDC_FILE_LIST, LB_GETCOUNT); ++i) {
        InList(dialog, IDC_FILE_LIST, LB_GETTEXT, static_cast<WPARAM>(i), line);
        lines += std::string(line) + "|";
    }
    return lines;
}

static void Toggle(HWND dialog, std::initializer_list<int> boxes) {
    for (const int box : boxes) SendMessageA(FindControl(dialog, box), BM_CLICK, 0, 0);
}

TEST_F(ClassicDialog, ListSortsShowsAndSelects) {
    folder.Write("big.b", std::string(2000, 'x'));
    folder.Write("small.a", "G90\r\nG01");
    folder.Write("with blank.a", "");
    // The second byte of the first two-byte character is a backslash, of the next one a blank's look-alike.
    const bool isJapanese = GetACP() == 932;
    const std::string japanese = isJapanese ? "\x95\x5c\x81\x40.a" : "x";
    folder.Write(japanese, "");
    std::string switches, checked;
    const auto look = [&](HWND dialog) {
        for (int id = IDC_SORT_NAME; id <= IDC_SHOW_COMMENT; ++id)
            checked += SendMessageA(FindControl(dialog, id), BM_GETCHECK, 0, 0) ? '1' : '0';
        EXPECT_EQ(checked, "10010010") << "the options come in";
        Toggle(dialog, {IDC_SORT_DATE, IDC_SHOW_TIME});
        SetWindowSubclass(FindControl(dialog, IDC_FILE_LIST), NoteRedraw, 0, reinterpret_cast<DWORD_PTR>(&switches));
        EXPECT_EQ(Listed(dialog), "big.b|small.a|with blank.a\t|" + japanese + "|");
        Toggle(dialog, {IDC_SHOW_SIZE});
        EXPECT_EQ(Listed(dialog), "big.b\t2,000|small.a\t8|with blank.a\t0|" + japanese + "\t0|");
        Toggle(dialog, {IDC_SHOW_COMMENT});
        EXPECT_EQ(Listed(dialog).substr(0, 45), "big.b\t2,000\t" + std::string(33, 'x'));
        Toggle(dialog, {IDC_SHOW_COMMENT, IDC_SORT_NAME, IDC_SORT_SIZE});
        EXPECT_EQ(Listed(dialog).rfind("big.b"), Listed(dialog).size() - 12);
        for (const int id : {IDC_DRIVE_TOTAL, IDC_DRIVE_FREE, IDC_DRIVE_USED})
            EXPECT_EQ(ControlText(dialog, id).back(), 'B') << id;
        EXPECT_EQ(switches.substr(0, 4), "1010") << "a list is asked for, then drawn when it is whole";
        EXPECT_GT(InList(dialog, IDC_FILE_LIST, LB_GETHORIZONTALEXTENT), 0);
    };
    const auto isEmpty = [](HWND dialog) {
        Toggle(dialog, {IDC_SHOW_DATE});
        EXPECT_EQ(Listed(dialog), "");
        EXPECT_EQ(InList(dialog, IDC_FILE_LIST, LB_GETHORIZONTALEXTENT), 0) << "nothing to scroll to";
    };
    const auto select = [](const std::string& name) {
        return Check([=](HWND dialog) {
            const LRESULT line = InList(dialog, IDC_FILE_LIST, LB_FINDSTRING, static_cast<WPARAM>(-1), name.c_str());
            SelectLine(dialog, IDC_FILE_LIST, static_cast<int>(line));
            EXPECT_EQ(ControlText(dialog, IDC_FILE_NAME), name);
            Toggle(dialog, {IDC_SHOW_DATE});
            EXPECT_EQ(InList(dialog, IDC_FILE_LIST, LB_GETCURSEL), line > 0 ? line : LB_ERR)
                << "kept, but for the first line";
        });
    };
    EXPECT_EQ(Run(KW_FILE_OPEN | KW_FILE_PREVIEW,  // the classic dialog has no pane
                  {Check(look), ChooseFilter(0), Check(isEmpty), ChooseFilter(1),
                   Check([](HWND dialog) { Toggle(dialog, {IDC_SHOW_DATE}); }), select("with blank.a"), select("big.b"),
                   select("small.a"), select(japanese), Press(IDOK)}),
              1u);
    EXPECT_EQ(file, folder.At(japanese));
    EXPECT_EQ(request.sortOptions, DWORD{KW_SORT_SIZE});
    EXPECT_EQ(request.displayOptions, DWORD{KW_SHOW_SIZE});
}

TEST_F(ClassicDialog, StartsInAnyDirectory) {
    WriteWholeFile(folder.MakeFolder("sub") + "\\inside.dxf", kDrawing);
    folder.Write("outside.dxf", kDrawing);
    const auto lists = [](const char* name) {
        return [=](HWND dialog) {
            return InList(dialog, IDC_FILE_LIST, LB_FINDSTRING, static_cast<WPARAM>(-1), name) >= 0;
        };
    };
    const std::string withoutDrive = folder.path.substr(2) + "\\sub";
    SetCurrentDirectoryA(folder.path.c_str());
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"sub", "inside.dxf", "sub\\inside.dxf"},
        {nullptr, "outside.dxf", "outside.dxf"},
        {withoutDrive.c_str(), "inside.dxf", "sub\\inside.dxf"},
    };
    for (const auto& [directory, listed, chosen] : cases) {
        request.initialDir = directory;
        EXPECT_EQ(Run(KW_FILE_OPEN, {lists(listed), TypeFileName(listed), Press(IDOK)}), 1u);
        EXPECT_EQ(file, folder.At(chosen));
        file[0] = '\0';
    }
    EXPECT_EQ(Run(0, {TypeFileName("new.dxf"), Press(IDOK)}), 1u) << "saved under a name that there is not";
    SetCurrentDirectoryA(CheckoutFolder().c_str());
}
