#include "filesel/file_list.h"

#include <windows.h>

#include <commdlg.h>
#include <gtest/gtest.h>

#include "kwdialogs.h"
#include "resources/resource.h"
#include "support/dialog_driver.h"
#include "support/samples.h"
#include "support/temp_folder.h"

static WIN32_FIND_DATAA File(const char* name, std::uint64_t size = 0, std::uint64_t time = 0) {
    WIN32_FIND_DATAA file = {};
    lstrcpyA(file.cFileName, name);
    file.nFileSizeHigh = static_cast<DWORD>(size >> 32);
    file.nFileSizeLow = static_cast<DWORD>(size);
    file.ftLastWriteTime = {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
    return file;
}

TEST(FileList, Order) {
    constexpr std::uint64_t kBig = std::uint64_t{1} << 32;
    const struct {
        DWORD sort;
        WIN32_FIND_DATAA a, b;
        int order;
    } cases[] = {
        {0, File("a", 1, 1), File("b", 2, 2), 0},
        {KW_SORT_NAME, File("B"), File("a"), -1},  // capitals first
        {KW_SORT_NAME, File("a"), File("\x83\x5c"), -1},
        {KW_SORT_EXTENSION, File("z"), File("a.dxf"), -1},
        {KW_SORT_EXTENSION, File("a.dxf"), File("z"), 1},
        {KW_SORT_EXTENSION, File("z.a.dxf"), File("a.txt"), -1},
        {KW_SORT_EXTENSION, File("a"), File("b"), 0},
        {KW_SORT_EXTENSION, File("a."), File("b"), 1},
        {KW_SORT_SIZE, File("a", kBig), File("b", kBig - 1), 1},
        {KW_SORT_DATE, File("a", 0, kBig - 1), File("b", 0, kBig), -1},
        {KW_SORT_NAME | KW_SORT_SIZE, File("a", 9), File("b", 1), -1},  // names differ: sizes do not count
        {KW_SORT_EXTENSION | KW_SORT_SIZE, File("a.x", 9), File("b.x", 1), 1},
        {KW_SORT_SIZE | KW_SORT_DATE, File("a", 5, 1), File("b", 5, 2), -1},
        {KW_SORT_SIZE | KW_SORT_DESCENDING, File("a", 1), File("b", 2), 1},
    };
    for (const auto& c : cases) {
        const int order = CompareFiles(c.a, c.b, c.sort);
        EXPECT_EQ((order > 0) - (order < 0), c.order) << c.sort << " " << c.a.cFileName << " " << c.b.cFileName;
    }
}

TEST(FileList, Texts) {
    const struct {
        DWORD bytes;
        const char* text;
    } sizes[] = {{0, "0B"},        {1023, "1023B"},        {1024, "1KB"},       {1048575, "1023KB"},
                 {1048576, "1MB"}, {1073741823, "1023MB"}, {1073741824, "1GB"}, {4294967295u, "3GB"}};
    for (const auto& c : sizes) EXPECT_EQ(FormatDriveSize(c.bytes), c.text);
    const struct {
        DWORD count;
        const char* text;
    } counts[] = {{0, "0"}, {999, "999"}, {1000, "1,000"}, {123456, "123,456"}, {1234567, "1,234,567"}};
    for (const auto& c : counts) EXPECT_EQ(FormatThousands(c.count), c.text);
}

// A time of local clocks as a file has it.
static std::uint64_t LocalTime(WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second) {
    const SYSTEMTIME at = {year, month, 0, day, hour, minute, second, 0};
    FILETIME local, time;
    SystemTimeToFileTime(&at, &local);
    LocalFileTimeToFileTime(&local, &time);
    return static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
}

TEST(FileList, Lines) {
    const std::uint64_t time = LocalTime(2004, 3, 9, 7, 5, 1), old = LocalTime(1999, 12, 31, 23, 59, 58);
    const struct {
        WIN32_FIND_DATAA file;
        DWORD display;
        const char* line;
    } cases[] = {
        {File("a.dxf", 1234567, time), 0, "a.dxf"},
        {File("a b.dxf", 1234567, time), 0, "a b.dxf\t"},  // so that a selection is not cut at the blank
        {File("a.dxf", 1234567, time), KW_SHOW_SIZE, "a.dxf\t1,234,567"},
        {File("a.dxf", 1, time), KW_SHOW_DATE, "a.dxf\t04/03/09"},
        {File("a.dxf", 1, time), KW_SHOW_TIME, "a.dxf\t07:05:01"},
        {File("a.dxf", 1, old), KW_SHOW_SIZE | KW_SHOW_DATE | KW_SHOW_TIME, "a.dxf\t1\t99/12/31\t23:59:58"},
        {File("a.dxf", 1, LocalTime(1850, 1, 1, 0, 0, 0)), KW_SHOW_DATE, "a.dxf\t1850/01/01"},
        {File("none.such", 1, time), KW_SHOW_COMMENT, "none.such\t"},
    };
    for (const auto& c : cases) EXPECT_EQ(FormatFileLine(c.file, c.display), c.line);
}

class ClassicFileList : public testing::Test {
protected:
    TempFolder folder;
    char file[MAX_PATH] = "";
    SelectRequest request = {"Title", "Anything\0*.*\0", folder.path.c_str(), 1, file, MAX_PATH, nullptr, 0, 0};
    void SetUp() override { kwSelectFileGUI(1); }
    void TearDown() override { kwSelectFileGUI(0); }
    unsigned Run(std::vector<DialogStep> steps) {
        return RunDialog([&] { return kwSelectFileName(nullptr, KW_FILE_OPEN, 1, &request); }, std::move(steps));
    }
};

static std::string Listed(HWND dialog) {
    std::string lines;
    const HWND list = FindControl(dialog, IDC_FILE_LIST);
    char line[600];
    for (LRESULT i = 0; i < SendMessageA(list, LB_GETCOUNT, 0, 0); ++i) {
        SendMessageA(list, LB_GETTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(line));
        lines += std::string(line) + "|";
    }
    return lines;
}

static void Toggle(HWND dialog, int box) { SendMessageA(FindControl(dialog, box), BM_CLICK, 0, 0); }

TEST_F(ClassicFileList, SortsShowsAndSelects) {
    folder.Write("big.b", std::string(2000, 'x'));
    folder.Write("small.a", "G90\r\nG01");
    folder.Write("with blank.a", "");
    // The second byte of the first two-byte character is a backslash, of the next one a blank's look-alike.
    const std::string japanese = "\x95\x5c\x81\x40.a";
    const bool isJapanese = GetACP() == 932;
    if (isJapanese) folder.Write(japanese, "");
    const std::string tail = isJapanese ? japanese + "\t" : "";
    request.sortOptions = KW_SORT_NAME;
    const auto look = [&](HWND dialog) {
        const std::string last = isJapanese ? japanese + "|" : "";
        EXPECT_EQ(Listed(dialog), "big.b|small.a|with blank.a\t|" + last);
        Toggle(dialog, IDC_SHOW_SIZE);
        EXPECT_EQ(Listed(dialog), "big.b\t2,000|small.a\t8|with blank.a\t0|" + (isJapanese ? japanese + "\t0|" : ""));
        Toggle(dialog, IDC_SHOW_COMMENT);
        EXPECT_EQ(Listed(dialog).substr(0, 45), "big.b\t2,000\t" + std::string(33, 'x'));
        Toggle(dialog, IDC_SHOW_COMMENT);
        Toggle(dialog, IDC_SORT_NAME);
        Toggle(dialog, IDC_SORT_SIZE);
        EXPECT_EQ(Listed(dialog).rfind("big.b"), Listed(dialog).size() - 12);
        for (const int id : {IDC_DRIVE_TOTAL, IDC_DRIVE_FREE, IDC_DRIVE_USED})
            EXPECT_EQ(ControlText(dialog, id).back(), 'B') << id;
    };
    std::string selected, chosen;
    const auto select = [&](const char* name) {
        return Check([&, name](HWND dialog) {
            const HWND list = FindControl(dialog, IDC_FILE_LIST);
            const LRESULT line =
                SendMessageA(list, LB_FINDSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(name));
            SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(line), 0);
            SendMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(MAKELONG(IDC_FILE_LIST, LBN_SELCHANGE)),
                         reinterpret_cast<LPARAM>(list));
            selected = ControlText(dialog, IDC_FILE_NAME);
            EXPECT_EQ(selected, name);
            Toggle(dialog, IDC_SHOW_DATE);
            EXPECT_EQ(SendMessageA(list, LB_GETCURSEL, 0, 0), line > 0 ? line : LB_ERR)
                << "kept, but for the first line";
        });
    };
    std::vector<DialogStep> steps = {Check(look), select("with blank.a"), select("big.b"), select("small.a")};
    if (isJapanese) steps.push_back(select(japanese.c_str()));
    steps.push_back(Press(IDOK));
    EXPECT_EQ(Run(steps), 1u);
    EXPECT_EQ(file, folder.At(isJapanese ? japanese : "small.a"));
    EXPECT_EQ(request.sortOptions, DWORD{KW_SORT_SIZE});
}
