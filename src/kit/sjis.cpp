#include "kit/sjis.h"

#include <cstring>

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

const char* FindFileName(const char* path) {
    const char* name = path;
    ForEachSingleByte(path, [&](const char* at) {
        if (*at == '\\' || *at == '/' || *at == ':') name = at + 1;
    });
    return name;
}

const char* FindExtension(const char* path) {
    const char* const name = FindFileName(path);
    const char* dot = nullptr;
    ForEachSingleByte(name, [&](const char* at) {
        if (*at == '.') dot = at;
    });
    return dot ? dot : name + std::strlen(name);
}
