// Dialogs run from a table: the dialog procedure, and what a host or a callback may ask of a dialog that runs.
//
// Setting up again and storing are in items.h, checking fields in field_value.h, the number format in value_format.h.
#pragma once

#include <windows.h>

#include "kwdialogs.h"

// Runs a modal dialog; see kwDlgBoxCtrl.
int RunControlledDialog(HINSTANCE instance, const char* templateName, HWND owner, DialogItem* items, int itemCount,
                        DialogCallback callback);

// Gives the focus to a control of the dialog and selects its text. 0 when there is no such control, else 1.
int FocusControl(HWND dialog, int controlId);

// The host's table of a running dialog; null when the window is none.
DialogItem* ItemTable(HWND dialog);
