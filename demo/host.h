// What the demo's host window and its self-driving tour know of each other.
#pragma once

#include <string>

// How the program was started.
struct Options {
    std::string samples;   // folder that the dialogs start in
    std::string shots;     // folder for the pictures of the tour; empty: interactive
    std::string language;  // end of each picture's name: en, ja
};
