#include "gallery/gallery_items.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "kit/paths.h"

static constexpr int kGrowth = 1024;

static bool Reserve(GalleryItems* items, int count) {
    if (count <= items->capacity) return true;
    const SIZE_T size = static_cast<SIZE_T>(items->capacity + kGrowth) * sizeof(GalleryItem);
    void* grown =
        items->array ? LocalReAlloc(items->array.get(), size, LMEM_MOVEABLE | LMEM_ZEROINIT) : LocalAlloc(LPTR, size);
    if (!grown) return false;
    (void)items->array.release();  // the block has moved
    items->array.reset(static_cast<GalleryItem*>(grown));
    items->capacity += kGrowth;
    return true;
}

bool AppendItem(GalleryItems* items, const char* name) {
    if (!Reserve(items, items->count + 1)) return false;
    lstrcpynA((*items)[items->count++].name, name, sizeof(GalleryItem::name));
    return true;
}

static bool ListPattern(GalleryItems* items, const char* folder, const std::string& pattern) {
    WIN32_FIND_DATAA found;
    const UniqueFind search(FindFirstFileA(JoinPath(folder, pattern.c_str()).c_str(), &found));
    if (search.get() == INVALID_HANDLE_VALUE) return true;
    do {
        const bool isDirectory = found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY;
        if (!isDirectory && !AppendItem(items, found.cFileName)) return false;
    } while (FindNextFileA(search.get(), &found));
    return true;
}

bool ListFolder(GalleryItems* items, const char* folder, const char* patterns) {
    while (*patterns) {
        patterns += std::strspn(patterns, "; ");
        const std::size_t length = std::strcspn(patterns, ";");
        if (length > 0 && !ListPattern(items, folder, std::string(patterns, length))) return false;
        patterns += length;
    }
    GalleryItem* const first = items->array.get();
    std::sort(first, first + items->count,
              [](const GalleryItem& a, const GalleryItem& b) { return lstrcmpiA(a.name, b.name) < 0; });
    return true;
}

bool ListNames(GalleryItems* items, const char* names) {
    for (; *names; names += std::strlen(names) + 1) {
        if (!AppendItem(items, names)) return false;
    }
    return true;
}

int SelectByName(GalleryItems* items, const char* name) {
    int last = -1;
    for (int i = 0; i < items->count; ++i) {
        if (lstrcmpiA((*items)[i].name, name) != 0) continue;
        InterlockedOr(&(*items)[i].flags, kItemSelected);
        last = i;
    }
    return last;
}
