// The preview pane of the Explorer-style file dialog: template 118, its hook and its worker thread.
#pragma once

#include <windows.h>

// Hook procedure for OPENFILENAMEA::lpfnHook with the pane's template. lCustData: further bits of the readers'
// renderMode.
UINT_PTR CALLBACK PreviewHook(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
