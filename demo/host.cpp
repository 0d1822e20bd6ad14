// kwdemo: a small host with a button for each service of kwdialogs.dll.
//
//   kwdemo.exe [--samples FOLDER] [--shots FOLDER [--lang-suffix TEXT]]
//
// With --shots it drives itself through the dialogs, on a copy of the samples in C:\Drawings, and leaves a PNG picture
// of each in FOLDER.
#include "host.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "kwdialogs.h"
#include "parameter_dialog.h"
#include "resource.h"
#include "sample_copy.h"
#include "screen_shots.h"

namespace {

// What the host remembers from one dialog to the next.
struct Host {
    const Options& options;
    char path[KW_MAX_PATH] = "";
    char folder[KW_MAX_PATH] = "";
    DWORD filterIndex = 1;
    DWORD sortOptions = KW_SORT_NAME;
    DWORD displayOptions = KW_SHOW_SIZE | KW_SHOW_DATE;
    MachiningParameters parameters = {};
};

template <size_t kSize>
const char* LoadText(UINT id, char (&text)[kSize]) {
    if (!LoadStringA(GetModuleHandleA(nullptr), id, text, static_cast<int>(kSize))) text[0] = '\0';
    return text;
}

void ShowResult(HWND window, bool chosen, const char* path) {
    char format[128], text[KW_MAX_PATH + sizeof(format)];
    if (chosen) {
        std::snprintf(text, sizeof(text), LoadText(IDS_CHOSEN, format), path);
    } else {
        LoadText(IDS_CANCELLED, text);
    }
    SetDlgItemTextA(window, IDC_RESULT, text);
}

void SelectFile(HWND window, Host& host, int modeBits, UINT titleId) {
    char title[128], filter[512];
    LoadText(titleId, title);
    LoadText(IDS_FILTER, filter);
    for (char *c = filter, *next; *c; c = next) {
        next = CharNextA(c);
        if (*c == '|') *c = '\0';
    }
    kwSelectFileGUI(IsDlgButtonChecked(window, IDC_CLASSIC_STYLE) == BST_CHECKED);
    const int keepLongName = IsDlgButtonChecked(window, IDC_SHORT_NAMES) != BST_CHECKED;

    SelectRequest request = {};
    request.title = title;
    request.filter = filter;
    request.initialDir = host.options.samples.c_str();
    request.filterIndex = host.filterIndex;
    request.fileBuffer = host.path;
    request.fileBufferSize = sizeof(host.path);
    request.defaultExt = "dxf";
    request.sortOptions = host.sortOptions;
    request.displayOptions = host.displayOptions;
    const bool chosen = kwSelectFileName(window, modeBits, keepLongName, &request) != 0;
    host.filterIndex = request.filterIndex;
    host.sortOptions = request.sortOptions;
    host.displayOptions = request.displayOptions;
    ShowResult(window, chosen, host.path);
}

void OpenWithPreview(HWND window, Host& host) {
    host.path[0] = '\0';
    const int fullDxf = IsDlgButtonChecked(window, IDC_FULL_DXF) == BST_CHECKED ? KW_FILE_FULL_DXF : 0;
    SelectFile(window, host, KW_FILE_OPEN | KW_FILE_PREVIEW | fullDxf, IDS_OPEN_TITLE);
}

void Open(HWND window, Host& host) {
    host.path[0] = '\0';
    SelectFile(window, host, KW_FILE_OPEN, IDS_OPEN_TITLE);
}

void Save(HWND window, Host& host) {
    lstrcpynA(host.path, "mounting_plate", sizeof(host.path));
    SelectFile(window, host, 0, IDS_SAVE_TITLE);
}

void ChooseFolder(HWND window, Host& host) {
    char title[128];
    if (!host.folder[0]) lstrcpynA(host.folder, (host.options.samples + "\\").c_str(), sizeof(host.folder));
    kwSelectFileGUI(IsDlgButtonChecked(window, IDC_CLASSIC_STYLE) == BST_CHECKED);
    const bool chosen = kwSelectDirectryName(window, LoadText(IDS_FOLDER_TITLE, title), host.folder) != 0;
    ShowResult(window, chosen, host.folder);
}

void EditHostParameters(HWND window, Host& host) {
    const int result = EditParameters(window, &host.parameters);
    SetDlgItemTextA(window, IDC_RESULT, DescribeParameters(result, host.parameters).c_str());
}

struct Service {
    int button;
    void (*run)(HWND window, Host& host);
};
constexpr Service kServices[] = {
    {IDC_OPEN_WITH_PREVIEW, OpenWithPreview}, {IDC_OPEN, Open}, {IDC_SAVE, Save}, {IDC_CHOOSE_FOLDER, ChooseFolder},
    {IDC_PARAMETERS, EditHostParameters},
};

INT_PTR OnCommand(HWND window, Host& host, int id) {
    if (id == IDCANCEL) EndDialog(window, 0);
    for (const Service& service : kServices) {
        if (service.button == id) service.run(window, host);
    }
    return TRUE;
}

INT_PTR CALLBACK HostProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) SetWindowLongPtrA(window, DWLP_USER, lParam);  // the Host record of WinMain
    auto* host = reinterpret_cast<Host*>(GetWindowLongPtrA(window, DWLP_USER));
    if (!host) return FALSE;
    switch (message) {
        case WM_INITDIALOG:
            CheckDlgButton(window, IDC_FULL_DXF, BST_CHECKED);
            SetForegroundWindow(window);  // or the tour's pictures show it without the colours of an active window
            return TRUE;
        case WM_COMMAND: return OnCommand(window, *host, LOWORD(wParam));
        default: return FALSE;
    }
}

// The nearest folder "samples" beside or above the program's own, wherever the build has put the program; empty when
// there is none.
std::string FindSamples() {
    char program[MAX_PATH] = "";
    const DWORD length = GetModuleFileNameA(nullptr, program, sizeof(program));
    std::string folder(program, length < sizeof(program) ? length : 0);
    for (;;) {
        const size_t backslash = folder.rfind('\\');  // a trail byte that reads as one only costs a pass
        if (backslash == std::string::npos) return {};
        folder.resize(backslash);
        std::string samples = folder + "\\samples";
        if (GetFileAttributesA(samples.c_str()) != INVALID_FILE_ATTRIBUTES) return samples;
    }
}

bool ParseArguments(int count, char** arguments, Options& options) {
    const struct {
        const char* name;
        std::string* value;
    } known[] = {
        {"--samples", &options.samples},
        {"--shots", &options.shots},
        {"--lang-suffix", &options.language},
    };
    for (int i = 1; i < count; i += 2) {
        bool taken = false;
        for (const auto& option : known) {
            if (std::strcmp(arguments[i], option.name) != 0 || i + 1 == count) continue;
            *option.value = arguments[i + 1];
            taken = true;
        }
        if (!taken) return false;
    }
    return true;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
    Options options;
    if (!ParseArguments(__argc, __argv, options)) {
        std::fputs("usage: kwdemo.exe [--samples FOLDER] [--shots FOLDER [--lang-suffix TEXT]]\n", stderr);
        return 2;
    }
    if (options.samples.empty()) options.samples = FindSamples();
    if (options.language.empty()) {
        const bool japanese = PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_JAPANESE;
        options.language = japanese ? "ja" : "en";
    }
    const bool onCopy = !options.shots.empty();
    if (onCopy) {
        options.samples = CopySamples(options.samples);
        if (options.samples.empty()) {
            std::fputs("kwdemo: the samples could not be copied for the pictures\n", stderr);
            return 1;
        }
    }
    Host host{options};
    const auto showHost = [&] {
        DialogBoxParamA(instance, MAKEINTRESOURCEA(IDD_HOST), nullptr, HostProc, reinterpret_cast<LPARAM>(&host));
    };
    if (!onCopy) {
        showHost();
        return 0;
    }
    const int result = TakeTour(showHost, options);
    RemoveSampleCopy(options.samples);
    return result;
}
