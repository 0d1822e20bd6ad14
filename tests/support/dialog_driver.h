// The robot that drives dialogs (tools/), with what the tests of this library's dialogs ask of it besides.
#pragma once

#include "dialog_robot.h"

// Calls `open`, which shows modal dialogs, and takes the steps while it runs; returns its result. The test fails when a
// step never comes true or is left over, or when the dialog leaves another current directory.
unsigned RunDialog(const std::function<unsigned()>& open, std::vector<DialogStep> steps);

// Sends a list box a message.
LRESULT InList(HWND dialog, int listId, UINT message, WPARAM wParam = 0, const void* parameter = nullptr);

DialogStep TypeFileName(const std::string& text);  // into the file-name field of a file dialog
HWND FileNameField(HWND dialog);                   // of a file dialog of either style; null when the dialog is none

// The picture and the comment of the preview pane.
struct PaneContents {
    std::string picture, comment;
};
PaneContents ReadPane(HWND dialog);
