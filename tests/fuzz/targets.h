// The doors that bytes come through, each as a function that takes any bytes. What it finds wrong ends the program, as
// a sanitizer's finding does.
#pragma once

#include "kit/bytes.h"

struct FuzzTarget {
    const char* name;
    void (*run)(ByteView input);
    std::size_t longest;  // inputs are not made longer
};

extern const FuzzTarget kFuzzTargets[];
extern const std::size_t kFuzzTargetCount;
