// The dialog templates as a user meets them: at the screen's resolution, in the system's language.
#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "frame/module.h"
#include "frame/services.h"
#include "kit/handles.h"
#include "kwdialogs.h"
#include "resources/resource.h"
#include "support/dialog_driver.h"

static const int kTemplates[] = {IDD_FILE_SELECTION, IDD_PREVIEW_PANE, IDD_GALLERY, IDD_DIRECTORY_SELECTION,
                                 IDD_FOLDER_TREE};

static INT_PTR CALLBACK NoMessages(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

// A template's dialog, unseen; a template of a child window gets a parent.
struct TemplateDialog {
    const HWND parent = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 800, 600, nullptr, nullptr, nullptr, nullptr);
    const HWND window;
    explicit TemplateDialog(int id)
        : window(CreateDialogParamA(ThisModule(), MAKEINTRESOURCEA(id), parent, NoMessages, 0)) {}
    ~TemplateDialog() { DestroyWindow(parent); }
    TemplateDialog(const TemplateDialog&) = delete;
};

static std::string ClassOf(HWND control) {
    char name[32] = "";
    GetClassNameA(control, name, sizeof(name));
    return name;
}

// The control's text as one line, without the marks of mnemonics.
static SIZE TextSize(HWND control) {
    const WindowDc dc(control);
    const Selection font(dc.dc, reinterpret_cast<HGDIOBJ>(SendMessageA(control, WM_GETFONT, 0, 0)));
    RECT text = {};
    DrawTextA(dc.dc, WindowText(control).c_str(), -1, &text, DT_SINGLELINE | DT_CALCRECT);
    return {text.right, text.bottom};
}

// What a button draws besides its text.
static int BesidesText(HWND control) {
    if (ClassOf(control) != "Button") return 0;
    const LONG kind = GetWindowLongA(control, GWL_STYLE) & BS_TYPEMASK;
    if (kind == BS_AUTOCHECKBOX || kind == BS_CHECKBOX) return GetSystemMetrics(SM_CXMENUCHECK) + 2;
    return kind == BS_GROUPBOX ? 16 : 8;
}

// In no dialog two controls go by one letter, and every text has its room.
TEST(Templates, TextsFitAndMnemonicsAreUnique) {
    for (const int id : kTemplates) {
        const TemplateDialog dialog(id);
        ASSERT_NE(dialog.window, nullptr) << id;
        std::string keys;
        for (HWND control = GetWindow(dialog.window, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
            const std::string kind = ClassOf(control), text = WindowText(control);
            if ((kind != "Button" && kind != "Static") || text.empty()) continue;
            RECT room;
            GetClientRect(control, &room);
            const SIZE size = TextSize(control);
            EXPECT_LE(size.cx + BesidesText(control), room.right) << id << " " << text;
            EXPECT_LE(size.cy, room.bottom) << id << " " << text;
            const char key = static_cast<char>(std::toupper(static_cast<unsigned char>(text[text.find('&') + 1])));
            if (text.find('&') == std::string::npos || key == '&') continue;
            EXPECT_EQ(keys.find(key), std::string::npos) << id << " " << text;
            keys += key;
        }
    }
}

static int BitmapWidth(HANDLE bitmap) {
    BITMAP shape = {};
    return GetObjectA(bitmap, sizeof(shape), &shape) ? shape.bmWidth : 0;
}

static BOOL CALLBACK TakeTooltip(HWND window, LPARAM out) {
    if (ClassOf(window) != TOOLTIPS_CLASSA) return TRUE;
    *reinterpret_cast<HWND*>(out) = window;
    return FALSE;
}

// What is not in the templates: the rows that the system draws, and the gallery's button.
TEST(Dialogs, FollowTheResolution) {
    const auto rows = [](HWND dialog) {
        const HWND list = FindControl(dialog, IDC_DIRECTORY_LIST), combo = FindControl(dialog, IDC_DRIVE_COMBO);
        const int height = TextSize(FindControl(dialog, IDC_DIRECTORY_PATH)).cy;
        EXPECT_GE(SendMessageA(list, LB_GETITEMHEIGHT, 0, 0), height);
        for (const int row : {-1, 0})
            EXPECT_GE(SendMessageA(combo, CB_GETITEMHEIGHT, static_cast<WPARAM>(row), 0), height) << row;
    };
    const auto button = [](HWND dialog) {
        const UniqueBitmap drawn(LoadBitmapA(ThisModule(), MAKEINTRESOURCEA(IDB_PREVIEW_BUTTON)));
        const LRESULT shown = SendMessageA(FindControl(dialog, IDC_PREVIEW_GALLERY), BM_GETIMAGE, IMAGE_BITMAP, 0);
        const int resolution = GetDeviceCaps(WindowDc(nullptr).dc, LOGPIXELSX);
        EXPECT_EQ(BitmapWidth(reinterpret_cast<HANDLE>(shown)), MulDiv(BitmapWidth(drawn.get()), resolution, 96));
        HWND tip = nullptr;
        EnumThreadWindows(GetCurrentThreadId(), TakeTooltip, reinterpret_cast<LPARAM>(&tip));
        char text[80] = "";
        const HWND gallery = FindControl(dialog, IDC_PREVIEW_GALLERY);
        TOOLINFOA tool = {};
        tool.cbSize = TTTOOLINFOA_V2_SIZE;
        tool.hwnd = GetParent(gallery);
        tool.uId = reinterpret_cast<UINT_PTR>(gallery);
        tool.lpszText = text;
        SendMessageA(tip, TTM_GETTEXTA, 0, reinterpret_cast<LPARAM>(&tool));
        EXPECT_STREQ(text, LoadResString(ThisModule(), IDS_GALLERY_TIP));
    };
    char path[KW_MAX_PATH] = "C:\\", file[KW_MAX_PATH] = "";
    SelectRequest request = {"", "All\0*.*\0", path, 1, file, sizeof(file), nullptr, 0, 0};
    const auto chooseFile = [&] { return kwSelectFileName(nullptr, KW_FILE_OPEN | KW_FILE_PREVIEW, 1, &request); };
    EXPECT_EQ(RunDialog(chooseFile, {Check(button), Press(IDCANCEL)}), 0u);
    kwSelectFileGUI(1);
    EXPECT_EQ(RunDialog(chooseFile, {Check(rows), Press(IDCANCEL)}), 0u);
    EXPECT_EQ(RunDialog([&] { return kwSelectDirectryName(nullptr, "", path); }, {Check(rows), Press(IDCANCEL)}), 0u);
    kwSelectFileGUI(0);
}
