// Rows of lists that the system draws.
#pragma once

#include <windows.h>

// Gives the rows of an owner-drawn list box or combo box at least the height of its font: some systems make them as
// high as their pictures, which stay small on a screen of a high resolution.
void FitListRows(HWND listBox);
void FitComboRows(HWND comboBox);
