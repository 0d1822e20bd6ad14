// A tour through the dialogs that drives itself and takes a picture at each stop.
#pragma once

#include <windows.h>

#include "host.h"

// Starts the tour over the host window; it goes on from a timer while the host and its dialogs run their message loops,
// prints the name of each picture as it is taken, and ends the host's dialog with 0 (all taken) or 1 (one failed).
// `options` must outlive the host. A tour that comes to a stop ends the process with exit code 3 and says where.
void StartTour(HWND host, const Options& options);
