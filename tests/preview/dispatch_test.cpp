#include "preview/dispatch.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "support/resource_module.h"
#include "support/temp_folder.h"

TEST(Dispatch, WhatTheGalleryDoesNotShow) {
    for (const FileTypeCode code : {FT_EXE, FT_DLL, FT_BMP}) EXPECT_FALSE(GalleryReaderFor(code)) << code;
}

TEST(Dispatch, ProgramsShowTheirVersion) {
    const TempFolder folder;
    const std::string library = folder.At("some.dll");
    WriteResourceModule(library, 0, {}, 7, 8, 9, 10);
    char comment[100] = "";
    EXPECT_FALSE(PaneReaderFor(FT_DLL)(0, library.c_str(), nullptr, comment, sizeof(comment)));
    EXPECT_STREQ(comment, "Version 7.8.9");
}

TEST(IdentifyFileType, Files) {
    const TempFolder folder;
    char comment[] = "########";
    EXPECT_EQ(IdentifyFileType(folder.Write("a.dxf", "").c_str(), comment, 4), FT_DXF);
    EXPECT_EQ(std::string(comment, 8), std::string(4, '\0') + "####");
    EXPECT_EQ(IdentifyFileType(folder.Write("a", std::string(1024, 'a') + "\1").c_str(), nullptr, 0), FT_TEXT);
    const std::string locked = folder.Write("locked.txt", "x");
    const HANDLE owner = CreateFileA(locked.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    for (const char* name : {locked.c_str(), "missing.dxf", folder.path.c_str(), "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(IdentifyFileType(name, nullptr, 0), FT_UNREADABLE) << (name ? name : "null");
    CloseHandle(owner);
}
