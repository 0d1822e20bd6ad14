// What all readers of drawings and comments have in common.
#include <gtest/gtest.h>

#include <cstring>

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

// The samples that are drawn, each under a name of its own.
std::vector<NamedFile> Drawings() {
    std::vector<NamedFile> drawings;
    for (const auto& [path, contents] : SampleFiles()) {
        const std::string extension = path.substr(path.rfind('.'));
        for (const char* drawn : {".qa", ".lms", ".lbk", ".exf", ".dxf"}) {
            if (extension == drawn) drawings.push_back({std::to_string(drawings.size()) + extension, contents});
        }
    }
    return drawings;
}

PreviewReader ReaderOf(const std::string& path) { return PaneReaderFor(IdentifyFileType(path.c_str(), nullptr, 0)); }

constexpr RECT kTarget = {0, 0, 50, 30};

}  // namespace

TEST(ReaderContract, Modes) {
    const TempFolder folder;
    for (const NamedFile& file : Drawings()) {
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

// Samples cut short and with bytes spoilt: nothing crashes, hangs, writes too far, keeps its file or leaks.
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
    for (const NamedFile& file : Drawings()) show(file.name, file.contents, 0);  // warms up what the system keeps
    const HandleCounts before = CountHandles();
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
