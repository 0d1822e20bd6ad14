// kwbench: measures the library's speed and memory against floors that it measures in the same run.
//
//   kwbench.exe [--quick] [NAME...]                                        on Windows
//   tools/winrun.sh en build/mingw/bin/kwbench.exe [--quick] [NAME...]     on Linux
//
// All benchmarks take many minutes, with --quick a few.
#include "kwbench.h"

#include <shellapi.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iterator>

// Each is in the source of its subject.
using Benchmark = void(Bench* bench);
Benchmark BenchDxf, BenchDrawings, BenchFullDxf, BenchCancel, BenchMemory, BenchAttacks, BenchIdentify, BenchExpression,
    BenchDialog, BenchGallery, BenchList;

static constexpr struct {
    const char* name;
    const char* what;
    Benchmark* run;
} kBenchmarks[] = {
    {"fulldxf", "the full DXF reader: decoding against a bare scan, previews against the basic one's, memory",
     BenchFullDxf},
    {"dxf", "previews of DXF drawings, against a bare scan of the file and the bare GDI calls", BenchDxf},
    {"drawings", "the same of native, backup and text drawings", BenchDrawings},
    {"identify", "IdentifyFileType of small files, against open, read of 1 KB and close", BenchIdentify},
    {"cancel", "how soon a reader returns after PreviewCancel(0)", BenchCancel},
    {"gallery", "the gallery over small drawings, against its readers in a loop", BenchGallery},
    {"list", "the classic dialog's file list, against FindFirstFileA of each file", BenchList},
    {"memory", "the peak of memory during a DXF drawing's preview, against the file's size", BenchMemory},
    {"attacks", "files that are made to cost, of 1, 2 and 10 MB: processor time (10 MB to 1 MB) and memory",
     BenchAttacks},
    {"expression", "evaluateExpression, against the same conversions and operations without a parser", BenchExpression},
    {"dialog", "kwDlgBoxCtrl with a hundred items, against the bare DialogBoxParamA", BenchDialog},
};

static void PrintHelp() {
    std::printf(
        "kwbench [--quick] [NAME...]\n"
        "\n"
        "Runs the named benchmarks, or all, and prints one table. --quick takes smaller inputs and fewer rounds.\n"
        "\n");
    for (const auto& benchmark : kBenchmarks) std::printf("  %-10s %s\n", benchmark.name, benchmark.what);
    std::printf(
        "\n"
        "Inputs are generated from fixed seeds in a temporary folder, which is removed at the end. Measured and floor\n"
        "take turns in every round; both columns are medians over the rounds, the ratio is the median of the rounds'\n"
        "ratios. The exit code is 0 whatever the table says, and 1 when something could not be measured.\n");
}

static void PrintTable(const std::vector<Row>& rows) {
    static constexpr std::string Row::*kColumns[] = {&Row::what, &Row::measured, &Row::floor, &Row::ratio,
                                                     &Row::target};
    static constexpr const char* kVerdicts[] = {"", "yes", "NO"};
    for (const Row& row : rows) {
        for (const auto column : kColumns) {
            std::size_t width = 0;
            for (const Row& other : rows) width = std::max(width, (other.*column).size());
            std::printf(column == &Row::what ? "%-*s" : "  %*s", static_cast<int>(width), (row.*column).c_str());
        }
        std::printf("  %s\n", &row == &rows[0] ? "ok" : kVerdicts[row.verdict]);
    }
}

void Progress(const std::string& text) { std::fprintf(stderr, "kwbench: %s\n", text.c_str()); }

static DWORD WINAPI EndAtOnce(void*) { return 0; }

static bool Run(Bench* bench, const std::vector<std::string>& names) {
    bool complete = true;
    // Hosts have threads, and previews run in them. The heap and the locks of a process that never had a second one may
    // be cheaper than they are there.
    const UniqueHandle thread(CreateThread(nullptr, 0, EndAtOnce, nullptr, 0, nullptr));
    WaitForSingleObject(thread.get(), INFINITE);
    bench->rows.push_back({"what", "measured", "floor", "ratio", "target"});
    for (const auto& benchmark : kBenchmarks) {
        if (!names.empty() && std::find(names.begin(), names.end(), benchmark.name) == names.end()) continue;
        Progress(std::string(benchmark.name) + ": " + benchmark.what);
        try {
            benchmark.run(bench);
        } catch (const std::exception& failure) {
            Progress(failure.what());
            complete = false;
        }
    }
    PrintTable(bench->rows);
    return complete;
}

// A folder of our own below the user's temporary folder; empty when it cannot be made.
static std::string MakeTemporaryFolder() {
    char parent[MAX_PATH], path[MAX_PATH];
    if (!GetTempPathA(sizeof(parent), parent) || !GetTempFileNameA(parent, "kwb", 0, path)) return {};
    DeleteFileA(path);  // the name is what was wanted
    return CreateDirectoryA(path, nullptr) ? std::string(path) + "\\" : "";
}

static void RemoveFolder(std::string folder) {
    SetCurrentDirectoryA((folder + "..").c_str());  // a benchmark may have gone into it
    folder.back() = '\0';                           // the list of one folder ends with two zeros
    SHFILEOPSTRUCTA removal = {};
    removal.wFunc = FO_DELETE;
    removal.pFrom = folder.c_str();
    removal.fFlags = FOF_NOCONFIRMATION | FOF_NOERRORUI | FOF_SILENT;
    SHFileOperationA(&removal);
}

static bool IsBenchmark(const char* name) {
    return std::any_of(std::begin(kBenchmarks), std::end(kBenchmarks),
                       [&](const auto& benchmark) { return std::strcmp(benchmark.name, name) == 0; });
}

int main(int argc, char** argv) {
    if (argc == 5 && std::strcmp(argv[1], kPreviewMemoryOption) == 0) {
        return MeasurePreviewMemory(argv[2], argv[3], argv[4]);
    }
    Bench bench;
    std::vector<std::string> names;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--quick") == 0) {
            bench.quick = true;
        } else if (IsBenchmark(argv[i])) {
            names.push_back(argv[i]);
        } else {
            PrintHelp();
            return std::strcmp(argv[i], "--help") == 0 ? 0 : 1;
        }
    }
    bench.folder = MakeTemporaryFolder();
    if (bench.folder.empty()) {
        Progress("cannot make a temporary folder");
        return 1;
    }
    const bool complete = Run(&bench, names);
    RemoveFolder(bench.folder);
    return complete ? 0 : 1;
}
