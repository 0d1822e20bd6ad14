#include "dirsel/shell_item.h"

#include <shellapi.h>
#include <shlwapi.h>

static UniqueCom<IShellFolder> AddReference(IShellFolder& folder) {
    folder.AddRef();
    return UniqueCom<IShellFolder>(&folder);
}

UniqueCom<IShellFolder> DesktopFolder() {
    IShellFolder* desktop = nullptr;
    if (FAILED(SHGetDesktopFolder(&desktop))) return nullptr;
    return UniqueCom<IShellFolder>(desktop);
}

UniqueIdList SpecialFolder(HWND owner, int csidl) {
    LPITEMIDLIST idList = nullptr;
    if (FAILED(SHGetSpecialFolderLocation(owner, csidl, &idList))) return nullptr;
    return UniqueIdList(idList);
}

UniqueCom<IShellFolder> OpenShellFolder(const ShellItem& item) {
    void* folder = nullptr;
    if (FAILED(item.parent->BindToObject(item.relative.get(), nullptr, IID_IShellFolder, &folder))) return nullptr;
    return UniqueCom<IShellFolder>(static_cast<IShellFolder*>(folder));
}

UniqueCom<IEnumIDList> EnumerateItems(IShellFolder& folder, HWND owner) {
    IEnumIDList* items = nullptr;
    if (FAILED(folder.EnumObjects(owner, SHCONTF_FOLDERS | SHCONTF_NONFOLDERS, &items))) return nullptr;
    return UniqueCom<IEnumIDList>(items);  // null, too, when there is nothing to enumerate
}

UniqueIdList NextItem(IEnumIDList& items) {
    LPITEMIDLIST relative = nullptr;
    if (items.Next(1, &relative, nullptr) != S_OK) return nullptr;
    return UniqueIdList(relative);
}

std::unique_ptr<ShellItem> MakeShellItem(IShellFolder& parent, LPCITEMIDLIST parentIdList, UniqueIdList relative) {
    LPCITEMIDLIST id = relative.get();
    SFGAOF attributes = ~SFGAOF{0};  // in: those that are asked for
    if (FAILED(parent.GetAttributesOf(1, &id, &attributes))) return nullptr;
    UniqueIdList absolute(ILCombine(parentIdList, id));
    if (!absolute) return nullptr;
    return std::make_unique<ShellItem>(
        ShellItem{AddReference(parent), std::move(absolute), std::move(relative), attributes});
}

std::string ItemName(const ShellItem& item, SHGDNF form) {
    STRRET name = {};
    char* text = nullptr;
    if (FAILED(item.parent->GetDisplayNameOf(item.relative.get(), form, &name))) return {};
    if (FAILED(StrRetToStrA(&name, item.relative.get(), &text)) || !text) return {};
    const std::unique_ptr<char, TaskMemoryFree> owned(text);
    return text;
}

bool CompareItems(const ShellItem& item, LPCITEMIDLIST relative, int* order) {
    const HRESULT result = item.parent->CompareIDs(0, item.relative.get(), relative);
    if (FAILED(result)) return false;
    *order = static_cast<short>(HRESULT_CODE(result));
    return true;
}

HIMAGELIST SmallIcons() {
    SHFILEINFOA info = {};
    return reinterpret_cast<HIMAGELIST>(
        SHGetFileInfoA("", 0, &info, sizeof(info), SHGFI_SYSICONINDEX | SHGFI_SMALLICON));
}

int SmallIconIndex(const ShellItem& item, bool open) {
    SHFILEINFOA info = {};
    const UINT flags = SHGFI_PIDL | SHGFI_SYSICONINDEX | SHGFI_SMALLICON | (open ? SHGFI_OPENICON : 0);
    SHGetFileInfoA(reinterpret_cast<LPCSTR>(item.absolute.get()), 0, &info, sizeof(info), flags);
    return info.iIcon;
}
