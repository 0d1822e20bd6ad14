// How many objects of the system this process holds.
#pragma once

struct HandleCounts {
    int gdi;     // pens, bitmaps, device contexts ...
    int user;    // windows and menus
    int kernel;  // files, threads, events ...
};

HandleCounts CountHandles();

// Fails the test when the process holds more than `most` objects of a kind on top of `before`.
void ExpectNothingLeft(const HandleCounts& before, int most);

// Blocks in use in all heaps.
int CountHeapBlocks();
