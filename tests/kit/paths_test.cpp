#include "kit/paths.h"

#include <gtest/gtest.h>

TEST(Paths, TrailBackslashesAreNoSeparators) {
    const struct {
        const char* path;
        const char* extension;
        int lastBackslash;
    } cases[] = {
        // clang-format off
        {"part.dxf", ".dxf", -1}, {"C:\\a\\part", "", 4}, {"C:\\a.b\\part", "", 6}, {"a.b/part", "", -1},
        {"a.tar.gz", ".gz", -1}, {"part.", ".", -1}, {"", "", -1}, {"C:\\", "", 2}, {"C:.x", ".x", -1},
        {"\x83\x5c.dxf", ".dxf", -1}, {"C:\\\x83\x5c", "", 2}, {"a.\x83\x5c", ".\x83\x5c", -1},  // katakana so
        {"C:\\\x95\x5c\\\x94\x5c.txt", ".txt", 5}, {"\xb1\\b.c", ".c", 1}, {"a.b\x83", ".b\x83", -1},
        // clang-format on
    };
    for (const auto& c : cases) {
        EXPECT_STREQ(FindExtension(c.path), c.extension) << c.path;
        const char* found = FindLastBackslash(c.path);
        EXPECT_EQ(found ? found - c.path : -1, c.lastBackslash) << c.path;
    }
}

TEST(Paths, Join) {
    const struct {
        const char *folder, *name, *path;
    } cases[] = {
        {"", "a", "a"},
        {"C:", "a", "C:a"},
        {"C:\\", "a", "C:\\a"},
        {"C:\\b", "a", "C:\\b\\a"},
        {"b", "\\a", "\\a"},
        {"b", "D:a", "D:a"},
        {"b", "/a", "/a"},
        {"b", "", "b\\"},
        {"\x83\x5c", "a", "\x83\x5c\\a"},
    };
    for (const auto& c : cases) EXPECT_EQ(JoinPath(c.folder, c.name), c.path) << c.folder << " " << c.name;
}
