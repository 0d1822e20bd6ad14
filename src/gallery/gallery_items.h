// The list behind the gallery: which files it shows and the thumbnails made for them so far.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

// Bits of GalleryItem::flags.
constexpr unsigned kItemSelected = 1;
constexpr unsigned kItemFinished = 128;  // the thumbnail has been tried

// One file. The dialog changes the selected bit, the worker the rest.
struct GalleryItem {
    char name[256] = "";  // without the folder, or as the caller has listed it
    std::atomic<unsigned> flags = 0;
    std::atomic<std::size_t> bitsSize = 0;  // bytes of the thumbnail, 0 if there is none yet; set after `bits`
    const std::uint8_t* bits = nullptr;     // in the pool
};

struct GalleryItems {
    std::unique_ptr<GalleryItem[]> array;
    int count = 0;

    GalleryItem& operator[](int index) const { return array[static_cast<std::size_t>(index)]; }
};

// The files of `folder` (empty: the current directory) that match one of the patterns, which are separated by ";",
// sorted by name without regard to case. False when memory runs out, as below.
bool ListFolder(GalleryItems* items, const char* folder, const char* patterns);

// Names that each end with NUL, the list with one more, in their order; each is cut at 255 bytes.
bool ListNames(GalleryItems* items, const char* names);

// Marks the items whose name equals `name` without regard to case as selected; returns the last one's index, or -1.
int SelectByName(const GalleryItems& items, const char* name);
