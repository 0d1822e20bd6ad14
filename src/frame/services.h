// What every dialog of the library uses: resource strings, window placement, path tests, whole-file loading, the
// preview cancel flag and the pump of the wait loops. Nothing here reports an error in words.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

// A resource string through the process-wide cache; null when the module has none of that id, or an empty one.
// The text, at most 126 characters, stays valid until the cache is flushed: copy it or use it at once.
// A null module tears the cache down. User-interface thread only; workers use CopyResString.
const char* WINAPI LoadResString(HINSTANCE module, UINT id);

// A resource string of this library, straight from the resources: safe on any thread. At most size - 1 bytes, always
// ended; an empty text when there is none.
void CopyResString(UINT id, char* out, std::size_t size);

// Centres a window over its parent, or over the desktop when it has none or the parent is minimised, and keeps it on
// the screen; left and top win. A rectangle replaces the window's own size. 0 for a null window, else 1.
int WINAPI CenterWindow(HWND window, const RECT* rect);

// The window's top left corner in screen coordinates and its outer size; either may be null. 0 for a null window or
// when both are null, else 1.
int WINAPI GetWindowPosSize(HWND window, POINT* position, SIZE* size);

// 1 when the path names an existing directory, or an existing file that is none; else 0. A drive without a medium
// gives 0 without the system's error box.
int WINAPI IsDirectoryPath(const char* path);
int WINAPI IsFilePath(const char* path);

// Opens a file for reading; INVALID_HANDLE_VALUE when the path names none, or something that is no file on a disk.
HANDLE OpenDiskFile(const char* path);

// The whole file in movable, zero-initialised global memory, locked once: the caller ends with GlobalUnlock and
// GlobalFree. Null when it is no file, is empty, cannot be read whole, or does not fit the memory.
HGLOBAL WINAPI LoadFileToGlobal(const char* path);

// The same for a file that is open, from its start.
HGLOBAL LoadOpenFile(HANDLE file);

// The one value that the dialogs share with their workers: 1 lets the running reader go on, all else stops it.
// Value 0 or 1 stores it and returns the value before; any other value only reads.
int WINAPI PreviewCancel(int value);
extern std::atomic<std::int32_t> PreviewCancelFlag;  // for the readers' loops, which ask it millions of times

// How often the flag has been stored. A reader stores it twice, so one that finds more has shared it with somebody: its
// run may have been stopped by a word that was meant for another.
extern std::atomic<unsigned> PreviewCancelStores;
constexpr unsigned kReaderStores = 2;

// A dialog's worker thread, of which there is at most one at a time. Whoever owns the record keeps it until `runs` is
// clear.
struct Worker {
    std::atomic<bool> runs = false;           // until the thread has said its last word
    std::atomic<bool> stopRequested = false;  // asked by a worker that does several things one after the other
    void (*work)(void*) = nullptr;
    void* argument = nullptr;
};

// Runs `work(argument)` on a thread of its own; the worker must not run. False when no thread could be made; `work`
// then never runs.
bool StartWorker(Worker* worker, void (*work)(void*), void* argument);

// Asks the worker to stop, stops its reader, and keeps the dialog's messages flowing until it has ended: what it sends
// the dialog must be answered. So any handler may run meanwhile. A WM_QUIT that passes by is posted again at the end.
void StopWorkerAndPump(Worker* worker, HWND dialog);

// Starts a thread that holds this module in memory until it has left it, so a host may unload the library as soon as
// the worker has said that it has finished. False when no thread could be made; `work` then never runs.
bool StartModuleThread(void (*work)(void*), void* argument);
