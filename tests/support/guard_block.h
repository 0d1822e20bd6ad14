// Memory that ends where reading ends: one byte too far is an access violation, not luck.
#pragma once

#include <cstddef>
#include <string>

#include "kit/bytes.h"

struct GuardBlock {
    std::uint8_t* data = nullptr;  // `size` bytes; the one behind them is unreadable
    std::size_t size = 0;
    explicit GuardBlock(std::size_t bytes);
    explicit GuardBlock(const std::string& contents);
    ~GuardBlock();
    GuardBlock(const GuardBlock&) = delete;
    GuardBlock& operator=(const GuardBlock&) = delete;
    ByteView View() const { return {data, size}; }
    char* Text() const { return reinterpret_cast<char*>(data); }

private:
    void* pages = nullptr;
};
