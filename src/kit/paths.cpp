#include "kit/paths.h"

#include <cstring>

#include "kit/code_page.h"

// Calls `visit` for every single-byte character of a path.
template <typename Visitor>
static void ForEachSingleByte(const char* path, Visitor visit) {
    while (*path) {
        if (IsSystemLeadByte(static_cast<std::uint8_t>(*path)) && path[1]) {
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

static bool IsSeparator(char c) { return c == '\\' || c == '/'; }

std::string JoinPath(const char* folder, const char* name) {
    if (!folder[0] || IsSeparator(name[0]) || (name[0] && name[1] == ':')) return name;
    const bool isEnded = *FindFileName(folder) == '\0';  // "C:\\" and "C:" need no separator
    return std::string(folder) + (isEnded ? "" : "\\") + name;
}
