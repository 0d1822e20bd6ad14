// The module that this code is linked into: the DLL for a host, the program itself for tests and tools.
#pragma once

#include <windows.h>

extern "C" IMAGE_DOS_HEADER __ImageBase;

inline HINSTANCE ThisModule() { return reinterpret_cast<HINSTANCE>(&__ImageBase); }
