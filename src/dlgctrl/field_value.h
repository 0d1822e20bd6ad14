// Numeric fields: the check of a field that has been edited, and the steps of its spin button. The host's variables are
// read and written by items.h alone.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include "dlgctrl/number_type.h"
#include "kwdialogs.h"

// Null when the value type holds no number.
const NumberType* FindNumberType(DWORD valueType);

// The edit-field check of one item, or of all edit fields when the index is -1: evaluates the field's text, forces it
// into the range and shows it in the item's format; text fields stay as they are. The host's variable is not touched.
// 1 when done; 0, at the first field that fails, without a control or a value address, and without a dialog.
int CheckFields(HWND dialog, int index);

// A step of the spin button: when it belongs to a field of the dialog, moves the value by one, up or down.
void StepField(HWND dialog, NMUPDOWN* step);

// Gives the focus to a control and selects its text.
void FocusField(HWND field);
