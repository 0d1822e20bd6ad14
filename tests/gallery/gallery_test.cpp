#include "gallery/gallery.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "frame/services.h"
#include "gallery/gallery_items.h"
#include "kit/handles.h"
#include "resources/resource.h"
#include "support/dialog_driver.h"
#include "support/samples.h"
#include "support/temp_folder.h"

static const std::string kDrawing = DxfDrawing(40, 30, "0 CIRCLE|10 20|20 15|40 14|0 LINE|10 0|20 0|11 40|21 30");

static std::string NamesOf(const GalleryItems& items) {
    std::string names;
    for (int i = 0; i < items.count; ++i) names += std::string(items[i].name) + "|";
    return names;
}

TEST(GalleryItems, FoldersAndLists) {
    const TempFolder folder;
    for (const char* name : {"B.dxf", "a.DXF", "c.txt", "d e.exf"}) folder.Write(name, kDrawing);
    folder.MakeFolder("folder.dxf");
    const std::string backslash = GetACP() == 932 ? "\x95\x5c.dxf" : "z.dxf";  // in a character's second byte
    folder.Write(backslash, kDrawing);
    const std::pair<const char*, std::string> cases[] = {
        // clang-format off
        {"*.dxf", "a.DXF|B.dxf|" + backslash + "|"}, {"*.none", ""}, {"", ""}, {"*.exf; *.txt", "c.txt|d e.exf|"},
        {";;*.txt; ;c*.*;", "c.txt|c.txt|"},  // a file counts for each pattern that it matches
        // clang-format on
    };
    for (const auto& [patterns, names] : cases) {
        GalleryItems items;
        EXPECT_TRUE(ListFolder(&items, folder.path.c_str(), patterns));
        EXPECT_EQ(NamesOf(items), names) << patterns;
    }
    GalleryItems listed;
    EXPECT_TRUE(ListNames(&listed, "z.dxf\0a.dxf\0Z.DXF\0"));
    EXPECT_EQ(NamesOf(listed), "z.dxf|a.dxf|Z.DXF|");
    EXPECT_EQ(SelectByName(listed, "Z.dxf"), 2);
    EXPECT_EQ(listed[0].flags & listed[2].flags, kItemSelected) << "case does not matter";
    EXPECT_EQ(listed[1].flags, 0u);
    EXPECT_EQ(SelectByName(listed, "none"), -1);
}

class GalleryDialog : public testing::Test {
protected:
    TempFolder folder;
    char result[256] = "";

    bool Run(std::vector<DialogStep> steps, const char* patterns = "*.*", DWORD size = sizeof(result)) {
        const auto show = [&] { return ShowGallery(nullptr, 0, folder.path.c_str(), patterns, result, size) == 1; };
        return RunDialog(show, std::move(steps)) != 0;
    }
};

// The worker has ended: it hides the progress bar last.
static bool IsComplete(HWND dialog) { return !IsWindowVisible(FindControl(dialog, IDC_GALLERY_PROGRESS)); }

static DialogStep Select(int index, int notification = LBN_SELCHANGE) {
    return Check([=](HWND dialog) { SelectLine(dialog, IDC_GALLERY_LIST, index, notification); });
}

// How dark an item's cell is on the screen.
static int DarkPixels(HWND dialog, int index) {
    RECT cell = {};
    InList(dialog, IDC_GALLERY_LIST, LB_GETITEMRECT, static_cast<WPARAM>(index), &cell);
    const WindowDc list(FindControl(dialog, IDC_GALLERY_LIST));
    int dark = 0;
    for (int y = cell.top; y < cell.bottom - 20; ++y)
        for (int x = cell.left; x < cell.right; ++x) dark += GetPixel(list.dc, x, y) == RGB(0, 0, 0);
    return dark;
}

TEST_F(GalleryDialog, ShowsPicturesAndReturnsTheChoice) {
    folder.Write("a.dxf", DxfDrawing(40, 30, ""));
    folder.Write("b.dxf", kDrawing);
    folder.Write("c.bmp", "BM");
    lstrcpyA(result, "B.DXF");
    const auto look = [&](HWND dialog) {
        EXPECT_EQ(InList(dialog, IDC_GALLERY_LIST, LB_GETCOUNT), 3);
        EXPECT_EQ(InList(dialog, IDC_GALLERY_LIST, LB_GETCURSEL), 1) << "the name that came in";
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(InList(dialog, IDC_GALLERY_LIST, LB_GETITEMDATA, static_cast<WPARAM>(i)), i);
        EXPECT_EQ(DarkPixels(dialog, 0), 0);
        EXPECT_GT(DarkPixels(dialog, 1), 50);
        EXPECT_GT(DarkPixels(dialog, 2), 10) << "the placeholder's text";
        EXPECT_EQ(WindowText(dialog).rfind(folder.path + " - ", 0), 0u) << WindowText(dialog);
        EXPECT_EQ(GetFocus(), FindControl(dialog, IDC_GALLERY_LIST));
        EXPECT_TRUE(SendMessageA(dialog, WM_GETICON, ICON_SMALL, 0));
    };
    EXPECT_EQ(Run({IsComplete, Check(look), Select(0), Press(IDOK)}), 1);
    EXPECT_STREQ(result, "a.dxf");
    EXPECT_EQ(Run({Select(2, LBN_DBLCLK)}), 1) << "a double click is OK";
    EXPECT_STREQ(result, "c.bmp");
    EXPECT_EQ(Run({Select(0), Press(IDCANCEL)}), 0);
    EXPECT_STREQ(result, "c.bmp") << "Cancel changes nothing";
    const auto typeB = [](HWND dialog) { InList(dialog, IDC_GALLERY_LIST, WM_CHAR, 'b'); };
    EXPECT_EQ(Run({Check(typeB), Press(IDOK)}, "*.*", 4), 1);
    EXPECT_STREQ(result, "b.d") << "by the keyboard; cut to the buffer";
    EXPECT_EQ(Run({}, "*.none"), 0) << "no file, no dialog";
}

TEST_F(GalleryDialog, ManyFilesStopWhileWorking) {
    for (int i = 0; i < 1500; ++i) folder.Write(std::to_string(i) + ".dxf", i % 3 ? kDrawing : "");
    lstrcpyA(result, "1499.dxf");
    const auto look = [&](HWND dialog) {
        EXPECT_EQ(InList(dialog, IDC_GALLERY_LIST, LB_GETCOUNT), 1500);
        EXPECT_FALSE(IsComplete(dialog)) << "else this test stops nothing";
        DeleteFileA(folder.At("1400.dxf").c_str());  // gone between listing and reading
    };
    const auto pressBoth = [](int first, int second) {
        return Check([=](HWND dialog) { Press(first)(dialog), Press(second)(dialog); });
    };
    EXPECT_EQ(Run({Check(look), pressBoth(IDOK, IDCANCEL)}), 1) << "the first word counts";
    EXPECT_STREQ(result, "1499.dxf");
    EXPECT_EQ(Run({Select(0), pressBoth(IDCANCEL, IDOK)}), 0);
    EXPECT_STREQ(result, "1499.dxf");
}

static void DisturbReaders(void* worker) {
    while (!static_cast<Worker*>(worker)->stopRequested) PreviewCancel(0);
}

TEST_F(GalleryDialog, NoThumbnailIsLostToAnotherReader) {
    for (int i = 0; i < 8; ++i) folder.Write(std::to_string(i) + ".dxf", kDrawing);
    folder.Write("8.dxf", "");  // shows what none shows
    Worker other;
    ASSERT_TRUE(StartWorker(&other, DisturbReaders, &other));
    const auto leaveAlone = [&, looks = 0](HWND) mutable {
        if (++looks < 40) return false;
        StopWorkerAndPump(&other, nullptr);
        return true;
    };
    const auto look = [](HWND dialog) {
        for (int i = 0; i < 8; ++i) EXPECT_NE(DarkPixels(dialog, i), DarkPixels(dialog, 8)) << i;
    };
    EXPECT_EQ(Run({leaveAlone, IsComplete, Check(look), Press(IDCANCEL)}), 0);
}

// Also of a dialog that is left maximised; whole cells fill the list at any size, the least one too.
TEST_F(GalleryDialog, RemembersItsSize) {
    folder.Write("a.dxf", kDrawing);
    SIZE first = {}, now = {};
    const auto resize = [](HWND dialog, int width, int height) {
        SetWindowPos(dialog, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
        RECT client = {}, cell = {};
        GetClientRect(FindControl(dialog, IDC_GALLERY_LIST), &client);
        InList(dialog, IDC_GALLERY_LIST, LB_GETITEMRECT, 0, &cell);
        const LONG columns = client.right / cell.right, rows = client.bottom / cell.bottom;
        EXPECT_TRUE(client.right % cell.right < columns && client.bottom % cell.bottom < rows) << width;
        EXPECT_TRUE(width != 1 || (columns == 3 && rows == 1));
    };
    const auto measure = [&](HWND dialog) { GetWindowPosSize(dialog, nullptr, &now); };
    const auto grow = [&](HWND dialog) {
        measure(dialog), first = now;
        for (const SIZE size : {SIZE{1, 1}, SIZE{now.cx + 250, now.cy + 190}, SIZE{now.cx + 60, now.cy + 40}})
            resize(dialog, size.cx, size.cy);
    };
    const auto maximize = [&](HWND dialog) { measure(dialog), ShowWindow(dialog, SW_MAXIMIZE); };
    EXPECT_EQ(Run({Check(grow), Press(IDCANCEL)}), 0);
    EXPECT_EQ(Run({Check(maximize), Press(IDCANCEL)}), 0);
    EXPECT_TRUE(now.cx == first.cx + 60 && now.cy == first.cy + 40) << now.cx;
    EXPECT_EQ(Run({Check([](HWND dialog) { EXPECT_TRUE(IsZoomed(dialog)); }), Press(IDCANCEL)}), 0);
}
