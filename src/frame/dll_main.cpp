// The DLL's own entry: gives back what the process keeps for the library when a host unloads it.
#include <windows.h>

#include "frame/services.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds);

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
    if (reason == DLL_PROCESS_DETACH && !processEnds) LoadResString(nullptr, 0);  // empties the string cache
    return TRUE;
}
