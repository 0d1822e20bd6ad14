// The folder tree: a resizable dialog that lets the user pick a folder of the shell's namespace.
#pragma once

#include <windows.h>

// Runs the dialog.
//   title      caption; null: the template's own
//   directory  KW_MAX_PATH bytes; in: the starting directory, recognised by its trailing backslash; out, on OK: the
//              chosen one, with a trailing backslash. A folder without files gives the shell's name for it.
// Returns TRUE for OK; FALSE, with `directory` unchanged, for Cancel and when the dialog could not be shown.
BOOL SelectFolderTree(HWND owner, const char* title, char* directory);
