// The file list of the classic dialog: sorting and describing its lines, against asking the system for each file once.
#include "filesel/file_list.h"

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "frame/module.h"
#include "kwbench.h"
#include "kwdialogs.h"
#include "resources/resource.h"

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

// The last line shows that the columns have come.
static bool HasColumns(HWND list, std::size_t count) {
    char text[1024] = "";
    SendMessageA(list, LB_GETTEXT, count - 1, reinterpret_cast<LPARAM>(text));
    return SendMessageA(list, LB_GETCOUNT, 0, 0) == static_cast<LRESULT>(count) && std::strchr(text, '\t');
}

void BenchList(Bench* bench) {
    // Where the system walks the whole folder for each name, the time grows with the square of the count.
    const std::size_t count = bench->quick ? 500 : 10000;
    Progress("writing " + std::to_string(count) + " listed files");
    const std::string folder = MakeFolder(*bench, "list");
    const std::vector<std::string> names = WriteSmallFiles(folder, count);

    const std::unique_ptr<HWND, WindowDestroy> dialog(
        CreateDialogParamA(ThisModule(), MAKEINTRESOURCEA(IDD_FILE_SELECTION), nullptr, NoMessages, 0));
    Require(dialog != nullptr, "list: no dialog");
    ShowWindow(dialog.get(), SW_SHOW);
    const HWND list = GetDlgItem(dialog.get(), IDC_FILE_LIST);
    Fill(list, names);
    SubclassFileList(list);
    char previous[MAX_PATH] = "";
    GetCurrentDirectoryA(sizeof(previous), previous);
    SetCurrentDirectoryA(folder.c_str());                            // the list holds bare names
    DisplayOptionBits = KW_SHOW_SIZE | KW_SHOW_DATE | KW_SHOW_TIME;  // all but the comment, which reads files
    SortOptionBits = KW_SORT_NAME;
    bool good = FindEach(names);  // what the system keeps of a folder
    const std::vector<Series> times = Measure(bench->quick ? 3 : 5, {Timed([&] {
                                                                         // What the user waits for who clicks on a
                                                                         // check box: the list is rebuilt as it stands
                                                                         // on the screen, and drawn.
                                                                         SendMessageA(list, WM_SETREDRAW, TRUE, 0);
                                                                         UpdateWindow(list);
                                                                     }),
                                                                     Timed([&] { good = FindEach(names) && good; })});
    good = good && HasColumns(list, count);
    SetCurrentDirectoryA(previous);  // the folder is to be removed
    UnsubclassFileList(list);
    Require(good, "list: a file was not found");
    bench->rows.push_back(TimeRow("list " + std::to_string(count) + " files", times[0], times[1], 2));
}
