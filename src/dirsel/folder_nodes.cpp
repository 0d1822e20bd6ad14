#include "dirsel/folder_nodes.h"

#include "kit/handles.h"
#include "kit/paths.h"

static HTREEITEM NextNode(HWND view, WPARAM relation, HTREEITEM node) {
    return reinterpret_cast<HTREEITEM>(SendMessageA(view, TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(node)));
}

ShellItem* ItemOfNode(HWND view, HTREEITEM node) {
    TVITEMA item = {};
    item.mask = TVIF_HANDLE | TVIF_PARAM;
    item.hItem = node;
    if (!node || !SendMessageA(view, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item))) return nullptr;
    return reinterpret_cast<ShellItem*>(item.lParam);
}

void FreeNode(const TVITEMA& deleted) { delete reinterpret_cast<ShellItem*>(deleted.lParam); }

// ---- Levels

// False when the view takes no more nodes.
static bool InsertNode(HWND view, HTREEITEM parent, std::unique_ptr<ShellItem> item) {
    std::string name = ItemName(*item, SHGDN_INFOLDER);
    TVINSERTSTRUCTA insert = {};
    insert.hParent = parent;
    insert.hInsertAfter = TVI_LAST;
    insert.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_CHILDREN | TVIF_PARAM;
    insert.item.pszText = name.data();
    insert.item.iImage = SmallIconIndex(*item, false);
    insert.item.iSelectedImage = SmallIconIndex(*item, true);
    insert.item.cChildren = item->attributes & SFGAO_HASSUBFOLDER ? 1 : 0;
    insert.item.lParam = reinterpret_cast<LPARAM>(item.get());
    if (!SendMessageA(view, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&insert))) return false;
    (void)item.release();  // the node's own now
    return true;
}

static int CALLBACK CompareNodes(LPARAM first, LPARAM second, LPARAM) {
    int order = 0;  // what cannot be compared counts as equal
    CompareItems(*reinterpret_cast<const ShellItem*>(first), reinterpret_cast<const ShellItem*>(second)->relative.get(),
                 &order);
    return order;
}

static void FillLevel(HWND view, HTREEITEM parent, IShellFolder& folder, LPCITEMIDLIST folderIdList) {
    const WaitCursor wait;
    UniqueCom<IEnumIDList> items = EnumerateItems(folder, GetParent(view));
    if (!items) return;
    while (UniqueIdList id = NextItem(*items)) {
        auto item = MakeShellItem(folder, folderIdList, std::move(id));
        if (!item || !(item->attributes & SFGAO_FOLDER)) continue;
        if (!InsertNode(view, parent, std::move(item))) return;
    }
    items.reset();
    TVSORTCB sort = {parent, CompareNodes, 0};
    SendMessageA(view, TVM_SORTCHILDRENCB, 0, reinterpret_cast<LPARAM>(&sort));
}

void FillRoot(HWND view) {
    const UniqueCom<IShellFolder> desktop = DesktopFolder();
    if (!desktop) return;
    SendMessageA(view, TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
    SendMessageA(view, TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(SmallIcons()));
    FillLevel(view, TVI_ROOT, *desktop, nullptr);
}

void FillNode(HWND view, HTREEITEM node) {
    const ShellItem* item = ItemOfNode(view, node);
    if (!item || NextNode(view, TVGN_CHILD, node)) return;
    const UniqueCom<IShellFolder> folder = OpenShellFolder(*item);
    const UniqueIdList idList(ILClone(item->absolute.get()));  // a copy: the item goes when the window is destroyed
    if (folder && idList) FillLevel(view, node, *folder, idList.get());
}

// ---- Paths

static bool EndsWithBackslash(const std::string& path) {
    const char* const last = FindLastBackslash(path.c_str());
    return last && last[1] == '\0';
}

static std::string WithBackslash(std::string path) {
    if (!path.empty() && !EndsWithBackslash(path)) path += '\\';
    return path;
}

std::string FolderPath(const ShellItem& item) { return WithBackslash(ItemName(item, SHGDN_FORPARSING)); }

static bool IsNetworkPath(const std::string& path) { return path.compare(0, 2, "\\\\") == 0; }

// True when neither of the first two characters is a backslash.
static bool IsBareName(const std::string& name) {
    if (name.empty() || name[0] == '\\') return false;
    return IsDBCSLeadByte(static_cast<BYTE>(name[0])) || name[1] != '\\';
}

std::string StepPath(std::string name, bool inNetwork) {
    return WithBackslash(inNetwork && IsBareName(name) ? "\\\\" + name : std::move(name));
}

static std::string StepPath(const ShellItem& item, bool inNetwork) {
    std::string name = ItemName(item, SHGDN_FORPARSING);
    if (name.empty()) name = ItemName(item, SHGDN_INFOLDER);
    return StepPath(std::move(name), inNetwork);
}

// True when `path` begins with `part`, letters of both cases alike.
static bool BeginsWith(const std::string& path, const std::string& part) {
    const int length = static_cast<int>(part.size());
    return length > 0 && part.size() <= path.size() &&
           CompareStringA(LOCALE_SYSTEM_DEFAULT, NORM_IGNORECASE, path.c_str(), length, part.c_str(), length) ==
               CSTR_EQUAL;
}

// ---- The way to a path

static void SelectNode(HWND view, HTREEITEM node) {
    SendMessageA(view, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(node));
}

static void OpenNode(HWND view, HTREEITEM node) {
    SelectNode(view, node);
    FillNode(view, node);
    SendMessageA(view, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(node));
}

// The node, in order of display, that shows a folder which the desktop holds; null when none does.
static HTREEITEM FindDesktopNode(HWND view, LPCITEMIDLIST idList) {
    HTREEITEM node = NextNode(view, TVGN_ROOT, nullptr);
    for (; node; node = NextNode(view, TVGN_NEXTVISIBLE, node)) {
        const ShellItem* item = ItemOfNode(view, node);
        int order = 0;
        if (item && CompareItems(*item, idList, &order) && order == 0) break;
    }
    return node;
}

static bool IsBelow(HWND view, HTREEITEM node, HTREEITEM ancestor) {
    while (node && node != ancestor) node = NextNode(view, TVGN_PARENT, node);
    return node != nullptr;
}

void SelectPath(HWND view, const std::string& path) {
    const bool inNetwork = IsNetworkPath(path);
    const UniqueIdList special = SpecialFolder(GetParent(view), inNetwork ? CSIDL_NETWORK : CSIDL_DRIVES);
    const HTREEITEM top = special ? FindDesktopNode(view, special.get()) : nullptr;
    if (!top) return;
    OpenNode(view, top);
    HTREEITEM node = top;
    while ((node = NextNode(view, TVGN_NEXTVISIBLE, node)) && IsBelow(view, node, top)) {
        const ShellItem* item = ItemOfNode(view, node);
        const std::string step = item ? StepPath(*item, inNetwork) : std::string();
        if (!BeginsWith(path, step)) continue;
        if (step.size() == path.size()) {
            SelectNode(view, node);
            return;
        }
        OpenNode(view, node);
    }
}
