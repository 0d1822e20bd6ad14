// Opens a dialog on the test's thread and drives it with messages from a timer, as a user would with the mouse.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

// One step with the dialog that is in front (the thread's enabled top-level dialog). It is called again and again until
// it returns true, so a step that waits returns false while its condition does not hold.
using DialogStep = std::function<bool(HWND dialog)>;

// Calls `open`, which shows modal dialogs, and takes the steps one after another while it runs; returns its result.
// A step that never comes true or is left over when the dialogs are gone fails the test; the dialogs are then
// cancelled.
unsigned RunDialog(const std::function<unsigned()>& open, std::vector<DialogStep> steps);

// Steps.
DialogStep Press(int buttonId);             // posts the button's command
DialogStep TypeFileName(std::string text);  // into the file-name field of a file dialog
DialogStep SelectFile(std::string name);    // in the list of an Explorer-style dialog, as soon as it is listed there
DialogStep Check(std::function<void(HWND dialog)> look);

// Selects a line of a list box as a user does: the list box tells its dialog.
void SelectLine(HWND dialog, int listId, int line, int notification = LBN_SELCHANGE);

// A control by its id anywhere below the dialog; null when there is none.
HWND FindControl(HWND dialog, int id);
HWND FileNameField(HWND dialog);  // of a file dialog of either style; null when the dialog is none
std::string WindowText(HWND window);
std::string ControlText(HWND dialog, int id);

// The picture and the comment of the preview pane.
struct PaneContents {
    std::string picture, comment;
};
PaneContents ReadPane(HWND dialog);
