// Dialogs of every kind, opened and closed many times: what each leaves behind in the process.
#include <windows.h>

#include <gtest/gtest.h>
#include <shlobj.h>

#include "dirsel/shell_item.h"
#include "dlgctrl/host_dialog.h"
#include "gallery/gallery.h"
#include "resources/resource.h"
#include "support/dialog_driver.h"
#include "support/handle_counts.h"
#include "support/samples.h"
#include "support/temp_folder.h"

// The classic dialog, and each tenth time the other one, closed while its pane is at work.
static void ChooseFile(const TempFolder& folder, int i) {
    char file[KW_MAX_PATH] = "";
    SelectRequest request = {nullptr, "All\0*.*\0", folder.path.c_str(), 1, file, sizeof(file), nullptr, 1, 1};
    const auto commentShows = [](HWND dialog) {
        return ControlText(dialog, IDC_PREVIEW_COMMENT).find("Bore") != std::string::npos;
    };
    std::vector<DialogStep> steps = {Press(IDCANCEL)};
    if (i % 10 == 0) steps = {SelectFile("part.dxf"), commentShows, SelectFile("b.dxf"), Press(IDCANCEL)};
    kwSelectFileGUI(i % 10 != 0);
    RunDialog([&] { return kwSelectFileName(nullptr, KW_FILE_OPEN | KW_FILE_PREVIEW, 1, &request); }, steps);
    kwSelectFileGUI(0);
}

// Complete and cancelled, or accepted while its worker is at work.
static void ShowFolder(const TempFolder& folder, int i) {
    char name[KW_MAX_PATH] = "";
    const DialogStep complete = [=](HWND dialog) {
        return i % 2 || !IsWindowVisible(FindControl(dialog, IDC_GALLERY_PROGRESS));
    };
    const auto show = [&] { return ShowGallery(nullptr, 0, folder.path.c_str(), "*.dxf", name, sizeof(name)) != 0; };
    RunDialog(show, {complete, Press(i % 2 ? IDOK : IDCANCEL)});
}

static void ChooseFolder(const TempFolder&, int i) {
    char directory[KW_MAX_PATH] = "C:\\windows\\";
    const auto refresh = [=](HWND dialog) {
        if (i % 5 == 0) SendMessageA(FindControl(dialog, IDC_FOLDER_TREE), WM_KEYDOWN, VK_F5, 0);
    };
    RunDialog([&] { return kwSelectDirectryName(nullptr, nullptr, directory); },
              {Check(refresh), Press(i % 2 ? IDOK : IDCANCEL)});
}

// With a page; each fourth time with one more, which fails.
static void RunTable(const TempFolder&, int i) {
    double number = 1;
    std::int32_t pageNumber = 2;
    DialogItem good = {IDC_FIELD, KW_KIND_EDIT | KW_VALUE_INT32 | KW_FLAG_SPIN, &pageNumber, 0, 0, nullptr};
    DialogItem bad = {IDC_FIELD, KW_KIND_EDIT | KW_VALUE_INT32, nullptr, 0, 0, nullptr};
    PageDescriptor pages[] = {{nullptr, MAKEINTRESOURCEA(IDD_PAGE_TWO), nullptr, 1, &good},
                              {nullptr, MAKEINTRESOURCEA(IDD_PAGE_TWO), nullptr, 1, &bad}};
    const double pageCount = i % 4 == 3 ? 2 : 1;
    HostDialog host;
    host.items = {{IDC_FIELD, KW_KIND_EDIT | KW_VALUE_DOUBLE | KW_FLAG_SPIN, &number, 0, 5, nullptr},
                  {IDC_TABS, KW_KIND_PAGES | KW_VALUE_PAGES, pages, 0, pageCount, nullptr}};
    host.endWith = i % 2 ? IDOK : IDCANCEL;
    host.shown = i % 25 == 0;
    EXPECT_EQ(host.Run(IDD_SMALL), i % 4 == 1);
}

// References to the shell's desktop folder, which is one object for the whole process.
static int DesktopReferences() {
    IShellFolder* desktop = nullptr;
    return SUCCEEDED(SHGetDesktopFolder(&desktop)) ? static_cast<int>(desktop->Release()) : -1;
}

TEST(Dialogs, LeaveNothingBehind) {
    const TempFolder folder;
    for (const char* name : {"part.dxf", "c.dxf", "d.dxf"})
        folder.Write(name, DxfDrawing(90, 60, "0 CIRCLE|10 40|20 30|40 25|0 TEXT|10 5|20 5|40 9|1 Bore"));
    folder.Write("b.dxf", "");
    const ComApartment com;
    const struct {
        const char* what;
        void (*visit)(const TempFolder& folder, int i);
        int first, count;             // what the system makes once; what is measured
        int mostHandles, mostBlocks;  // of each kind; on the heaps, where one may hold some thirty small ones
    } cases[] = {
        {"dialog from a table", RunTable, 20, 200, 5, 5},
        {"file dialogs", ChooseFile, 11, 50, 5, 15},
        {"gallery", ShowFolder, 2, 50, 2, 5},  // a thread that is just leaving may still be there
        {"folder tree", ChooseFolder, 5, 50, 0, 5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        for (int i = 0; i < c.first; ++i) c.visit(folder, i);
        const HandleCounts before = CountHandles();
        const int references = DesktopReferences(), blocks = CountHeapBlocks();
        for (int i = 0; i < c.count; ++i) c.visit(folder, i);
        EXPECT_EQ(DesktopReferences(), references);
        EXPECT_LT(CountHeapBlocks() - blocks, c.mostBlocks);
        ExpectNothingLeft(before, c.mostHandles);
    }
}
