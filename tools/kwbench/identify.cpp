// IdentifyFileType against what it cannot do without: open, read of the first kilobyte, close.
#include <windows.h>

#include <algorithm>

#include "kit/handles.h"
#include "kwbench.h"
#include "preview/file_type.h"

static constexpr double kLimit = 1.15;
static constexpr std::size_t kTurn = 250;  // so many files of one work, then the same of the other

static bool BareRead(const std::string& path) {
    const UniqueHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    char head[1024];
    DWORD count = 0;
    return IsOpen(file) && ReadFile(file.get(), head, sizeof(head), &count, nullptr);
}

static bool Identify(const std::string& path, char* comment, int commentSize) {
    return IdentifyFileType(path.c_str(), comment, commentSize) != FT_UNREADABLE;
}

// One round over all files: the times of both works, taken in short turns.
static bool MeasureRound(const std::vector<std::string>& paths, char* comment, int commentSize, bool floorFirst,
                         Comparison* rounds) {
    bool good = true;
    double measured = 0, floor = 0;
    for (std::size_t first = 0; first < paths.size(); first += kTurn) {
        const std::size_t last = std::min(first + kTurn, paths.size());
        for (int turn = 0; turn < 2; ++turn) {
            if ((turn == 0) == floorFirst) {
                floor += SecondsOf([&] {
                    for (std::size_t i = first; i < last; ++i) good = BareRead(paths[i]) && good;
                });
            } else {
                measured += SecondsOf([&] {
                    for (std::size_t i = first; i < last; ++i) good = Identify(paths[i], comment, commentSize) && good;
                });
            }
        }
    }
    rounds->measured.push_back(measured);
    rounds->floor.push_back(floor);
    return good;
}

bool BenchIdentify(Bench* bench) {
    const std::size_t count = bench->quick ? 2000 : 10000;
    const int roundCount = bench->quick ? 5 : 11;
    Progress("writing " + std::to_string(count) + " small files");
    const std::vector<std::string> paths = WriteSmallFiles(bench->folder, count);
    if (paths.size() < count) return Fail("cannot write the small files");

    char comment[256];
    Comparison warming, without, with;
    bool good = MeasureRound(paths, nullptr, 0, true, &warming);
    for (int i = 0; i < roundCount && good; ++i) {
        Progress("round " + std::to_string(i + 1) + " of " + std::to_string(roundCount));
        good = MeasureRound(paths, nullptr, 0, i % 2 == 0, &without) &&
               MeasureRound(paths, comment, sizeof(comment), i % 2 == 0, &with);
    }
    if (!good) return Fail("identify: a file could not be read");
    const std::string what = "identify " + std::to_string(count) + " files";
    bench->rows.push_back(TimeRow(what, without, kLimit));
    bench->rows.push_back(TimeRow(what + ", with comment", with, kLimit));
    return true;
}
