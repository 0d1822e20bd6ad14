#include "kit/file_version.h"

#include <gtest/gtest.h>

#include "support/temp_folder.h"

// A program of one section, whose version resource claims to be of that size.
static std::string ProgramWithVersion(std::uint32_t size) {
    const auto entry = [](std::uint32_t id, std::uint32_t offset) {  // a folder of one resource
        return std::string(12, '\0') + Raw(std::uint32_t{0x10000}) + Raw(id) + Raw(offset);
    };
    return BytesAt(1024, {{0, "MZ"},
                          {60, Raw(64)},
                          {64, "PE"},
                          {68, "\x4C\x01\x01"},
                          {84, std::string("\xE0\0\x02\x21", 4)},
                          {88, "\x0B\x01"},
                          {120, Raw(0x1000) + Raw(0x200)},  // sections in memory and in the file begin at multiples of
                          {144, Raw(0x2000) + Raw(0x200)},  // size in memory, of the headers
                          {180, Raw(16)},
                          {200, Raw(0x1000) + Raw(0x200)},  // the resources
                          {312, ".rsrc"},
                          {320, Raw(0x1000) + Raw(0x1000) + Raw(0x200) + Raw(0x200)},
                          {512, entry(16, 0x80000018)},
                          {536, entry(1, 0x80000030)},
                          {560, entry(0, 0x48)},
                          {584, Raw(0x1058) + Raw(size)}});
}

TEST(FileVersion, AResourceIsNotLargerThanItsFile) {
    const TempFolder folder;
    const std::string path = folder.Write("small.exe", ProgramWithVersion(0x50000000));
    DWORD ignored = 0;
    EXPECT_GT(GetFileVersionInfoSizeA(path.c_str(), &ignored), 0x10000000u) << "what the system says" << GetLastError();
    VS_FIXEDFILEINFO version = {};
    EXPECT_FALSE(ReadFileVersion(path.c_str(), &version));
    char system[MAX_PATH] = "";
    GetSystemDirectoryA(system, MAX_PATH);
    EXPECT_TRUE(ReadFileVersion((std::string(system) + "\\version.dll").c_str(), &version));
}
