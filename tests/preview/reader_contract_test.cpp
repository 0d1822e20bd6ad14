// What all readers of drawings and comments have in common.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "frame/services.h"
#include "preview/dispatch.h"
#include "support/drawings.h"
#include "support/guard_block.h"
#include "support/handle_counts.h"
#include "support/picture.h"
#include "support/samples.h"
#include "support/temp_folder.h"

namespace {

struct NamedFile {
    std::string name, contents;
};

// A small drawing of every format, each with all kinds of elements.
std::vector<NamedFile> SmallDrawings() {
    const std::string shapes =
        PointRecord(3, 3) + LineRecord(2, 3, 90, 50, 0x0920) + ArcRecord(50, 30, 20, 10, 300, 0x0A30);
    const TextLook look = {20, 30, 8, 8, 1, 30};
    const std::string native = shapes + TextRecord(look, Justified(1, 1), "ab|c\x83\x5c", 5) +
                               ContinuationRecord("x", 6) + ContinuationRecord("y", 5);
    return {
        {"a.qa", Put(NativeFile(kEditionA, 100, 60, native), {{106, "name"}})},
        {"a.lms", Put(NativeFile(kEditionB, 100, 60, native), {{0, "LMOS"}, {106, "name"}})},
        {"a.lbk", BackupFile(100, 60, shapes + CountedTextRecord(look, Justified(1, 1), 5))},
        {"a.exf",
         "FIGRNAME Plate\r\nAR 0,0,100,60\r\nGP 0,3,3,0\r\nGL 1,2,3,90,50,92\r\nGA 1,50,30,20,10,300,a3\r\n"
         "GT 20,30,8,8,1,30,0,0,'ab\x83\x5c'\r\n"},
        {"a.dxf", DxfDrawing(100, 60,
                             "0 TEXT|10 20|20 30|40 8|1 \x83\x5c%%d|50 30|72 1|"
                             "0 ARC|10 50|20 30|40 20|50 0|51 9|0 LINE|6 DOT|10 2|20 3|11 90|21 50")},
    };
}

PreviewReader ReaderOf(const std::string& path) { return PaneReaderFor(IdentifyFileType(path.c_str(), nullptr, 0)); }

constexpr RECT kTarget = {0, 0, 50, 30};

}  // namespace

TEST(ReaderContract, Modes) {
    const TempFolder folder;
    for (const NamedFile& file : SmallDrawings()) {
        const std::string path = folder.Write(file.name, file.contents);
        const auto read = [&](DWORD mode, const RECT* target) {
            return UniqueBitmap(ReaderOf(path)(mode, path.c_str(), target, nullptr, 0));
        };
        const UniqueBitmap plain = read(kRenderTextFrames, &kTarget);
        const UniqueBitmap color = read(kRenderTextFrames | kRenderColor, &kTarget);
        const auto bits = [](const UniqueBitmap& bitmap) {
            BITMAP shape = {};
            return GetObjectA(bitmap.get(), sizeof(shape), &shape) ? shape.bmBitsPixel : 0;
        };
        EXPECT_TRUE(bits(plain) == 1 && bits(color) > 1) << file.name;
        EXPECT_EQ(PictureOf(plain.get()), PictureOf(color.get())) << file.name;
        EXPECT_TRUE(HasInk(PictureOf(plain.get()))) << file.name;
        EXPECT_FALSE(read(0, nullptr)) << file.name << ", no target";
        EXPECT_EQ(PreviewCancel(-1), 0) << file.name;
    }
}

struct CancelledRun {
    std::string path;
    PreviewReader reader;
    volatile LONG state;  // 1 while it runs, 2: a bitmap, 0: none
};

static void ReadInThread(void* parameter) {
    auto& run = *static_cast<CancelledRun*>(parameter);
    const UniqueBitmap bitmap(run.reader(kRenderColor, run.path.c_str(), &kTarget, nullptr, 0));
    InterlockedExchange(&run.state, bitmap ? 2 : 0);
}

TEST(ReaderContract, Cancel) {
    const TempFolder folder;
    const auto many = [](const std::string& element) {
        std::string all;
        for (int i = 0; i < 60000; ++i) all += element;
        return all;
    };
    const std::string records = many(LineRecord(2, 3, 90, 50));
    const NamedFile files[] = {
        {"a.qa", NativeFile(kEditionA, 100, 60, records)},
        {"a.lbk", BackupFile(100, 60, records)},
        {"a.exf", "AR 0,0,100,60\n" + many("GL 1,2,3,90,50,0\n")},
        {"a.dxf", Dxf("0 SECTION|2 ENTITIES") + many(Dxf("0 LINE|10 2|20 3|11 90|21 50"))},
    };
    for (const NamedFile& file : files) {
        CancelledRun run = {folder.Write(file.name, file.contents), nullptr, 1};
        run.reader = ReaderOf(run.path);
        ASSERT_TRUE(StartModuleThread(ReadInThread, &run));
        while (run.state == 1) PreviewCancel(0);
        EXPECT_EQ(run.state, 0) << file.name;
    }
}

// Drawings and samples cut short, with bytes spoilt and with numbers that are none: nothing crashes, hangs, writes too
// far, keeps its file or leaks.
TEST(ReaderContract, DamagedFiles) {
    const TempFolder folder;
    const auto show = [&](const std::string& name, const std::string& contents, std::size_t variant) {
        const std::string path = folder.Write(name, contents);
        const GuardBlock comment(1 + variant % 300);
        const PreviewReader reader = ReaderOf(path);
        const DWORD mode = variant % 4;
        if (reader) TakePicture(reader(mode, path.c_str(), &kTarget, comment.Text(), static_cast<DWORD>(comment.size)));
        EXPECT_LT(strnlen(comment.Text(), comment.size), comment.size) << "the comment is ended";
    };
    const double hostile[] = {NAN, INFINITY, -1e308, 5e-324, 2147483648.0, -9.3e18};
    for (const NamedFile& file : SmallDrawings()) show(file.name, file.contents, 0);  // warms up what the system keeps
    const HandleCounts before = CountHandles();
    for (const NamedFile& file : SmallDrawings()) {
        const std::string& good = file.contents;
        const bool isText = file.name == "a.exf" || file.name == "a.dxf";
        for (std::size_t at = good.size() % 4; at < good.size(); at += isText ? 1 : 4) {
            if (!isText && at >= 300 && at + 450 < good.size()) continue;  // the rest of a header is not used
            show(file.name, good.substr(0, at), at);
            show(file.name, Put(good, {{at, "\xFF"}}), at);
            if (!isText && at + 8 <= good.size()) show(file.name, Put(good, {{at, Raw(hostile[at / 4 % 6])}}), at);
        }
        const std::size_t head = good.size() - std::min<std::size_t>(good.size(), 450);
        for (std::uint32_t seed = 0; seed < 50; ++seed)
            show(file.name, good.substr(0, head) + WithFlippedBytes(good.substr(head), seed), seed);
    }
    const auto samples = SampleFiles();
    EXPECT_FALSE(samples.empty());
    for (const auto& [path, good] : samples) {
        const std::string name = "a" + path.substr(path.rfind('.'));
        for (std::size_t size = 0; size < good.size(); size += good.size() / 40 + 1)
            show(name, good.substr(0, size), size);
        for (std::uint32_t seed = 0; seed < 30; ++seed) show(name, WithFlippedBytes(good, seed), seed);
    }
    ExpectNothingLeft(before, 5);  // the system keeps a few fonts
}
