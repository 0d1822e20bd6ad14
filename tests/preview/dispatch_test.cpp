#include "preview/dispatch.h"

#include <gtest/gtest.h>

#include "support/guard_block.h"
#include "support/picture.h"
#include "support/resource_module.h"
#include "support/samples.h"
#include "support/temp_folder.h"

static const RECT kTarget = {0, 0, 60, 40};

// A file as the pane shows it: its picture and its comment.
static std::pair<std::string, std::string> ShowInPane(const std::string& path) {
    char comment[1024] = "";
    const PreviewReader reader = PaneReaderFor(IdentifyFileType(path.c_str(), nullptr, 0));
    if (!reader) return {};
    const std::string picture = TakePicture(reader(kRenderColor, path.c_str(), &kTarget, comment, sizeof(comment)));
    return {picture, comment};
}

TEST(Dispatch, KindsWithoutPreview) {
    for (const int code : {-1, 22, 27, 1000, -1000})
        EXPECT_FALSE(PaneReaderFor(static_cast<FileTypeCode>(code))) << code;
    for (const FileTypeCode code : {FT_EXE, FT_DLL, FT_BMP}) EXPECT_FALSE(GalleryReaderFor(code)) << code;
}

TEST(Dispatch, PaneContents) {
    const TempFolder folder;
    const std::string text(4999, 'a');
    const std::string bitmap =
        BitmapFile(2, 2, 24, "", std::string("\0\0\0\xff\xff\xff\0\0\xff\xff\xff\0\0\0\0\0", 16));
    WriteResourceModule(folder.At("some.dll"), 0, {}, 7, 8, 9, 10);
    const struct {
        std::string path, picture, comment;
    } cases[] = {
        // clang-format off
        {folder.Write("a.txt", "one\r\ntwo\n\n"), "", "one\r\ntwo\n"},  // the last byte goes
        {folder.Write("b.txt", text + "\n"), "", text.substr(0, 1023)}, {folder.Write("c.txt", "x"), "", ""},
        {folder.Write("d.txt", ""), "", ""}, {folder.Write("e.nc", "G90\nG01 X1\n"), "", ""},
        {folder.Write("f.bmp", bitmap), Picture(".#", "#."), ""},  // its own size
        {folder.Write("g.bmp", bitmap.substr(0, 60)), "", ""}, {folder.At("some.dll"), "", "Version 7.8.9"},
        {folder.Write("h.exe", "MZ"), "", ""}, {folder.Write("i.xyz", std::string("\0", 1)), "", ""},
        // clang-format on
    };
    for (const auto& c : cases) EXPECT_EQ(ShowInPane(c.path), std::pair(c.picture, c.comment)) << c.path;
    for (const DWORD size : {1, 2, 5, 14}) {
        const GuardBlock comment(size);
        PaneReaderFor(FT_DLL)(0, folder.At("some.dll").c_str(), &kTarget, comment.Text(), size);
        EXPECT_EQ(std::string("Version 7.8.9").substr(0, size - 1), comment.Text());
    }
}
