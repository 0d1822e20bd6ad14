// The file list of the classic dialog: sorting and describing its lines, against asking the system for each file once.
#include "filesel/file_list.h"

#include <memory>
#include <string>
#include <vector>

#include "frame/module.h"
#include "kit/handles.h"
#include "kwbench.h"
#include "kwdialogs.h"
#include "resources/resource.h"

static constexpr double kLimit = 2;
static constexpr DWORD kColumns = KW_SHOW_SIZE | KW_SHOW_DATE | KW_SHOW_TIME;  // all but the comment, which reads files

struct WindowDestroy {
    using pointer = HWND;
    void operator()(HWND window) const { DestroyWindow(window); }
};

static INT_PTR CALLBACK NoMessages(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

static bool FindEach(const std::vector<std::string>& names) {
    bool good = true;
    for (const std::string& name : names) {
        WIN32_FIND_DATAA found;
        const UniqueFind search(FindFirstFileA(name.c_str(), &found));
        good = search.get() != INVALID_HANDLE_VALUE && good;
    }
    return good;
}

// Fills the list with bare names, as the system does before the dialog is shown.
static void Fill(HWND list, const std::vector<std::string>& names) {
    SendMessageA(list, WM_SETREDRAW, FALSE, 0);
    for (const std::string& name : names) SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    SendMessageA(list, WM_SETREDRAW, TRUE, 0);
}

// What the user waits for who clicks on a check box: the list is rebuilt as it stands on the screen, and drawn.
static double RebuildSeconds(HWND list) {
    return SecondsOf([&] {
        SendMessageA(list, WM_SETREDRAW, TRUE, 0);
        UpdateWindow(list);
    });
}

static bool MeasureRounds(HWND list, const std::vector<std::string>& names, int count, Comparison* rounds) {
    bool good = FindEach(names);  // what the system keeps of a folder
    const auto find = [&] { good = FindEach(names) && good; };
    *rounds = Compare(
        count, [&] { return RebuildSeconds(list); }, [&] { return SecondsOf(find); });
    // The last line shows that the columns have come.
    char text[1024] = "";
    const LRESULT lines = SendMessageA(list, LB_GETCOUNT, 0, 0);
    if (lines != static_cast<LRESULT>(names.size())) return false;
    SendMessageA(list, LB_GETTEXT, static_cast<WPARAM>(lines - 1), reinterpret_cast<LPARAM>(text));
    return good && std::string(text).find('\t') != std::string::npos;
}

bool BenchList(Bench* bench) {
    // Where the system walks the whole folder for each name, the time grows with the square of the count.
    const std::size_t count = bench->quick ? 500 : 10000;
    const std::string folder = bench->folder + "list\\";
    Progress("writing " + std::to_string(count) + " listed files");
    if (!CreateDirectoryA(folder.c_str(), nullptr)) return Fail("cannot make " + folder);
    std::vector<std::string> names = WriteSmallFiles(folder, count, count);
    if (names.size() < count) return Fail("cannot write the listed files");
    const std::size_t pathSize = names[0].rfind('\\') + 1;
    const std::string listed = names[0].substr(0, pathSize);
    for (std::string& name : names) name.erase(0, pathSize);

    const std::unique_ptr<HWND, WindowDestroy> dialog(
        CreateDialogParamA(ThisModule(), MAKEINTRESOURCEA(IDD_FILE_SELECTION), nullptr, NoMessages, 0));
    if (!dialog) return Fail("list: no dialog");
    ShowWindow(dialog.get(), SW_SHOW);
    const HWND list = GetDlgItem(dialog.get(), IDC_FILE_LIST);
    Fill(list, names);
    SubclassFileList(list);

    char previous[MAX_PATH] = "";
    GetCurrentDirectoryA(sizeof(previous), previous);
    SetCurrentDirectoryA(listed.c_str());  // the list holds bare names
    DisplayOptionBits = kColumns;
    SortOptionBits = KW_SORT_NAME;
    Comparison rounds;
    const bool good = MeasureRounds(list, names, bench->quick ? 3 : 5, &rounds);
    if (good) bench->rows.push_back(TimeRow("list " + std::to_string(count) + " files", rounds, kLimit));
    SetCurrentDirectoryA(previous);  // the folder is to be removed
    UnsubclassFileList(list);
    return good || Fail("list: a file was not found");
}
