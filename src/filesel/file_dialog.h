// The system's open/save dialog in two dresses. Both write filterIndex back in every case and return the common
// dialog's result; the caller saves and restores the current directory.
#pragma once

#include <windows.h>

#include "kwdialogs.h"

// The old-style dialog on template 108, with sort and column options; writes the option words back too.
BOOL SelectFileClassic(HWND owner, int modeBits, SelectRequest* request);

// The Explorer-style dialog, with the preview pane (KW_FILE_PREVIEW) or without.
BOOL SelectFileExplorer(HWND owner, int modeBits, SelectRequest* request);
