#include "preview/dispatch.h"

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
