// The exports: thin dispatchers that choose a dialog variant and keep the process's current directory.
#include <cstddef>
#include <cstring>

#include "dirsel/classic_directory.h"
#include "dirsel/folder_tree.h"
#include "dlgctrl/controller.h"
#include "filesel/file_dialog.h"
#include "frame/os_kind.h"
#include "kit/guard.h"
#include "kwdialogs.h"

// What hosts of 32 and of 64 bits have compiled into them.
static constexpr std::size_t Offset(std::size_t in32Bits, std::size_t in64Bits) {
    return sizeof(void*) == 4 ? in32Bits : in64Bits;
}
static_assert(sizeof(SelectRequest) == Offset(36, 64));
static_assert(offsetof(SelectRequest, initialDir) == Offset(8, 16));
static_assert(offsetof(SelectRequest, filterIndex) == Offset(12, 24));
static_assert(offsetof(SelectRequest, fileBuffer) == Offset(16, 32));
static_assert(offsetof(SelectRequest, fileBufferSize) == Offset(20, 40));
static_assert(offsetof(SelectRequest, defaultExt) == Offset(24, 48));
static_assert(offsetof(SelectRequest, displayOptions) == Offset(32, 60));
static_assert(sizeof(DialogItem) == 40 && offsetof(DialogItem, value) == 8 && offsetof(DialogItem, minimum) == 16);
static_assert(offsetof(DialogItem, maximum) == 24 && offsetof(DialogItem, text) == 32);
static_assert(sizeof(PageDescriptor) == Offset(20, 40));
static_assert(offsetof(PageDescriptor, callback) == Offset(8, 16));
static_assert(offsetof(PageDescriptor, itemCount) == Offset(12, 24));
static_assert(offsetof(PageDescriptor, items) == Offset(16, 32));

// 0: Explorer style where the shell has it; positive: classic. Never changed by the library itself.
static int GuiMode = 0;

static bool UsesExplorerStyle() { return GuiMode == 0 && HasNewShell(GetOsKind()); }

// Remembers the current directory for the length of a scope: the common dialogs move it as the user browses.
struct KeptDirectory {
    char path[KW_MAX_PATH] = {};
    KeptDirectory() {
        const DWORD length = GetCurrentDirectoryA(sizeof(path), path);
        if (length >= sizeof(path)) path[0] = '\0';
    }
    ~KeptDirectory() {
        if (path[0]) SetCurrentDirectoryA(path);
    }
    KeptDirectory(const KeptDirectory&) = delete;
    KeptDirectory& operator=(const KeptDirectory&) = delete;
};

static BOOL SelectFile(HWND owner, int modeBits, SelectRequest* request) {
    const KeptDirectory kept;
    return UsesExplorerStyle() ? SelectFileExplorer(owner, modeBits, request)
                               : SelectFileClassic(owner, modeBits, request);
}

unsigned int WINAPI kwSelectFileName(HWND owner, int modeBits, int keepLongName, SelectRequest* request) {
    if (!request || !request->fileBuffer || request->fileBufferSize == 0) return 0;  // no room for a choice
    const BOOL chosen = Guarded(FALSE, [&] { return SelectFile(owner, modeBits, request); });
    if (chosen && !keepLongName) GetShortPathNameA(request->fileBuffer, request->fileBuffer, request->fileBufferSize);
    return static_cast<unsigned int>(chosen);
}

int WINAPI kwSelectFileGUI(int mode) {
    const int previous = GuiMode;
    if (mode >= 0) GuiMode = mode;
    return previous;
}

unsigned int WINAPI kwSelectDirectryName(HWND owner, const char* title, char* directory) {
    if (!directory || !std::memchr(directory, '\0', KW_MAX_PATH)) return 0;
    const KeptDirectory kept;
    const BOOL chosen = Guarded(FALSE, [&] {
        return UsesExplorerStyle() ? SelectFolderTree(owner, title, directory)
                                   : SelectDirectoryClassic(owner, title, directory);
    });
    return static_cast<unsigned int>(chosen);
}

int WINAPI kwDlgBoxCtrl(HINSTANCE instance, const char* templateName, HWND owner, DialogItem* items, int itemCount,
                        DialogCallback callback) {
    return Guarded(-1, [&] { return RunControlledDialog(instance, templateName, owner, items, itemCount, callback); });
}
