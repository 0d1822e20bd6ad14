// What kwpreview says about a file.
#pragma once

#include <string>

#include "arguments.h"
#include "render.h"

// Prints to stdout the picture or why there is none, then kind and comment as the options ask for them.
void PrintReport(const Options& options, const std::string& input, const std::string& png, const Preview& preview);

// With more than one file, prints to stdout how many have a picture.
void PrintSummary(std::size_t pictures, std::size_t inputs);

// The line on stderr that says how far a long run is: rewritten in place on a console, elsewhere printed a few times.
struct Progress {
    const std::size_t count;
    std::size_t shown = 0;  // characters of the line that stands on the console
    explicit Progress(std::size_t inputs) : count(inputs) {}
    void Show(std::size_t number, const std::string& input);
    void Clear();  // before anything else is printed
};
