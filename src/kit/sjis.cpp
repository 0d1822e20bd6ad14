#include "kit/sjis.h"

#include <array>
#include <cstring>

namespace {

enum ByteClass : std::uint8_t { kOrdinary, kControl, kLead };

constexpr std::array<std::uint8_t, 256> MakeByteClasses() {
    std::array<std::uint8_t, 256> classes = {};
    for (unsigned byte = 0; byte < 256; ++byte) {
        if (byte < 32) classes[byte] = kControl;
        else if (IsLeadByte(static_cast<std::uint8_t>(byte))) classes[byte] = kLead;
    }
    return classes;
}
constexpr std::array<std::uint8_t, 256> kByteClasses = MakeByteClasses();

}  // namespace

bool TakeLine(LineWalk* walk, ByteView* line) {
    const std::uint8_t* const begin = walk->next;
    const std::uint8_t* const end = walk->end;
    if (begin >= end || *begin == 0) return false;
    const std::uint8_t* at = begin;
    for (;;) {
        while (at < end && kByteClasses[*at] == kOrdinary) ++at;
        if (at == end || *at < 32) break;
        at += end - at < 2 ? 1 : 2;  // a lead byte at the very end stands alone
    }
    *line = {begin, static_cast<std::size_t>(at - begin)};
    while (at < end && *at != 0 && *at < 32) ++at;
    walk->next = at;
    return true;
}

// Calls `visit` for every single-byte character of a path.
template <typename Visitor>
static void ForEachSingleByte(const char* path, Visitor visit) {
    while (*path) {
        if (IsLeadByte(static_cast<std::uint8_t>(*path)) && path[1]) {
            path += 2;
        } else {
            visit(path++);
        }
    }
}

const char* FindLastBackslash(const char* path) {
    const char* last = nullptr;
    ForEachSingleByte(path, [&](const char* at) {
        if (*at == '\\') last = at;
    });
    return last;
}

const char* FindExtension(const char* path) {
    const char* dot = nullptr;
    ForEachSingleByte(path, [&](const char* at) {
        if (*at == '.') dot = at;
        else if (*at == '\\' || *at == '/' || *at == ':') dot = nullptr;
    });
    return dot ? dot : path + std::strlen(path);
}
