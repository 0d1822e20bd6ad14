#include "frame/services.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "frame/module.h"
#include "kit/guard.h"
#include "kit/handles.h"

// ---- Resource strings

namespace {

constexpr std::size_t kSlotCount = 512;
constexpr int kTextSize = 128;

struct StringSlot {
    HINSTANCE module;  // null: empty
    UINT id;
    char text[kTextSize];
};
#ifndef _WIN64
static_assert(sizeof(StringSlot) * kSlotCount == 69632);
#endif

struct StringCache {
    HANDLE heap;
    StringSlot* slots;
};
StringCache stringCache;  // user-interface thread only: its heap has no lock

void TearDownStringCache() {
    if (!stringCache.heap) return;
    HeapFree(stringCache.heap, HEAP_NO_SERIALIZE, stringCache.slots);
    HeapDestroy(stringCache.heap);
    stringCache = {};
}

bool OpenStringCache() {
    if (stringCache.slots) return true;
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    const HANDLE heap = HeapCreate(HEAP_NO_SERIALIZE, system.dwPageSize, 0);
    if (!heap) return false;
    void* slots = HeapAlloc(heap, HEAP_NO_SERIALIZE | HEAP_ZERO_MEMORY, kSlotCount * sizeof(StringSlot));
    if (!slots) {
        HeapDestroy(heap);
        return false;
    }
    stringCache = {heap, static_cast<StringSlot*>(slots)};
    return true;
}

}  // namespace

const char* WINAPI LoadResString(HINSTANCE module, UINT id) {
    if (!module) {
        TearDownStringCache();
        return nullptr;
    }
    if (!OpenStringCache()) return nullptr;

    StringSlot* const slots = stringCache.slots;
    StringSlot* empty = nullptr;
    for (StringSlot* slot = slots; slot != slots + kSlotCount; ++slot) {
        if (slot->module == module && slot->id == id) return slot->text;
        if (!slot->module && !empty) empty = slot;
    }
    if (!empty) {  // a full cache is flushed whole: the texts that were handed out become empty
        std::memset(slots, 0, kSlotCount * sizeof(StringSlot));
        empty = slots;
    }
    if (LoadStringA(module, id, empty->text, kTextSize - 1) == 0) return nullptr;
    empty->module = module;
    empty->id = id;
    return empty->text;
}

void CopyResString(UINT id, char* out, std::size_t size) {
    if (size == 0) return;
    if (LoadStringA(ThisModule(), id, out, static_cast<int>(size)) == 0) out[0] = '\0';
}

// ---- Windows

// The shift that brings the span into 0..limit; the near edge wins when it does not fit.
static LONG ShiftIntoScreen(LONG low, LONG high, LONG limit) {
    LONG shift = high > limit ? limit - high : 0;
    if (low + shift < 0) shift = -low;
    return shift;
}

int WINAPI CenterWindow(HWND window, const RECT* rect) {
    if (!window) return 0;
    HWND reference = GetParent(window);
    if (!reference || IsIconic(reference)) reference = GetDesktopWindow();
    RECT around = {}, own = {};
    GetWindowRect(reference, &around);
    if (rect) own = *rect;
    else GetWindowRect(window, &own);
    const LONG width = own.right - own.left;
    const LONG height = own.bottom - own.top;

    POINT corner = {(around.left + around.right) / 2 - width / 2, (around.top + around.bottom) / 2 - height / 2};
    if (GetWindowLongPtrA(window, GWL_STYLE) & WS_CHILD) ScreenToClient(reference, &corner);
    corner.x += ShiftIntoScreen(corner.x, corner.x + width, GetSystemMetrics(SM_CXSCREEN));
    corner.y += ShiftIntoScreen(corner.y, corner.y + height, GetSystemMetrics(SM_CYSCREEN));
    MoveWindow(window, corner.x, corner.y, width, height, TRUE);
    return 1;
}

int WINAPI GetWindowPosSize(HWND window, POINT* position, SIZE* size) {
    RECT rect;
    if (!window || (!position && !size) || !GetWindowRect(window, &rect)) return 0;
    if (position) *position = {rect.left, rect.top};
    if (size) *size = {rect.right - rect.left, rect.bottom - rect.top};
    return 1;
}

// ---- Files

namespace {

// Keeps the system's boxes for drives without a medium away for the length of a scope, from this thread alone: the
// process's mode is the host's, and a worker that restores it last would leave the dialog's.
struct QuietErrors {
    DWORD previous = 0;
    QuietErrors() { SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &previous); }
    ~QuietErrors() { SetThreadErrorMode(previous, nullptr); }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;
};

// False when the path begins with the letter of a drive that does not exist; asks no file system. One drive's name is
// looked up: where GetLogicalDrives has to ask another process, that takes longer than the whole of a small preview.
bool HasItsDrive(const char* path) {
    const char letter = static_cast<char>(path[0] & ~0x20);  // both cases alike
    if (letter < 'A' || letter > 'Z' || path[1] != ':') return true;
    const char drive[] = {letter, ':', '\0'};
    char device[MAX_PATH];
    return QueryDosDeviceA(drive, device, sizeof(device)) != 0 || GetLastError() == ERROR_INSUFFICIENT_BUFFER;
}

// Whether a path can only lead to a disk, by the system's own rules for the names of devices ("AUX", "COM1", "CONIN$"),
// which differ from one Windows to the next: merely opening a device may block for ever.
bool IsOnDisk(const char* path) {
    char full[MAX_PATH];
    const DWORD length = GetFullPathNameA(path, sizeof(full), full, nullptr);
    if (length == 0 || length >= sizeof(full)) return false;
    if (full[0] != '\\' || full[1] != '\\' || full[3] != '\\') return true;  // a drive's, or \\server\share
    if (full[2] != '?') return full[2] != '.';
    return (full[4] && full[5] == ':') || _strnicmp(full + 4, "UNC\\", 4) == 0;
}

DWORD QuietAttributes(const char* path) {
    if (!path || !HasItsDrive(path) || !IsOnDisk(path)) return INVALID_FILE_ATTRIBUTES;
    const QuietErrors quiet;
    return GetFileAttributesA(path);
}

}  // namespace

HANDLE OpenDiskFile(const char* path) {
    if (!path || !IsOnDisk(path)) return INVALID_HANDLE_VALUE;
    UniqueHandle file(
        CreateFileA(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return IsOpen(file) && GetFileType(file.get()) == FILE_TYPE_DISK ? file.release() : INVALID_HANDLE_VALUE;
}

int WINAPI IsDirectoryPath(const char* path) {
    const DWORD attributes = QuietAttributes(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

int WINAPI IsFilePath(const char* path) {
    const DWORD attributes = QuietAttributes(path);
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

// Reads the file into a locked block of exactly its size, which is all zero; false when it cannot be read whole.
static bool ReadWhole(HANDLE file, HGLOBAL block, DWORD size) {
    auto* bytes = static_cast<volatile char*>(GlobalLock(block));
    if (!bytes) return false;
    // A page that is written to first is mapped once. A system that looks at the buffer before it reads maps a page of
    // zeros, and another one as soon as that is written to: nearly half of a big file's load.
    constexpr DWORD kPageSize = 4096;
    for (DWORD at = 0; at < size; at += std::min(kPageSize, size - at)) bytes[at] = 0;
    DWORD count = 0;
    if (ReadFile(file, const_cast<char*>(bytes), size, &count, nullptr) && count == size) return true;
    GlobalUnlock(block);
    return false;
}

HGLOBAL LoadOpenFile(HANDLE file) {
    DWORD sizeHigh = 0;
    const DWORD size = GetFileSize(file, &sizeHigh);
    if (sizeHigh != 0 || size == INVALID_FILE_SIZE) return nullptr;
    if (SetFilePointer(file, 0, nullptr, FILE_BEGIN) != 0) return nullptr;
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size);
    if (!block) return nullptr;
    if (ReadWhole(file, block, size)) return block;
    GlobalFree(block);
    return nullptr;
}

HGLOBAL WINAPI LoadFileToGlobal(const char* path) {
    if (!IsFilePath(path)) return nullptr;
    const UniqueHandle file(OpenDiskFile(path));
    return IsOpen(file) ? LoadOpenFile(file.get()) : nullptr;
}

// ---- Workers

std::atomic<std::int32_t> PreviewCancelFlag = 0;
std::atomic<unsigned> PreviewCancelStores = 0;

int WINAPI PreviewCancel(int value) {
    if (value != 0 && value != 1) return PreviewCancelFlag.load(std::memory_order_relaxed);
    ++PreviewCancelStores;
    return PreviewCancelFlag.exchange(value);
}

namespace {

struct ThreadStart {
    HMODULE module;
    void (*work)(void*);
    void* argument;
};

DWORD WINAPI ModuleThread(void* parameter) {
    const ThreadStart start = *static_cast<ThreadStart*>(parameter);
    delete static_cast<ThreadStart*>(parameter);
    Guarded(0, [&] { return start.work(start.argument), 0; });
    FreeLibraryAndExitThread(start.module, 1);
}

}  // namespace

bool StartModuleThread(void (*work)(void*), void* argument) {
    std::unique_ptr<ThreadStart> start(new (std::nothrow) ThreadStart{nullptr, work, argument});
    if (!start || !GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCSTR>(&ModuleThread),
                                      &start->module)) {
        return false;
    }
    const HMODULE module = start->module;
    const UniqueHandle thread(CreateThread(nullptr, 0, ModuleThread, start.get(), 0, nullptr));
    if (!thread) {
        FreeLibrary(module);
        return false;
    }
    (void)start.release();  // the thread's own now
    return true;
}

static void RunWorker(void* argument) {
    struct Ending {
        Worker& worker;
        ~Ending() { worker.runs = false; }  // its owner may be gone from here on
    };
    const Ending ending = {*static_cast<Worker*>(argument)};
    ending.worker.work(ending.worker.argument);
}

bool StartWorker(Worker* worker, void (*work)(void*), void* argument) {
    worker->work = work;
    worker->argument = argument;
    worker->stopRequested = false;
    worker->runs = true;
    if (StartModuleThread(RunWorker, worker)) return true;
    worker->runs = false;
    return false;
}

void StopWorkerAndPump(Worker* worker, HWND dialog) {
    bool quit = false;
    WPARAM exitCode = 0;
    worker->stopRequested = true;
    while (worker->runs) {
        PreviewCancel(0);  // on every pass: a reader that has just started raises the flag itself
        MSG message;
        if (!PeekMessageA(&message, dialog, 0, 0, PM_REMOVE)) {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 1, QS_ALLINPUT);
            continue;
        }
        if (message.message == WM_QUIT) {
            quit = true;
            exitCode = message.wParam;
            continue;
        }
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    if (quit) PostQuitMessage(static_cast<int>(exitCode));
}
