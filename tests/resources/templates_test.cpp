// The dialog templates as a user meets them: at the screen's resolution, in the system's language.
#include <windows.h>

#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <string>
#include <vector>

#include "frame/module.h"
#include "kit/handles.h"
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
    std::vector<HWND> Controls() const {
        std::vector<HWND> controls;
        for (HWND each = GetWindow(window, GW_CHILD); each; each = GetWindow(each, GW_HWNDNEXT))
            controls.push_back(each);
        return controls;
    }
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
    switch (GetWindowLongA(control, GWL_STYLE) & BS_TYPEMASK) {
        case BS_AUTOCHECKBOX:
        case BS_CHECKBOX: return GetSystemMetrics(SM_CXMENUCHECK) + 2;
        case BS_GROUPBOX: return 16;
        default: return 8;
    }
}

TEST(Templates, TextsFit) {
    for (const int id : kTemplates) {
        const TemplateDialog dialog(id);
        ASSERT_NE(dialog.window, nullptr) << id;
        for (const HWND control : dialog.Controls()) {
            const std::string kind = ClassOf(control), text = WindowText(control);
            if ((kind != "Button" && kind != "Static") || text.empty()) continue;
            RECT room;
            GetClientRect(control, &room);
            const SIZE size = TextSize(control);
            EXPECT_LE(size.cx + BesidesText(control), room.right) << id << " " << text;
            EXPECT_LE(size.cy, room.bottom) << id << " " << text;
        }
    }
}

TEST(Templates, MnemonicsAreUnique) {
    for (const int id : kTemplates) {
        const TemplateDialog dialog(id);
        std::map<char, std::string> owners;
        for (const HWND control : dialog.Controls()) {
            const std::string text = WindowText(control);
            const std::size_t mark = text.find('&');
            if (mark != std::string::npos && text[mark + 1] != '&') {
                const char key = static_cast<char>(std::toupper(static_cast<unsigned char>(text[mark + 1])));
                EXPECT_TRUE(owners.emplace(key, text).second) << id << " " << text << " and " << owners[key];
            }
        }
    }
}
