#include "gallery/gallery_items.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "kit/handles.h"
#include "kit/paths.h"

static bool MakeItems(GalleryItems* items, const std::vector<std::string>& names) {
    items->array.reset(new (std::nothrow) GalleryItem[names.size()]);
    if (!items->array) return false;
    items->count = 0;
    for (const std::string& name : names)
        lstrcpynA((*items)[items->count++].name, name.c_str(), sizeof(GalleryItem::name));
    return true;
}

static void ListPattern(const char* folder, const std::string& pattern, std::vector<std::string>* names) {
    WIN32_FIND_DATAA found;
    const UniqueFind search(FindFirstFileA(JoinPath(folder, pattern.c_str()).c_str(), &found));
    if (search.get() == INVALID_HANDLE_VALUE) return;
    do {
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) names->push_back(found.cFileName);
    } while (FindNextFileA(search.get(), &found));
}

bool ListFolder(GalleryItems* items, const char* folder, const char* patterns) {
    std::vector<std::string> names;
    while (*patterns) {
        patterns += std::strspn(patterns, "; ");
        const std::size_t length = std::strcspn(patterns, ";");
        if (length > 0) ListPattern(folder, std::string(patterns, length), &names);
        patterns += length;
    }
    std::sort(names.begin(), names.end(),
              [](const std::string& a, const std::string& b) { return lstrcmpiA(a.c_str(), b.c_str()) < 0; });
    return MakeItems(items, names);
}

bool ListNames(GalleryItems* items, const char* names) {
    std::vector<std::string> list;
    for (; *names; names += std::strlen(names) + 1) list.push_back(names);
    return MakeItems(items, list);
}

int SelectByName(const GalleryItems& items, const char* name) {
    int last = -1;
    for (int i = 0; i < items.count; ++i) {
        if (lstrcmpiA(items[i].name, name) != 0) continue;
        items[i].flags |= kItemSelected;
        last = i;
    }
    return last;
}
