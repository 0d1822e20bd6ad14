#include "support/guard_block.h"

#include <cstring>

#ifdef _WIN32
#include <windows.h>

static void* MapPages(std::size_t readable, std::size_t all) {
    void* const pages = VirtualAlloc(nullptr, all, MEM_RESERVE, PAGE_NOACCESS);
    if (readable) VirtualAlloc(pages, readable, MEM_COMMIT, PAGE_READWRITE);
    return pages;
}

static void UnmapPages(void* pages, std::size_t) { VirtualFree(pages, 0, MEM_RELEASE); }
#else
#include <cstdlib>

// Here a sanitizer guards what lies behind.
static void* MapPages(std::size_t readable, std::size_t) { return std::calloc(readable, 1); }
static void UnmapPages(void* pages, std::size_t) { std::free(pages); }
#endif

static constexpr std::size_t kPageSize = 4096;
static std::size_t ReadableSize(std::size_t bytes) { return (bytes + kPageSize - 1) / kPageSize * kPageSize; }

GuardBlock::GuardBlock(std::size_t bytes)
    : size(bytes), pages(MapPages(ReadableSize(bytes), ReadableSize(bytes) + kPageSize)) {
    data = static_cast<std::uint8_t*>(pages) + ReadableSize(bytes) - bytes;
}

GuardBlock::GuardBlock(const std::string& contents) : GuardBlock(contents.size()) {
    if (size) std::memcpy(data, contents.data(), size);
}

GuardBlock::~GuardBlock() { UnmapPages(pages, ReadableSize(size) + kPageSize); }
