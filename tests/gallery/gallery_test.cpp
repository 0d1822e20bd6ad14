#include "gallery/gallery.h"

#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

#include "gallery/gallery_items.h"
#include "resources/resource.h"
#include "support/dialog_driver.h"
#include "support/handle_counts.h"
#include "support/picture.h"
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
    for (const char* name : {"b.dxf", "A.DXF", "c.txt", "d e.exf"}) folder.Write(name, kDrawing);
    folder.MakeFolder("folder.dxf");
    const bool isJapanese = GetACP() == 932;
    const std::string backslash = isJapanese ? "\x95\x5c.dxf" : "z.dxf";  // in a character's second byte
    folder.Write(backslash, kDrawing);
    const struct {
        const char* patterns;
        std::string names;
    } cases[] = {
        {"*.dxf", "A.DXF|b.dxf|" + backslash + "|"},
        {";;*.txt; ;c*.*;", "c.txt|c.txt|"},  // a file counts for each pattern that it matches
        {"*.exf; *.txt", "c.txt|d e.exf|"},
        {"*.none", ""},
        {"", ""},
    };
    for (const auto& c : cases) {
        GalleryItems items;
        EXPECT_TRUE(ListFolder(&items, folder.path.c_str(), c.patterns));
        EXPECT_EQ(NamesOf(items), c.names) << c.patterns;
    }
    GalleryItems listed;
    EXPECT_TRUE(ListNames(&listed, "z.dxf\0a.dxf\0Z.DXF\0"));
    EXPECT_EQ(NamesOf(listed), "z.dxf|a.dxf|Z.DXF|");
    EXPECT_EQ(SelectByName(&listed, "Z.dxf"), 2);
    EXPECT_EQ(listed[0].flags & listed[2].flags, kItemSelected) << "case does not matter";
    EXPECT_EQ(listed[1].flags, 0);
    EXPECT_EQ(SelectByName(&listed, "none"), -1);
}

class GalleryDialog : public testing::Test {
protected:
    TempFolder folder;
    char result[256] = "";

    int Run(std::vector<DialogStep> steps, const char* patterns = "*.*", DWORD size = sizeof(result)) {
        return static_cast<int>(RunDialog(
            [&] { return static_cast<unsigned>(ShowGallery(nullptr, 0, folder.path.c_str(), patterns, result, size)); },
            std::move(steps)));
    }
};

// The worker has ended: it hides the progress bar last.
static bool IsComplete(HWND dialog) { return !IsWindowVisible(FindControl(dialog, IDC_GALLERY_PROGRESS)); }

static LRESULT InList(HWND dialog, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
    return SendMessageA(FindControl(dialog, IDC_GALLERY_LIST), message, wParam, lParam);
}

// Selects as a user does: the list box tells its dialog.
static DialogStep Select(int index, int notification = LBN_SELCHANGE) {
    return [=](HWND dialog) {
        InList(dialog, LB_SETCURSEL, static_cast<WPARAM>(index));
        SendMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(MAKELONG(IDC_GALLERY_LIST, notification)),
                     reinterpret_cast<LPARAM>(FindControl(dialog, IDC_GALLERY_LIST)));
        return true;
    };
}

// How dark an item's cell is on the screen, drawn afresh into a bitmap.
static int DarkPixels(HWND dialog, int index) {
    RECT cell = {};
    InList(dialog, LB_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&cell));
    const HDC dc = GetDC(FindControl(dialog, IDC_GALLERY_LIST));
    int dark = 0;
    for (int y = cell.top; y < cell.bottom - 20; ++y)
        for (int x = cell.left; x < cell.right; ++x) dark += GetPixel(dc, x, y) == RGB(0, 0, 0);
    ReleaseDC(FindControl(dialog, IDC_GALLERY_LIST), dc);
    return dark;
}

TEST_F(GalleryDialog, ShowsPicturesAndReturnsTheChoice) {
    folder.Write("a.dxf", DxfDrawing(40, 30, ""));
    folder.Write("b.dxf", kDrawing);
    folder.Write("c.bmp", "BM");
    lstrcpyA(result, "B.DXF");
    int blank = -1, drawn = -1, none = -1;
    std::string caption;
    const auto look = [&](HWND dialog) {
        EXPECT_EQ(InList(dialog, LB_GETCOUNT), 3);
        EXPECT_EQ(InList(dialog, LB_GETCURSEL), 1) << "the name that came in";
        for (int i = 0; i < 3; ++i) EXPECT_EQ(InList(dialog, LB_GETITEMDATA, static_cast<WPARAM>(i)), i);
        blank = DarkPixels(dialog, 0), drawn = DarkPixels(dialog, 1), none = DarkPixels(dialog, 2);
        caption = WindowText(dialog);
    };
    EXPECT_EQ(Run({IsComplete, Check(look), Select(0), Press(IDOK)}), 1);
    EXPECT_STREQ(result, "a.dxf");
    EXPECT_EQ(blank, 0);
    EXPECT_GT(drawn, 50);
    EXPECT_GT(none, 10) << "the placeholder's text";
    EXPECT_EQ(caption.compare(0, folder.path.size() + 3, folder.path + " - "), 0) << caption;
    EXPECT_GT(caption.size(), folder.path.size() + 3);

    EXPECT_EQ(Run({Select(2, LBN_DBLCLK)}), 1) << "a double click is OK";
    EXPECT_STREQ(result, "c.bmp");
    EXPECT_EQ(Run({Select(0), Press(IDCANCEL)}), 0);
    EXPECT_STREQ(result, "c.bmp") << "Cancel changes nothing";
    EXPECT_EQ(Run({Select(0), Press(IDOK)}, "*.*", 4), 1);
    EXPECT_STREQ(result, "a.d") << "cut to the buffer";
    EXPECT_EQ(Run({}, "*.none"), 0) << "no file, no dialog";
}

TEST_F(GalleryDialog, ManyFilesStopWhileWorking) {
    for (int i = 0; i < 1500; ++i) folder.Write(std::to_string(i) + ".dxf", i % 3 ? kDrawing : "");
    lstrcpyA(result, "1499.dxf");
    int count = 0;
    const auto look = [&](HWND dialog) {
        count = static_cast<int>(InList(dialog, LB_GETCOUNT));
        EXPECT_FALSE(IsComplete(dialog)) << "else this test stops nothing";
        DeleteFileA(folder.At("1400.dxf").c_str());  // gone between listing and reading
    };
    EXPECT_EQ(Run({Check(look), Press(IDOK)}), 1);
    EXPECT_EQ(count, 1500);
    EXPECT_STREQ(result, "1499.dxf");
}

TEST_F(GalleryDialog, RemembersItsSize) {
    folder.Write("a.dxf", kDrawing);
    RECT before = {}, listBefore = {}, after = {}, listAfter = {}, again = {};
    bool wasMaximized = false;
    const auto rects = [](HWND dialog, RECT* window, RECT* list) {
        GetWindowRect(dialog, window);
        GetWindowRect(FindControl(dialog, IDC_GALLERY_LIST), list);
    };
    const auto grow = [&](HWND dialog) {
        rects(dialog, &before, &listBefore);
        SetWindowPos(dialog, nullptr, 0, 0, before.right - before.left + 60, before.bottom - before.top + 40,
                     SWP_NOMOVE | SWP_NOZORDER);
        rects(dialog, &after, &listAfter);
    };
    EXPECT_EQ(Run({Check(grow), Press(IDCANCEL)}), 0);
    EXPECT_EQ(listAfter.right - listBefore.right, 60);
    EXPECT_EQ(listAfter.bottom - listBefore.bottom, 40);
    EXPECT_EQ(listAfter.top, listBefore.top);
    const auto maximize = [&](HWND dialog) {
        GetWindowRect(dialog, &again);
        ShowWindow(dialog, SW_MAXIMIZE);
    };
    EXPECT_EQ(Run({Check(maximize), Press(IDCANCEL)}), 0);
    EXPECT_EQ(again.right - again.left, after.right - after.left);
    EXPECT_EQ(again.bottom - again.top, after.bottom - after.top);
    const auto restore = [&](HWND dialog) {
        wasMaximized = IsZoomed(dialog);
        ShowWindow(dialog, SW_RESTORE);
    };
    EXPECT_EQ(Run({Check(restore), Press(IDCANCEL)}), 0);
    EXPECT_TRUE(wasMaximized);
}

TEST_F(GalleryDialog, KeyboardReachesNames) {
    for (const char* name : {"alpha.dxf", "beta.dxf", "gamma.dxf"}) folder.Write(name, kDrawing);
    const auto type = [](HWND dialog) {
        EXPECT_EQ(GetFocus(), FindControl(dialog, IDC_GALLERY_LIST));
        InList(dialog, WM_CHAR, 'g');
    };
    EXPECT_EQ(Run({Check(type), Press(IDOK)}), 1);
    EXPECT_STREQ(result, "gamma.dxf");
}

TEST_F(GalleryDialog, LeaksNothing) {
    for (int i = 0; i < 5; ++i) folder.Write(std::to_string(i) + ".dxf", kDrawing);
    HandleCounts before = {};
    for (int i = 0; i <= 100; ++i) {
        const bool isOk = i % 2;
        EXPECT_EQ(isOk ? Run({Press(IDOK)}) : Run({IsComplete, Press(IDCANCEL)}), isOk);
        if (i == 0) before = CountHandles();
    }
    const HandleCounts after = CountHandles();
    EXPECT_EQ(after.gdi, before.gdi);
    EXPECT_EQ(after.user, before.user);
    EXPECT_LE(after.kernel, before.kernel + 2) << "a thread that is just leaving may still be there";
}
