// Numeric fields: what each value type makes of a number or a text, the check of a field that has been edited, and the
// steps of its spin button. The host's variables are read and written by items.h alone.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>

#include "kwdialogs.h"

// A numeric value type. Numbers travel as double, which holds every value of every type.
struct NumberType {
    DWORD valueType;
    double (*load)(const void* variable);
    void (*store)(void* variable, double number);  // narrows
    double (*leading)(const char* text);           // the number at a text's start, as the type stores it
    double (*limit)(double number, double minimum, double maximum);  // with bounds of the type
    double (*shown)(double number);  // what a field shows of a number that has been typed
    double (*shownInRange)(double number, double minimum, double maximum);
    std::string (*format)(const char* format, double number);  // null format: the type's own
};

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
