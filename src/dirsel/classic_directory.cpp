#include "dirsel/classic_directory.h"

#include <commdlg.h>

#include <cstring>

#include "frame/module.h"
#include "kit/guard.h"
#include "kit/list_rows.h"
#include "kwdialogs.h"
#include "resources/resource.h"

#ifndef _WIN64
static_assert(sizeof(OPENFILENAMEA) == 88);
#endif

// The dialog insists on a file name: with an empty one it takes the filter's pattern, which has no wildcard.
#define DUMMY_NAME "Dummy.TXT"
static constexpr char kFilter[] = "Dummy (" DUMMY_NAME ")\0" DUMMY_NAME "\0";

// Only for the height of the rows; all else is the system's.
static UINT_PTR CALLBACK RowsHook(HWND dialog, UINT message, WPARAM, LPARAM) {
    if (message != WM_INITDIALOG) return 0;
    FitListRows(GetDlgItem(dialog, IDC_DIRECTORY_LIST));
    FitComboRows(GetDlgItem(dialog, IDC_DRIVE_COMBO));
    return 1;
}

BOOL SelectDirectoryClassic(HWND owner, const char* title, char* directory) {
    char file[KW_MAX_PATH] = "", fileTitle[KW_MAX_PATH] = "";
    OPENFILENAMEA dialog = {};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = owner;
    dialog.hInstance = ThisModule();
    dialog.lpstrFilter = kFilter;
    dialog.nFilterIndex = 1;
    dialog.lpstrFile = file;
    dialog.nMaxFile = sizeof(file);
    dialog.lpstrFileTitle = fileTitle;
    dialog.nMaxFileTitle = sizeof(fileTitle);
    dialog.lpstrInitialDir = directory;
    dialog.lpstrTitle = title;
    dialog.Flags = OFN_ENABLEHOOK | OFN_ENABLETEMPLATE | OFN_HIDEREADONLY;
    dialog.lpfnHook = GuardedProcedure<UINT_PTR, RowsHook>;
    dialog.lpstrDefExt = DUMMY_NAME;  // the whole name, not an extension
    dialog.lpTemplateName = MAKEINTRESOURCEA(IDD_DIRECTORY_SELECTION);
    if (!GetOpenFileNameA(&dialog) || dialog.nFileOffset == 0 || dialog.nFileOffset >= sizeof(file)) return FALSE;
    file[dialog.nFileOffset] = '\0';
    std::memcpy(directory, file, dialog.nFileOffset + std::size_t{1});
    return TRUE;
}
