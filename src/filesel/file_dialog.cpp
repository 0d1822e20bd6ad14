#include "filesel/file_dialog.h"

#include <commdlg.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "filesel/file_line.h"
#include "filesel/file_list.h"
#include "filesel/preview_pane.h"
#include "frame/module.h"
#include "frame/os_kind.h"
#include "frame/services.h"
#include "kit/guard.h"
#include "kit/list_rows.h"
#include "kit/paths.h"
#include "preview/drawing/canvas.h"
#include "resources/resource.h"

#ifndef _WIN64
static_assert(sizeof(OPENFILENAMEA) == 88);
#endif

static constexpr DWORD kOpenFlags = OFN_HIDEREADONLY | OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST;
static constexpr DWORD kSaveFlags = OFN_HIDEREADONLY;

static bool IsOpenMode(int modeBits) { return modeBits & KW_FILE_OPEN; }

// What both dialogs take from the request as it stands.
static OPENFILENAMEA DialogOf(HWND owner, const SelectRequest& request) {
    OPENFILENAMEA dialog = {};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = owner;
    dialog.hInstance = ThisModule();
    dialog.lpstrFilter = request.filter;
    dialog.nFilterIndex = request.filterIndex;
    dialog.lpstrFile = request.fileBuffer;
    dialog.nMaxFile = request.fileBufferSize;
    dialog.lpstrTitle = request.title;
    return dialog;
}

// ---- Classic dialog

// A relative directory is taken below the current one. One that does not fit KW_MAX_PATH leaves the current directory.
static void ResolveDirectory(const char* initialDir, char (&out)[KW_MAX_PATH]) {
    const DWORD length = GetCurrentDirectoryA(sizeof(out), out);
    if (length == 0 || length >= sizeof(out)) out[0] = '\0';
    if (!initialDir || !initialDir[0]) return;
    const bool isAbsolute = initialDir[0] == '\\' || initialDir[1] == ':';
    const std::string path = isAbsolute ? initialDir : std::string(out) + "\\" + initialDir;
    if (path.size() < sizeof(out)) std::memcpy(out, path.c_str(), path.size() + 1);
}

namespace {

// A check box and its bit in one of the option words.
struct OptionBox {
    int id;
    DWORD* word;
    DWORD bit;
};
constexpr OptionBox kOptionBoxes[] = {
    {IDC_SORT_NAME, &SortOptionBits, KW_SORT_NAME},    {IDC_SORT_EXTENSION, &SortOptionBits, KW_SORT_EXTENSION},
    {IDC_SORT_SIZE, &SortOptionBits, KW_SORT_SIZE},    {IDC_SORT_DATE, &SortOptionBits, KW_SORT_DATE},
    {IDC_SHOW_SIZE, &DisplayOptionBits, KW_SHOW_SIZE}, {IDC_SHOW_DATE, &DisplayOptionBits, KW_SHOW_DATE},
    {IDC_SHOW_TIME, &DisplayOptionBits, KW_SHOW_TIME}, {IDC_SHOW_COMMENT, &DisplayOptionBits, KW_SHOW_COMMENT},
};

}  // namespace

static void RefreshFileList(HWND dialog) { SendDlgItemMessageA(dialog, IDC_FILE_LIST, WM_SETREDRAW, TRUE, 0); }

static UINT_PTR OnInitFileSelection(HWND dialog) {
    if (!HasNewShell(GetOsKind()) && (GetWindowLongPtrA(dialog, GWL_STYLE) & DS_CENTER)) CenterWindow(dialog, nullptr);
    FitListRows(GetDlgItem(dialog, IDC_DIRECTORY_LIST));
    FitComboRows(GetDlgItem(dialog, IDC_DRIVE_COMBO));
    SubclassFileList(GetDlgItem(dialog, IDC_FILE_LIST));
    for (const OptionBox& box : kOptionBoxes) {
        if (*box.word & box.bit) SendDlgItemMessageA(dialog, box.id, BM_SETCHECK, BST_CHECKED, 0);
    }
    RefreshFileList(dialog);
    return 1;
}

static UINT_PTR OnOptionBox(HWND dialog, const OptionBox& box) {
    if (SendDlgItemMessageA(dialog, box.id, BM_GETCHECK, 0, 0) == BST_CHECKED) *box.word |= box.bit;
    else *box.word &= ~box.bit;
    RefreshFileList(dialog);
    return 1;
}

// The list's lines carry columns behind a tab; only the name goes to the edit field.
static UINT_PTR OnFileSelected(HWND dialog) {
    const HWND list = GetDlgItem(dialog, IDC_FILE_LIST);
    const LRESULT line = SendMessageA(list, LB_GETCURSEL, 0, 0);
    const LRESULT length = SendMessageA(list, LB_GETTEXTLEN, static_cast<WPARAM>(line), 0);
    if (line == LB_ERR || length == LB_ERR) return 1;
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    if (SendMessageA(list, LB_GETTEXT, static_cast<WPARAM>(line), reinterpret_cast<LPARAM>(text.data())) == LB_ERR) {
        return 1;
    }
    text.resize(FileNameLength(text.c_str()));
    SendDlgItemMessageA(dialog, IDC_FILE_NAME, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    return 1;
}

static UINT_PTR OnFileSelectionCommand(HWND dialog, int id, int notification) {
    for (const OptionBox& box : kOptionBoxes) {
        if (box.id == id) return OnOptionBox(dialog, box);
    }
    return id == IDC_FILE_LIST && notification == LBN_SELCHANGE ? OnFileSelected(dialog) : 0;
}

static UINT_PTR CALLBACK FileSelectionHook(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
        case WM_INITDIALOG: return OnInitFileSelection(dialog);
        case WM_COMMAND: return OnFileSelectionCommand(dialog, LOWORD(wParam), HIWORD(wParam));
        case WM_DESTROY: UnsubclassFileList(GetDlgItem(dialog, IDC_FILE_LIST)); return 0;
        default: return 0;
    }
}

BOOL SelectFileClassic(HWND owner, int modeBits, SelectRequest* request) {
    char directory[KW_MAX_PATH];
    ResolveDirectory(request->initialDir, directory);
    OPENFILENAMEA dialog = DialogOf(owner, *request);
    dialog.lpstrInitialDir = directory;
    dialog.lpstrDefExt = request->defaultExt;
    dialog.Flags = OFN_ENABLEHOOK | OFN_ENABLETEMPLATE;
    if (IsOpenMode(modeBits)) {
        dialog.Flags |= kOpenFlags;
    } else {
        dialog.Flags |= kSaveFlags | (modeBits & KW_FILE_OVERWRITE ? 0 : OFN_OVERWRITEPROMPT);
    }
    dialog.lpfnHook = GuardedProcedure<UINT_PTR, FileSelectionHook>;
    dialog.lpTemplateName = MAKEINTRESOURCEA(IDD_FILE_SELECTION);

    SortOptionBits = request->sortOptions;
    DisplayOptionBits = request->displayOptions;
    const BOOL chosen = IsOpenMode(modeBits) ? GetOpenFileNameA(&dialog) : GetSaveFileNameA(&dialog);
    request->filterIndex = dialog.nFilterIndex;
    request->sortOptions = SortOptionBits;
    request->displayOptions = DisplayOptionBits;
    return chosen;
}

// ---- Explorer-style dialog

static UINT_PTR CALLBACK CenteringHook(HWND dialog, UINT message, WPARAM, LPARAM lParam) {
    if (message == WM_NOTIFY) {
        if (reinterpret_cast<const NMHDR*>(lParam)->code == CDN_INITDONE) CenterWindow(GetParent(dialog), nullptr);
        return 1;
    }
    return message == WM_INITDIALOG;
}

// Gives a name that was typed without an extension the default one, as far as the buffer reaches.
static void AppendDefaultExtension(const SelectRequest& request) {
    if (!request.defaultExt) return;
    char* const path = request.fileBuffer;
    const char* const name = FindLastBackslash(path);
    if (!name || std::strchr(name, '.')) return;
    const std::size_t length = std::strlen(path), extension = std::strlen(request.defaultExt);
    if (request.fileBufferSize < length + 1 + extension + 1) return;
    path[length] = '.';
    std::memcpy(path + length + 1, request.defaultExt, extension + 1);
}

// Asks whether an existing file may be replaced.
static bool MayOverwrite(HWND owner, const SelectRequest& request) {
    const char* const format = LoadResString(ThisModule(), IDS_OVERWRITE);
    char text[512];
    std::snprintf(text, sizeof(text), format ? format : "%s", request.fileBuffer);
    return MessageBoxA(owner, text, request.title, MB_OKCANCEL | MB_ICONQUESTION) == IDOK;
}

static BOOL RunSaveDialog(OPENFILENAMEA* dialog, int modeBits, const SelectRequest& request) {
    while (GetSaveFileNameA(dialog)) {
        AppendDefaultExtension(request);
        if ((modeBits & KW_FILE_OVERWRITE) || !IsFilePath(request.fileBuffer) ||
            MayOverwrite(dialog->hwndOwner, request)) {
            return TRUE;
        }
    }
    return FALSE;
}

BOOL SelectFileExplorer(HWND owner, int modeBits, SelectRequest* request) {
    OPENFILENAMEA dialog = DialogOf(owner, *request);
    dialog.lpstrInitialDir = request->initialDir;
    dialog.Flags = OFN_EXPLORER | OFN_ENABLEHOOK | (IsOpenMode(modeBits) ? kOpenFlags : kSaveFlags);
    dialog.lpfnHook = GuardedProcedure<UINT_PTR, CenteringHook>;
    if (modeBits & KW_FILE_PREVIEW) {
        dialog.Flags |= OFN_ENABLETEMPLATE;
        dialog.lpfnHook = GuardedProcedure<UINT_PTR, PreviewHook>;
        dialog.lCustData = modeBits & KW_FILE_FULL_DXF ? kRenderFullDxf : 0;
        dialog.lpTemplateName = MAKEINTRESOURCEA(IDD_PREVIEW_PANE);
    }
    const BOOL chosen = IsOpenMode(modeBits) ? GetOpenFileNameA(&dialog) : RunSaveDialog(&dialog, modeBits, *request);
    request->filterIndex = dialog.nFilterIndex;
    return chosen;
}
