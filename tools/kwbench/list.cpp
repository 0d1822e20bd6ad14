// The file list of the classic dialog: sorting and describing its lines, against asking the system for each file once.
#include "filesel/file_list.h"

#include <cstring>
#include <string>
#include <vector>

#include "frame/module.h"
#include "kwbench.h"
#include "kwdialogs.h"
#include "resources/resource.h"

static INT_PTR CALLBACK NoMessages(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

static void FindEach(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        WIN32_FIND_DATAA found;
        const UniqueFind search(FindFirstFileA(name.c_str(), &found));
        Require(search.get() != INVALID_HANDLE_VALUE, "list: no " + name);
    }
}

void BenchList(Bench* bench) {
    // Where the system walks the whole folder for each name, the time grows with the square of the count.
    const std::size_t count = bench->quick ? 500 : 10000;
    Progress("writing " + std::to_string(count) + " listed files");
    const std::string folder = MakeFolder(*bench, "list");
    const std::vector<std::string> names = WriteSmallFiles(folder, count);

    const HWND dialog = CreateDialogParamA(ThisModule(), MAKEINTRESOURCEA(IDD_FILE_SELECTION), nullptr, NoMessages, 0);
    const HWND list = GetDlgItem(dialog, IDC_FILE_LIST);
    Require(list, "list: no dialog");
    ShowWindow(dialog, SW_SHOW);
    SendMessageA(list, WM_SETREDRAW, FALSE, 0);  // bare names come from the system, before the dialog is shown
    for (const std::string& name : names) SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    SendMessageA(list, WM_SETREDRAW, TRUE, 0);
    SubclassFileList(list);
    SetCurrentDirectoryA(folder.c_str());
    DisplayOptionBits = KW_SHOW_SIZE | KW_SHOW_DATE | KW_SHOW_TIME;  // all but the comment, which reads files
    SortOptionBits = KW_SORT_NAME;
    // What the user waits for who clicks on a check box: the list is rebuilt as it stands on the screen, and drawn.
    const auto rebuild = [&] {
        SendMessageA(list, WM_SETREDRAW, TRUE, 0);
        UpdateWindow(list);
    };
    const auto find = [&] { FindEach(names); };
    find();  // what the system keeps of a folder
    AddComparison(bench, "list " + std::to_string(count) + " files", bench->quick ? 3 : 5, Timed(rebuild), Timed(find),
                  2);
    char last[1024] = "";
    SendMessageA(list, LB_GETTEXT, count - 1, reinterpret_cast<LPARAM>(last));
    Require(std::strchr(last, '\t'), "list: the last line has no columns");
    UnsubclassFileList(list);
    DestroyWindow(dialog);
}
