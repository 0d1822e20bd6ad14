// Items of the shell's namespace: id lists, names and icons, and the guards of what the shell hands out.
#pragma once

#include <windows.h>

#include <shlobj.h>

#include <memory>
#include <string>

// One reference to an object.
struct ComRelease {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <typename Interface>
using UniqueCom = std::unique_ptr<Interface, ComRelease>;

// Memory of the shell's allocator.
struct TaskMemoryFree {
    void operator()(void* memory) const { CoTaskMemFree(memory); }
};
using UniqueIdList = std::unique_ptr<ITEMIDLIST, TaskMemoryFree>;

// COM on this thread for the length of a scope. A thread that has chosen its apartment keeps it.
struct ComApartment {
    const HRESULT result = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
    ComApartment() = default;
    ~ComApartment() {
        if (SUCCEEDED(result)) CoUninitialize();
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
};

// An item, with all that is needed to ask the shell about it.
struct ShellItem {
    UniqueCom<IShellFolder> parent;
    UniqueIdList absolute;  // from the desktop
    UniqueIdList relative;  // within the parent: one id
    SFGAOF attributes;
};

// The root of the namespace, and one of its well-known folders (CSIDL_...) as an absolute id list. Null on failure.
UniqueCom<IShellFolder> DesktopFolder();
UniqueIdList SpecialFolder(HWND owner, int csidl);

// The folder that the item is. Null when the shell cannot open it.
UniqueCom<IShellFolder> OpenShellFolder(const ShellItem& item);

// The enumeration of all that a folder holds, folders or not, and the next id of one. Null on failure, and at the end.
// What the shell has to ask the user, it asks over `owner`.
UniqueCom<IEnumIDList> EnumerateItems(IShellFolder& folder, HWND owner);
UniqueIdList NextItem(IEnumIDList& items);

// The item of that id in a folder, which is given with its own absolute id list (null: the desktop). Null when the
// shell does not tell its attributes.
std::unique_ptr<ShellItem> MakeShellItem(IShellFolder& parent, LPCITEMIDLIST parentIdList, UniqueIdList relative);

// The item's name in that form (SHGDN_...). Empty when it has none.
std::string ItemName(const ShellItem& item, SHGDNF form);

// The order of the item and of another id in the same folder, as the folder sees it: below, equal to or above 0.
// False, with `order` untouched, when it cannot tell.
bool CompareItems(const ShellItem& item, LPCITEMIDLIST relative, int* order);

// The system's list of small icons, which it keeps, and the index of an item's icon in it, closed or open.
HIMAGELIST SmallIcons();
int SmallIconIndex(const ShellItem& item, bool open);
