// The classic directory dialog: the system's old-style file dialog, with only its directories and drives in sight.
#pragma once

#include <windows.h>

// Runs the dialog.
//   title      caption; null: the template's own
//   directory  KW_MAX_PATH bytes; in: the starting directory; out, on OK: the chosen one, with a trailing backslash
// Returns TRUE for OK; FALSE, with `directory` unchanged, for Cancel and when the dialog could not be shown. Moves the
// process's current directory.
BOOL SelectDirectoryClassic(HWND owner, const char* title, char* directory);
