#include "dirsel/folder_tree.h"

#include <commctrl.h>

#include <cstring>
#include <iterator>
#include <string>

#include "dirsel/folder_nodes.h"
#include "dirsel/shell_item.h"
#include "frame/dialog_icons.h"
#include "frame/module.h"
#include "kit/guard.h"
#include "kit/handles.h"
#include "kit/layout.h"
#include "kwdialogs.h"
#include "resources/resource.h"

namespace {

RememberedSize rememberedSize;

// A running dialog.
struct FolderTree {
    const char* title = nullptr;  // may be null
    char* directory = nullptr;    // the caller's
    HWND dialog = nullptr, view = nullptr;
    DialogIcons icons;
    std::string caption;   // without the selected folder
    bool isAsked = false;  // the shell is being asked, and may let messages flow: no node may be filled or deleted
    LayoutRow rows[3] = {{IDC_FOLDER_TREE, kAnchorRight | kAnchorBottom},
                         {IDOK, kMoveHorizontally | kMoveVertically},
                         {IDCANCEL, kMoveHorizontally | kMoveVertically}};
    DialogLayout layout = {rows, static_cast<int>(std::size(rows)), &rememberedSize};
};

void Rebuild(FolderTree& tree) {
    if (tree.isAsked) return;
    const Raised asked(tree.isAsked);
    FillRoot(tree.view);
    SelectPath(tree.view, tree.directory);
}

// ---- Messages

void OnInitDialog(FolderTree& tree) {
    tree.view = GetDlgItem(tree.dialog, IDC_FOLDER_TREE);
    ShowDialogIcons(tree.dialog, &tree.icons);
    if (tree.title) {
        tree.caption = tree.title;
        SetWindowTextA(tree.dialog, tree.title);
    } else {
        char text[128] = "";
        GetWindowTextA(tree.dialog, text, sizeof(text));
        tree.caption = text;
    }
    StartLayout(tree.dialog, &tree.layout);
    Rebuild(tree);
}

// True when the node must not expand.
bool OnExpanding(FolderTree& tree, const NMTREEVIEWA& notification) {
    const HTREEITEM node = notification.itemNew.hItem;
    if (notification.action != TVE_EXPAND) return false;
    if (tree.isAsked) return !TreeView_GetChild(tree.view, node);
    const Raised asked(tree.isAsked);
    FillNode(tree.view, node);
    return false;
}

void OnSelectionChange(const FolderTree& tree, HTREEITEM node) {
    const ShellItem* item = ItemOfNode(tree.view, node);
    if (!item) return;  // the tree is being emptied
    SetWindowTextA(tree.dialog, (tree.caption + " - [" + ItemName(*item, SHGDN_FORPARSING) + "]").c_str());
}

INT_PTR OnNotify(FolderTree& tree, LPARAM lParam) {
    const auto& notification = *reinterpret_cast<const NMTREEVIEWA*>(lParam);
    if (notification.hdr.idFrom != IDC_FOLDER_TREE) return FALSE;
    switch (notification.hdr.code) {
        case TVN_ITEMEXPANDINGA:
            SetWindowLongPtrA(tree.dialog, DWLP_MSGRESULT, OnExpanding(tree, notification));
            return TRUE;
        case TVN_SELCHANGEDA: OnSelectionChange(tree, notification.itemNew.hItem); return TRUE;
        case TVN_DELETEITEMA: FreeNode(notification.itemOld); return TRUE;
        case TVN_KEYDOWN:
            if (reinterpret_cast<const NMTVKEYDOWN*>(lParam)->wVKey == VK_F5) Rebuild(tree);
            return TRUE;
        default: return FALSE;
    }
}

// A path that leaves no room for its backslash, and no selection, keep the dialog open.
void OnAccept(const FolderTree& tree) {
    const ShellItem* item = ItemOfNode(tree.view, TreeView_GetSelection(tree.view));
    const std::string path = item ? FolderPath(*item) : std::string();
    if (path.empty() || path.size() >= KW_MAX_PATH) {
        MessageBeep(MB_OK);
        return;
    }
    std::memcpy(tree.directory, path.c_str(), path.size() + 1);
    EndDialog(tree.dialog, TRUE);
}

INT_PTR OnCommand(const FolderTree& tree, int id) {
    switch (id) {
        case IDOK: OnAccept(tree); return TRUE;
        case IDCANCEL: EndDialog(tree.dialog, FALSE); return TRUE;
        default: return FALSE;
    }
}

// So small that the buttons still have their place.
INT_PTR OnMinMaxInfo(const FolderTree& tree, MINMAXINFO* info) {
    const SIZE whole = tree.layout.recordedSize;
    info->ptMinTrackSize = {whole.cx * 2 / 3, whole.cy / 3};
    return TRUE;
}

INT_PTR CALLBACK FolderTreeProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) SetWindowLongPtrA(dialog, DWLP_USER, lParam);  // SelectFolderTree's record
    auto* tree = reinterpret_cast<FolderTree*>(GetWindowLongPtrA(dialog, DWLP_USER));
    if (!tree) return FALSE;
    switch (message) {
        case WM_INITDIALOG:
            tree->dialog = dialog;
            OnInitDialog(*tree);
            return TRUE;
        case WM_COMMAND: return OnCommand(*tree, LOWORD(wParam));
        case WM_NOTIFY: return OnNotify(*tree, lParam);
        case WM_SHOWWINDOW:
        case WM_SIZE: FollowDialogSize(dialog, &tree->layout, message, wParam); return TRUE;
        case WM_GETMINMAXINFO: return OnMinMaxInfo(*tree, reinterpret_cast<MINMAXINFO*>(lParam));
        default: return FALSE;
    }
}

}  // namespace

BOOL SelectFolderTree(HWND owner, const char* title, char* directory) {
    const INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_TREEVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    const ComApartment com;
    FolderTree tree;
    tree.title = title;
    tree.directory = directory;
    return DialogBoxParamA(ThisModule(), MAKEINTRESOURCEA(IDD_FOLDER_TREE), owner,
                           GuardedProcedure<INT_PTR, FolderTreeProc>, reinterpret_cast<LPARAM>(&tree)) == TRUE;
}
