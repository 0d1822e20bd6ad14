// Items: setting controls up from the host's variables, and storing the controls' states into them.
#pragma once

#include <windows.h>

// Sets up one item of a dialog, or all when the index is -1. On a dialog that runs already this shows the variables'
// values again; spin buttons and pages that exist are kept.
// 1 when done; 0 at the first item that fails, with the ones before it set up, and when the dialog is gone.
int ConstructItems(HWND dialog, int index);

// Stores one item, or all when the index is -1. 1 when done; 0 at the first item that fails, with the ones before it
// stored, and when the dialog is gone.
int WriteBackItems(HWND dialog, int index);
