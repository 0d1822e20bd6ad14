// A tour through the dialogs that drives itself and takes a picture at each stop.
#pragma once

#include <functional>

#include "host.h"

// Calls `showHost`, which shows the host's window, and goes through its dialogs; prints the name of each picture as it
// is taken, and closes the host at the end. Returns the program's exit code: 0 when all pictures were taken, else 1.
int TakeTour(const std::function<void()>& showHost, const Options& options);
