#include "support/guard_block.h"

#include <cstring>

static constexpr std::size_t kPageSize = 4096;

GuardBlock::GuardBlock(std::size_t bytes) : size(bytes) {
    const std::size_t readable = (bytes + kPageSize - 1) / kPageSize * kPageSize;
    pages = VirtualAlloc(nullptr, readable + kPageSize, MEM_RESERVE, PAGE_NOACCESS);
    if (readable) VirtualAlloc(pages, readable, MEM_COMMIT, PAGE_READWRITE);
    data = static_cast<std::uint8_t*>(pages) + readable - bytes;
}

GuardBlock::GuardBlock(const std::string& contents) : GuardBlock(contents.size()) {
    if (size) std::memcpy(data, contents.data(), size);
}

GuardBlock::~GuardBlock() { VirtualFree(pages, 0, MEM_RELEASE); }
