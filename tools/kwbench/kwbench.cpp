// kwbench: measures the library's speed and memory against floors that it measures in the same run.
//
//   kwbench.exe [--quick] [NAME...]                                        on Windows
//   tools/winrun.sh en build/mingw/bin/kwbench.exe [--quick] [NAME...]     on Linux
//
// All benchmarks take many minutes, with --quick a few; most of it goes to the backup drawing and the 10,000 files.
#include "kwbench.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "kit/handles.h"

static constexpr struct {
    const char* name;
    const char* what;
    bool (*run)(Bench*);
} kBenchmarks[] = {
    {"fulldxf", "ReadFullDxfPreview: decoding against a bare scan, previews against ReadDxfPreview, memory",
     BenchFullDxf},
    {"dxf", "ReadDxfPreview of generated drawings, against a bare scan of the file and the bare GDI calls", BenchDxf},
    {"identify", "IdentifyFileType of small files, against open, read of 1 KB and close", BenchIdentify},
    {"cancel", "how soon a reader returns after PreviewCancel(0)", BenchCancel},
    {"drawings", "native, backup and text drawings, as dxf and cancel do", BenchDrawings},
    {"gallery", "the gallery over small drawings, against its readers in a loop", BenchGallery},
    {"list", "the classic dialog's file list, against FindFirstFileA of each file", BenchList},
    {"memory", "the peak of memory during ReadDxfPreview, against the file's size", BenchMemory},
    {"attacks", "files that are made to cost, of 1, 2 and 10 MB: processor time (10 MB to 1 MB) and memory",
     BenchAttacks},
    {"expression", "evaluateExpression, against the same conversions and operations without a parser", BenchExpression},
    {"dialog", "kwDlgBoxCtrl with a hundred items, against the bare DialogBoxParamA", BenchDialog},
};

// For the program itself: kwbench --preview-memory SMALL RENDERMODE FILE (see PreviewMemoryKilobytes).
static constexpr char kPreviewMemoryOption[] = "--preview-memory";

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

// ---- The table

static void PrintTable(const std::vector<Row>& rows) {
    static const Row titles = {"what", "measured", "floor", "ratio", "target"};
    static constexpr std::string Row::*kColumns[] = {&Row::what, &Row::measured, &Row::floor, &Row::ratio,
                                                     &Row::target};
    static constexpr const char* kVerdicts[] = {"", "yes", "NO"};
    int widths[std::size(kColumns)];
    for (std::size_t i = 0; i < std::size(kColumns); ++i) {
        std::size_t width = (titles.*kColumns[i]).size();
        for (const Row& row : rows) width = std::max(width, (row.*kColumns[i]).size());
        widths[i] = static_cast<int>(width);
    }
    const auto print = [&](const Row& row, const char* verdict) {
        std::printf("%-*s", widths[0], row.what.c_str());
        for (std::size_t i = 1; i < std::size(kColumns); ++i) {
            std::printf("  %*s", widths[i], (row.*kColumns[i]).c_str());
        }
        std::printf("  %s\n", verdict);
    };
    print(titles, "ok");
    for (const Row& row : rows) print(row, kVerdicts[row.verdict]);
}

// ---- The run

void Progress(const std::string& text) { std::fprintf(stderr, "kwbench: %s\n", text.c_str()); }

bool Fail(const std::string& text) {
    Progress(text);
    return false;
}

const Drawing* DrawingOf(Bench* bench, int megabytes) {
    const auto found = bench->drawings.find(megabytes);
    if (found != bench->drawings.end()) return &found->second;
    const std::string path = bench->folder + std::to_string(megabytes) + "mb.dxf";
    Progress("writing a drawing of " + std::to_string(megabytes) + " MB");
    Drawing drawing = {DrawingFormat::kDxf, path};
    if (!WriteDrawing(static_cast<std::size_t>(megabytes) * kMegabyte, SIZE_MAX, &drawing)) {
        Fail("cannot write " + path);
        return nullptr;
    }
    return &bench->drawings.emplace(megabytes, drawing).first->second;
}

// An empty folder of our own below the user's temporary folder, with its backslash; empty when it cannot be made.
static std::string MakeTemporaryFolder() {
    char parent[MAX_PATH];
    const DWORD length = GetTempPathA(sizeof(parent), parent);
    if (length == 0 || length >= sizeof(parent)) return {};
    const std::string stem = std::string(parent) + "kwbench" + std::to_string(GetCurrentProcessId());
    for (int attempt = 0; attempt < 100; ++attempt) {  // an earlier process may have had our id and been killed
        const std::string path = stem + "_" + std::to_string(attempt);
        if (CreateDirectoryA(path.c_str(), nullptr)) return path + "\\";
        if (GetLastError() != ERROR_ALREADY_EXISTS) break;
    }
    return {};
}

static void RemoveFolder(const std::string& folder) {
    WIN32_FIND_DATAA found;
    {
        const UniqueFind search(FindFirstFileA((folder + "*").c_str(), &found));
        if (search.get() == INVALID_HANDLE_VALUE) return;
        do {
            if (std::strcmp(found.cFileName, ".") == 0 || std::strcmp(found.cFileName, "..") == 0) continue;
            const std::string path = folder + found.cFileName;
            if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) RemoveFolder(path + "\\");
            else DeleteFileA(path.c_str());
        } while (FindNextFileA(search.get(), &found));
    }
    RemoveDirectoryA(folder.c_str());
}

static bool Run(Bench* bench, const std::vector<std::string>& names) {
    bool complete = true;
    for (const auto& benchmark : kBenchmarks) {
        if (!names.empty() && std::find(names.begin(), names.end(), benchmark.name) == names.end()) continue;
        Progress(std::string(benchmark.name) + ": " + benchmark.what);
        if (!benchmark.run(bench)) complete = false;
    }
    PrintTable(bench->rows);
    return complete;
}

static bool IsBenchmark(const char* name) {
    return std::any_of(std::begin(kBenchmarks), std::end(kBenchmarks),
                       [&](const auto& benchmark) { return std::strcmp(benchmark.name, name) == 0; });
}

int main(int argc, char** argv) {
    if (argc == 5 && std::strcmp(argv[1], kPreviewMemoryOption) == 0) {
        return PreviewMemoryKilobytes(argv[2], {static_cast<DWORD>(std::atoi(argv[3])), argv[4]});
    }

    Bench bench;
    std::vector<std::string> names;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0) {
            PrintHelp();
            return 0;
        }
        if (std::strcmp(argv[i], "--quick") == 0) {
            bench.quick = true;
        } else if (IsBenchmark(argv[i])) {
            names.push_back(argv[i]);
        } else {
            Fail(std::string("unknown argument ") + argv[i] + " (see kwbench --help)");
            return 1;
        }
    }

    bench.folder = MakeTemporaryFolder();
    if (bench.folder.empty()) {
        Fail("cannot make a temporary folder");
        return 1;
    }
    const bool complete = Run(&bench, names);
    RemoveFolder(bench.folder);
    return complete ? 0 : 1;
}
