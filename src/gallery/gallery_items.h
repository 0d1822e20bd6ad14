// The list behind the gallery: which files it shows and the thumbnails made for them so far.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

#include "kit/handles.h"

// Bits of GalleryItem::flags.
constexpr LONG kItemSelected = 1;
constexpr LONG kItemFinished = 128;  // the thumbnail has been tried

// One file. The dialog changes the selected bit, the worker the rest.
struct GalleryItem {
    char name[256];  // without the folder, or as the caller has listed it
    volatile LONG flags;
    volatile LONG bitsSize;    // bytes of the thumbnail, 0 if there is none yet; set after `bits`
    const std::uint8_t* bits;  // in the pool
};

struct GalleryItems {
    UniqueLocal<GalleryItem> array;
    int count = 0;
    int capacity = 0;

    GalleryItem& operator[](int index) const { return array.get()[index]; }
};

// Appends a name, cut at 255 bytes; false when memory runs out.
bool AppendItem(GalleryItems* items, const char* name);

// The files of `folder` (empty: the current directory) that match one of the patterns, which are separated by ";",
// sorted by name without regard to case. False when memory runs out.
bool ListFolder(GalleryItems* items, const char* folder, const char* patterns);

// Names that each end with NUL, the list with one more, in their order. False when memory runs out.
bool ListNames(GalleryItems* items, const char* names);

// Marks the items whose name equals `name` without regard to case as selected; returns the last one's index, or -1.
int SelectByName(GalleryItems* items, const char* name);
