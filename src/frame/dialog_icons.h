// The library's icon in the captions of its own dialogs.
#pragma once

#include <windows.h>

#include "kit/handles.h"

// The icons of one open dialog; its owner keeps them as long as the dialog lives.
struct DialogIcons {
    UniqueIcon large, small;
};

// For WM_INITDIALOG.
void ShowDialogIcons(HWND dialog, DialogIcons* icons);
