#include "support/dialog_driver.h"

#include <windows.h>

#include <commctrl.h>
#include <dlgs.h>
#include <gtest/gtest.h>

#include "resources/resource.h"
#include "support/picture.h"

static std::string CurrentDirectory() {
    char path[MAX_PATH] = "";
    GetCurrentDirectoryA(MAX_PATH, path);
    return path;
}

unsigned RunDialog(const std::function<unsigned()>& open, std::vector<DialogStep> steps) {
    unsigned result = 0;
    const std::string directory = CurrentDirectory();
    EXPECT_EQ(DriveDialogs([&] { result = open(); }, std::move(steps)), "");
    EXPECT_EQ(CurrentDirectory(), directory);
    return result;
}

LRESULT InList(HWND dialog, int listId, UINT message, WPARAM wParam, const void* parameter) {
    return SendMessageA(FindControl(dialog, listId), message, wParam, reinterpret_cast<LPARAM>(parameter));
}

DialogStep TypeFileName(const std::string& text) {
    return [=](HWND dialog) {
        const HWND edit = FileNameField(dialog);
        return edit && SendMessageA(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    };
}

HWND FileNameField(HWND dialog) {
    if (const HWND edit = FindControl(dialog, edt1)) return edit;
    const HWND combo = FindControl(dialog, cmb13);
    return combo ? FindControl(combo, WC_EDITA) : nullptr;
}

PaneContents ReadPane(HWND dialog) {
    const LRESULT bitmap = SendMessageA(FindControl(dialog, IDC_PREVIEW_PICTURE), STM_GETIMAGE, IMAGE_BITMAP, 0);
    return {PictureOf(reinterpret_cast<HBITMAP>(bitmap)), ControlText(dialog, IDC_PREVIEW_COMMENT)};
}
