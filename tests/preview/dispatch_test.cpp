#include "preview/dispatch.h"

#include <gtest/gtest.h>

#include "support/guard_block.h"
#include "support/handle_counts.h"
#include "support/picture.h"
#include "support/resource_module.h"
#include "support/samples.h"
#include "support/temp_folder.h"

static const RECT kTarget = {0, 0, 60, 40};

struct Shown {
    std::string picture, comment;
};

// A file as the pane shows it: identified, given to its reader with a comment buffer that ends at a guard page.
static Shown ShowInPane(const std::string& path, std::size_t commentSize = 1024) {
    const GuardBlock comment(commentSize);
    const PreviewReader reader = PaneReaderFor(IdentifyFileType(path.c_str(), nullptr, 0));
    if (!reader) return {};
    const std::string picture =
        TakePicture(reader(kRenderColor, path.c_str(), &kTarget, comment.Text(), static_cast<DWORD>(commentSize)));
    const std::size_t length = strnlen(comment.Text(), commentSize);
    EXPECT_LT(length, commentSize) << "the comment is ended";
    return {picture, std::string(comment.Text(), length)};
}

TEST(Dispatch, KindsWithoutPreview) {
    for (const int code : {-1, 5, 6, 8, 10, 12, 13, 14, 15, 17, 18, 19, 20, 22, 25, 27, 1000, -1000}) {
        EXPECT_FALSE(PaneReaderFor(static_cast<FileTypeCode>(code))) << code;
        EXPECT_FALSE(GalleryReaderFor(static_cast<FileTypeCode>(code))) << code;
    }
    EXPECT_TRUE(GalleryReaderFor(FT_DXF));
    for (const FileTypeCode code : {FT_EXE, FT_DLL, FT_BMP})
        EXPECT_FALSE(GalleryReaderFor(code)) << "shown in the pane only: " << code;
}

TEST(Dispatch, PaneContents) {
    const TempFolder folder;
    const std::string text(4999, 'a');
    const std::string bitmap =
        BitmapFile(2, 2, 24, "", std::string("\0\0\0\xff\xff\xff\0\0\xff\xff\xff\0\0\0\0\0", 16));
    WriteResourceModule(folder.At("some.dll"), 0, {}, 7, 8, 9, 10);
    const struct {
        std::string path;
        std::string picture, comment;
    } cases[] = {
        {folder.Write("a.txt", "one\r\ntwo\n\n"), "", "one\r\ntwo\n"},  // the last byte goes
        {folder.Write("b.txt", text + "\n"), "", text.substr(0, 1023)},
        {folder.Write("c.txt", "x"), "", ""},
        {folder.Write("d.txt", ""), "", ""},
        {folder.Write("e.nc", "G90\nG01 X1\n"), "", ""},
        {folder.Write("f.bmp", bitmap), Picture(".#", "#."), ""},  // its own size
        {folder.Write("g.bmp", bitmap.substr(0, 60)), "", ""},
        {folder.At("some.dll"), "", "Version 7.8.9"},
        {folder.Write("h.exe", "MZ"), "", ""},
        {folder.Write("i.xyz", std::string("\0", 1)), "", ""},
    };
    for (const auto& c : cases) {
        const Shown shown = ShowInPane(c.path);
        EXPECT_EQ(shown.picture, c.picture) << c.path;
        EXPECT_EQ(shown.comment, c.comment) << c.path;
    }
    EXPECT_TRUE(HasInk(ShowInPane(folder.Write("j.dxf", DxfDrawing(9, 6, "0 LINE|10 0|20 3|11 9|21 3"))).picture));
    for (const std::size_t size : {1, 2, 5, 14}) ShowInPane(folder.At("some.dll"), size);
}

// Samples cut short and with bytes changed: nothing crashes, hangs, writes too far, keeps its file or leaks.
TEST(Dispatch, DamagedFiles) {
    const TempFolder folder;
    auto files = SampleFiles();
    EXPECT_FALSE(files.empty());
    files.emplace_back(
        "all.dxf", DxfDrawing(9, 6, "0 TEXT|10 1|20 1|40 3|1 \x83\x5c%%d|50 30|72 1|0 ARC|10 5|20 5|40 2|50 0|51 9"));
    HandleCounts before = {};
    for (std::size_t i = 0; i < files.size(); ++i) {
        const std::string& contents = files[i].second;
        const std::string name = "damaged" + files[i].first.substr(files[i].first.rfind('.'));
        ShowInPane(folder.Write(name, contents));
        if (i == 0) before = CountHandles();
        const std::size_t step = files[i].first == "all.dxf" ? 1 : contents.size() / 40 + 1;
        for (std::size_t size = 0; size < contents.size(); size += step)
            ShowInPane(folder.Write(name, contents.substr(0, size)), 1 + size % 300);
        for (std::uint32_t seed = 0; seed < 30; ++seed)
            ShowInPane(folder.Write(name, WithFlippedBytes(contents, seed)));
    }
    EXPECT_NEAR(CountHandles().gdi, before.gdi, 5);  // the system keeps a few fonts
    EXPECT_NEAR(CountHandles().kernel, before.kernel, 5);
}
