#include "kit/paths.h"

#include <gtest/gtest.h>

#include <tuple>

#include "kit/code_page.h"

TEST(Paths, TrailBackslashesAreNoSeparators) {
    const std::tuple<const char*, const char*, int> cases[] = {
        // clang-format off
        {"C:\\a.b\\part", "", 6}, {"a.b/part", "", -1}, {"a.tar.gz", ".gz", -1}, {"part.", ".", -1}, {"", "", -1},
        {"\x83\x5c.dxf", ".dxf", -1}, {"C:\\\x83\x5c", "", 2}, {"a.\x83\x5c", ".\x83\x5c", -1},  // katakana so
        {"C:\\\x95\x5c\\\x94\x5c.txt", ".txt", 5}, {"\xb1\\b.c", ".c", 1}, {"a.b\x83", ".b\x83", -1},
        // clang-format on
    };
    const bool isJapanese = IsSystemLeadByte(0x83);
    for (const auto& [path, extension, lastBackslash] : cases) {
        if (!isJapanese && std::string(path).find_first_of("\x83\x95") != std::string::npos) continue;
        EXPECT_STREQ(FindExtension(path), extension) << path;
        const char* found = FindLastBackslash(path);
        EXPECT_EQ(found ? found - path : -1, lastBackslash) << path;
    }
}

TEST(Paths, Join) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        // clang-format off
        {"", "a", "a"}, {"C:", "a", "C:a"}, {"C:\\b", "a", "C:\\b\\a"}, {"b", "D:a", "D:a"}, {"b", "/a", "/a"},
        {"Ren\xb1", "a", "Ren\xb1\\a"},
        // clang-format on
    };
    for (const auto& [folder, name, path] : cases) EXPECT_EQ(JoinPath(folder, name), path) << folder << " " << name;
}
