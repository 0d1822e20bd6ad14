// Drives dialogs with messages from a timer, as a user would with the mouse: for the tests and the demo's tour.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

// One step with the dialog that is in front (the thread's enabled top-level dialog). It is called again and again until
// it returns true, so a step that waits returns false while its condition does not hold.
using DialogStep = std::function<bool(HWND dialog)>;

// Calls `open`, which shows modal dialogs on this thread, and takes the steps one after another while it runs. Cancels
// the dialogs that are left when the steps are over, or when one waits for too long. Empty when all steps were taken,
// else what went wrong.
std::string DriveDialogs(const std::function<void()>& open, std::vector<DialogStep> steps);

// Presses a button of the dialog or of a pane in it, as soon as there is one.
DialogStep Press(int buttonId);

// Selects a file in the list of an Explorer-style dialog, as soon as it is listed there.
DialogStep SelectFile(const std::string& name);

DialogStep Check(const std::function<void(HWND dialog)>& look);

// Waits until the condition has held for so long without a break.
DialogStep Lasts(const DialogStep& condition, DWORD milliseconds);

// Selects a line of a list box as a user does: the list box tells its dialog.
void SelectLine(HWND dialog, int listId, int line, int notification = LBN_SELCHANGE);

// A control by its id or class anywhere below the dialog; null when there is none.
HWND FindControl(HWND dialog, int id);
HWND FindControl(HWND dialog, const char* className);
std::string WindowText(HWND window);
std::string ControlText(HWND dialog, int id);
