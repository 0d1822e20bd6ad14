// Bounded views of bytes. Every number that comes out of a file is read through here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

// Borrowed bytes: never freed, never grown.
struct ByteView {
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;
};

// Copies the little-endian value at `offset` to `out`; false, with `out` untouched, when it is not wholly inside.
template <typename T>
bool ReadAt(ByteView bytes, std::size_t offset, T* out) {
    static_assert(std::is_trivially_copyable_v<T>);
    if (offset > bytes.size || bytes.size - offset < sizeof(T)) return false;  // offset + sizeof(T) could wrap
    std::memcpy(out, bytes.data + offset, sizeof(T));
    return true;
}

// True when the `length` characters of `text` stand at `offset`.
inline bool MatchAt(ByteView bytes, std::size_t offset, const char* text, std::size_t length) {
    return offset <= bytes.size && bytes.size - offset >= length && std::memcmp(bytes.data + offset, text, length) == 0;
}

template <std::size_t N>
bool MatchAt(ByteView bytes, std::size_t offset, const char (&text)[N]) {
    return MatchAt(bytes, offset, text, N - 1);
}
