// How many objects of the system this process holds.
#pragma once

struct HandleCounts {
    int gdi;     // pens, bitmaps, device contexts ...
    int user;    // windows and menus
    int kernel;  // files, threads, events ...
};

HandleCounts CountHandles();
