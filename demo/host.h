// What the demo's host window and its self-driving tour know of each other.
#pragma once

#include <windows.h>

// How the program was started.
struct Options {
    char samples[MAX_PATH];  // folder that the dialogs start in
    char shots[MAX_PATH];    // folder for the pictures of the tour; empty: interactive
    char language[8];        // end of each picture's name: en, ja
};
