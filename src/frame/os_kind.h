// Which generation of Windows, and with it of the shell, the process runs on.
#pragma once

#include <windows.h>

// Bits, so that one test answers for several systems.
constexpr int kOsWin32s = 1;
constexpr int kOsWindows9x = 2;
constexpr int kOsNt3 = 4;  // Windows NT below 4.0
constexpr int kOsNt4 = 8;  // Windows NT 4.0 and later
constexpr int kOsUnknown = -1;

// The kind of the running system; asked afresh on every call.
int WINAPI GetOsKind();

// The kind that belongs to GetVersionExA's answer.
int OsKindOf(DWORD platformId, DWORD majorVersion);

// Deliberate: an unknown system has every bit set and so counts as new. As an old one it would give its users the
// classic dialogs, which have no preview.
inline bool HasNewShell(int osKind) { return (osKind & (kOsWindows9x | kOsNt4)) != 0; }
