#include "filesel/file_line.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <tuple>

#include "kwdialogs.h"
#include "support/cases.h"

static WIN32_FIND_DATAA File(const char* name, std::uint64_t size = 0, std::uint64_t time = 0) {
    WIN32_FIND_DATAA file = {};
    lstrcpyA(file.cFileName, name);
    file.nFileSizeHigh = static_cast<DWORD>(size >> 32);
    file.nFileSizeLow = static_cast<DWORD>(size);
    file.ftLastWriteTime = {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
    return file;
}

TEST(FileLine, Order) {
    constexpr std::uint64_t kBig = std::uint64_t{1} << 32;
    const std::tuple<DWORD, WIN32_FIND_DATAA, WIN32_FIND_DATAA, int> cases[] = {
        // clang-format off
        {0, File("a", 1, 1), File("b", 2, 2), 0},
        {KW_SORT_NAME, File("B"), File("a"), -1}, {KW_SORT_NAME, File("a"), File("\x83\x5c"), -1},  // capitals first
        {KW_SORT_EXTENSION, File("z"), File("a.dxf"), -1}, {KW_SORT_EXTENSION, File("a"), File("b"), 0},
        {KW_SORT_EXTENSION, File("a.z.dxf"), File("a.txt"), -1}, {KW_SORT_SIZE, File("a", kBig), File("b", kBig - 1), 1},
        {KW_SORT_DATE, File("a", 0, kBig - 1), File("b", 0, kBig), -1},
        {KW_SORT_NAME | KW_SORT_SIZE, File("a", 9), File("b", 1), -1},  // names differ: sizes do not count
        {KW_SORT_SIZE | KW_SORT_DATE, File("a", 5, 1), File("b", 5, 2), -1},
        {KW_SORT_SIZE | KW_SORT_DESCENDING, File("a", 1), File("b", 2), 1},
        // clang-format on
    };
    for (const auto& [sort, a, b, expected] : cases) {
        const int order = CompareFiles(a, b, sort);
        EXPECT_EQ((order > 0) - (order < 0), expected) << sort << " " << a.cFileName << " " << b.cFileName;
    }
}

TEST(FileLine, Texts) {
    for (const auto& row : TableRows("filesel/sizes.txt", "sizes")) {
        const auto number = static_cast<DWORD>(std::stoull(row[0]));
        EXPECT_EQ(FormatDriveSize(number), row[1]);
        EXPECT_EQ(FormatThousands(number), row[2]);
    }
}

// A time of local clocks as a file has it.
static std::uint64_t LocalTime(WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second) {
    const SYSTEMTIME at = {year, month, 0, day, hour, minute, second, 0};
    FILETIME local, time;
    SystemTimeToFileTime(&at, &local);
    LocalFileTimeToFileTime(&local, &time);
    return static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
}

TEST(FileLine, Lines) {
    const std::uint64_t time = LocalTime(2004, 3, 9, 7, 5, 1), old = LocalTime(1999, 12, 31, 23, 59, 58);
    const std::tuple<WIN32_FIND_DATAA, DWORD, const char*> cases[] = {
        {File("a.dxf", 1234567, time), 0, "a.dxf"},
        {File("a b.dxf", 1234567, time), 0, "a b.dxf\t"},  // so that a selection is not cut at the blank
        {File("a.dxf", 1, time), KW_SHOW_DATE | KW_SHOW_TIME, "a.dxf\t04/03/09\t07:05:01"},
        {File("a.dxf", 1, old), KW_SHOW_SIZE | KW_SHOW_DATE | KW_SHOW_TIME, "a.dxf\t1\t99/12/31\t23:59:58"},
        {File("a.dxf", 1, LocalTime(1850, 1, 1, 0, 0, 0)), KW_SHOW_DATE, "a.dxf\t1850/01/01"},
    };
    for (const auto& [file, display, line] : cases) EXPECT_EQ(FormatFileLine(file, display), line);
}
