#include "screen_shots.h"

#include <commctrl.h>
#include <commdlg.h>
#include <dlgs.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "png_file.h"
#include "resource.h"
#include "sample_copy.h"

namespace {

constexpr UINT kTickMilliseconds = 50;
constexpr DWORD kStepMilliseconds = 30000;  // one step; the tour gives up after that
constexpr int kSettleTicks = 6;             // for the screen to show what the windows have drawn
constexpr int kStillTicks = 10;             // a pane without a comment is done when it has not changed for so long

// Controls of the preview pane.
constexpr int kPanePicture = 1007;
constexpr int kPaneComment = 1061;
constexpr int kPaneGallery = 1063;

// Controls of the gallery.
constexpr int kGalleryList = 1064;
constexpr int kGalleryProgress = 1065;

// One thing to do or to wait for. It is asked at each tick until it returns true.
struct Step {
    std::string what;
    std::function<bool()> done;
};

struct Tour {
    HWND host;
    const Options* options;
    std::string folder;  // options->shots as a full path: an open dialog moves the current directory
    std::vector<Step> steps;
    size_t next;
    bool inStep;  // a step lets messages through, the timer's too
    bool failed;
    volatile LONG progress;  // steps done, for the watchdog
};
Tour tour;  // one a process: a timer procedure has no argument

// ---- Windows

BOOL CALLBACK TakeFrontDialog(HWND window, LPARAM found) {
    char name[16] = "";
    GetClassNameA(window, name, sizeof(name));
    if (window == tour.host || std::strcmp(name, "#32770") != 0) return TRUE;
    if (!IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

// The dialog that waits for the user: the only enabled one besides the host; null when there is none.
HWND FrontDialog() {
    HWND found = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), TakeFrontDialog, reinterpret_cast<LPARAM>(&found));
    return found;
}

struct Search {
    const char* className;  // or null: by id
    int id;
    HWND found;
};

BOOL CALLBACK TakeWanted(HWND window, LPARAM parameter) {
    Search& search = *reinterpret_cast<Search*>(parameter);
    char name[32] = "";
    GetClassNameA(window, name, sizeof(name));
    const bool fits = search.className ? lstrcmpiA(name, search.className) == 0 : GetDlgCtrlID(window) == search.id;
    if (fits) search.found = window;
    return !fits;
}

HWND FindBelow(HWND dialog, Search search) {
    EnumChildWindows(dialog, TakeWanted, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

// A control anywhere below the front dialog.
HWND FindByClass(const char* className) { return FindBelow(FrontDialog(), {className, 0, nullptr}); }
HWND FindById(int id) { return FindBelow(FrontDialog(), {nullptr, id, nullptr}); }

std::string TextOf(HWND window) {
    std::string text(static_cast<size_t>(GetWindowTextLengthA(window)) + 1, '\0');
    text.resize(static_cast<size_t>(GetWindowTextA(window, &text[0], static_cast<int>(text.size()))));
    return text;
}

// ---- Pictures

struct BitmapDelete {
    using pointer = HBITMAP;
    void operator()(HBITMAP bitmap) const { DeleteObject(bitmap); }
};
using UniqueBitmap = std::unique_ptr<HBITMAP, BitmapDelete>;

struct DcDelete {
    using pointer = HDC;
    void operator()(HDC dc) const { DeleteDC(dc); }
};

// That part of the screen as a bitmap; null when there is no memory for it.
UniqueBitmap CaptureScreen(const RECT& part) {
    const int width = part.right - part.left, height = part.bottom - part.top;
    const HDC screen = GetDC(nullptr);
    UniqueBitmap bitmap(CreateCompatibleBitmap(screen, width, height));
    {
        const std::unique_ptr<HDC, DcDelete> memory(CreateCompatibleDC(screen));
        const HGDIOBJ previous = SelectObject(memory.get(), bitmap.get());
        if (!previous || !BitBlt(memory.get(), 0, 0, width, height, screen, part.left, part.top, SRCCOPY)) {
            bitmap.reset();
        }
        if (previous) SelectObject(memory.get(), previous);
    }
    ReleaseDC(nullptr, screen);
    return bitmap;
}

bool SaveShot(const std::string& name) {
    RECT part = {};
    GetWindowRect(FrontDialog() ? FrontDialog() : tour.host, &part);
    const std::string file = "/" + name + "_" + tour.options->language + ".png";
    const UniqueBitmap bitmap = CaptureScreen(part);
    const bool saved = bitmap && SavePng(bitmap.get(), (tour.folder + file).c_str());
    std::printf("%s%s%s\n", tour.options->shots.c_str(), file.c_str(), saved ? "" : ": could not be written");
    std::fflush(stdout);
    return saved;
}

// ---- Steps

Step Press(int button) {
    return {"press host button " + std::to_string(button), [button] {
                if (FrontDialog() || !IsWindowEnabled(tour.host)) return false;
                PostMessageA(tour.host, WM_COMMAND, static_cast<WPARAM>(button), 0);
                return true;
            }};
}

Step SetClassicStyle(bool classic) {
    return {"choose the style", [classic] {
                CheckDlgButton(tour.host, IDC_CLASSIC_STYLE, classic ? BST_CHECKED : BST_UNCHECKED);
                return true;
            }};
}

Step FileDialogShows() {
    return {"wait for the file dialog", [] { return GetDlgItem(FrontDialog(), cmb1) != nullptr; }};
}

Step FolderTreeShows() {
    return {"wait for the folder tree", [] {
                const HWND tree = FindByClass(WC_TREEVIEWA);
                return tree && SendMessageA(tree, TVM_GETNEXTITEM, TVGN_CARET, 0);
            }};
}

// The gallery as it opens, with pictures still to come.
Step GalleryShows() {
    return {"wait for the gallery", [] { return FindById(kGalleryList) != nullptr; }};
}

Step GalleryGone() {
    return {"wait for the gallery to go", [] { return FindById(kGalleryList) == nullptr; }};
}

Step AddDrawings(int count) {
    return {"add drawings", [=] {
                AddManyCopies(tour.options->samples, "mounting_plate.dxf", count);
                return true;
            }};
}

Step RemoveDrawings() {
    return {"remove the drawings that were added", [] {
                RemoveManyCopies(tour.options->samples);
                return true;
            }};
}

// It hides its progress bar when the last picture is there.
Step GalleryComplete() {
    return {"wait for the gallery's pictures", [] { return !IsWindowVisible(FindById(kGalleryProgress)); }};
}

// Makes the front dialog larger, as a user would at its corner.
Step GrowDialog(int dx, int dy) {
    return {"grow the dialog", [dx, dy] {
                RECT rect = {};
                GetWindowRect(FrontDialog(), &rect);
                return SetWindowPos(FrontDialog(), nullptr, rect.left - dx / 2, rect.top - dy / 2,
                                    rect.right - rect.left + dx, rect.bottom - rect.top + dy, SWP_NOZORDER) != FALSE;
            }};
}

// The picture as it is now, without a wait.
Step ShootAtOnce(const std::string& name) {
    return {"take " + name, [=] {
                if (!SaveShot(name)) tour.failed = true;
                return true;
            }};
}

Step ControlShows(int id) {
    return {"wait for control " + std::to_string(id), [id] { return IsWindowVisible(FindById(id)) != FALSE; }};
}

// Types into a field and, unless that is none, goes on to the next one.
Step TypeInto(int field, const std::string& text, int nextField = 0) {
    return {"type " + text, [=] {
                SetFocus(FindById(field));
                SetWindowTextA(FindById(field), text.c_str());
                SendMessageA(FindById(field), EM_SETSEL, text.size(), static_cast<LPARAM>(text.size()));
                if (nextField) SetFocus(FindById(nextField));
                return true;
            }};
}

Step SelectTab(int index) {
    return {"select tab " + std::to_string(index), [index] {
                SendMessageA(FindByClass(WC_TABCONTROLA), TCM_SETCURFOCUS, static_cast<WPARAM>(index), 0);
                return true;
            }};
}

Step QuestionShows() {
    return {"wait for the question", [] { return FrontDialog() && !GetDlgItem(FrontDialog(), cmb1); }};
}

Step DialogGone() {
    return {"wait for the dialog's end", [] { return !FrontDialog() && IsWindowEnabled(tour.host); }};
}

Step PressInDialog(int button) {
    return {"press dialog button " + std::to_string(button), [button] {
                const HWND dialog = FrontDialog();
                if (!dialog || !GetDlgItem(dialog, button)) return false;
                PostMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(button),
                             reinterpret_cast<LPARAM>(GetDlgItem(dialog, button)));
                return true;
            }};
}

// A button of the preview pane, which is a dialog inside the file dialog.
Step PressInPane(int button) {
    return {"press pane button " + std::to_string(button), [button] {
                const HWND control = FindById(button);
                return control && PostMessageA(control, BM_CLICK, 0, 0);
            }};
}

// Selects a file in the list of the Explorer-style dialog, as soon as it is listed.
Step SelectInExplorer(const std::string& name) {
    return {"select " + name, [name] {
                const HWND list = FindByClass(WC_LISTVIEWA);
                LVFINDINFOA find = {};
                find.flags = LVFI_STRING;
                find.psz = name.c_str();
                const LRESULT index =
                    list ? SendMessageA(list, LVM_FINDITEMA, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&find))
                         : -1;
                if (index < 0) return false;
                SetFocus(list);
                LVITEMA state = {};
                state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
                SendMessageA(list, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&state));
                state.state = state.stateMask;
                SendMessageA(list, LVM_SETITEMSTATE, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&state));
                SendMessageA(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(index), FALSE);
                return true;
            }};
}

// Selects a file in the list box of the classic dialog; its lines begin with the name.
Step SelectInClassic(const std::string& name) {
    return {"select " + name, [name] {
                const HWND dialog = FrontDialog();
                const HWND list = GetDlgItem(dialog, lst1);
                if (!list) return false;
                const LRESULT index = SendMessageA(list, LB_SELECTSTRING, static_cast<WPARAM>(-1),
                                                   reinterpret_cast<LPARAM>(name.c_str()));
                if (index < 0) return false;
                SetFocus(list);
                SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(lst1, LBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
                return true;
            }};
}

// The comment comes last: once it holds the text, the picture is there.
Step CommentShows(const std::string& text) {
    return {"wait for the comment \"" + text + "\"",
            [text] { return TextOf(FindById(kPaneComment)).find(text) != std::string::npos; }};
}

// Waits for a picture of that size (or of any, for 0) without a comment that has stood for a while.
Step PictureShows(int width, int height) {
    auto seen = std::make_shared<std::pair<HBITMAP, int>>();
    return {"wait for a picture without comment", [=] {
                const HWND pane = FindById(kPanePicture);
                const auto bitmap = reinterpret_cast<HBITMAP>(SendMessageA(pane, STM_GETIMAGE, IMAGE_BITMAP, 0));
                BITMAP facts = {};
                GetObjectA(bitmap, sizeof(facts), &facts);
                const bool fits = bitmap && (!width || (facts.bmWidth == width && facts.bmHeight == height));
                if (!fits || bitmap != seen->first) *seen = {bitmap, 0};
                if (!TextOf(FindById(kPaneComment)).empty()) return false;
                return fits && ++seen->second >= kStillTicks;
            }};
}

Step Shoot(const std::string& name) {
    auto ticks = std::make_shared<int>(0);
    return {"take " + name, [=] {
                if (++*ticks == 1) {
                    for (const HWND window : {tour.host, FrontDialog()}) {
                        if (window) RedrawWindow(window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
                    }
                }
                if (*ticks < kSettleTicks) return false;
                if (!SaveShot(name)) tour.failed = true;
                return true;
            }};
}

// A sample in the pane of the Explorer-style dialog.
struct PaneShot {
    const char* picture;
    const char* sample;
    const char* japaneseSample;
    const char* comment;  // a part of it that the sample before has not
};
constexpr PaneShot kPaneShots[] = {
    {"explorer_part", "mounting_plate.dxf", "mounting_plate.dxf", "MP-2040-01"},
    {"explorer_plan", "house_plan.dxf", "house_plan_ja.dxf", "HP-0117"},
    {"explorer_native_a", "mounting_plate.qa", "mounting_plate.qa", "MP-2040-01"},
    {"explorer_native_a_origin", "house_plan.qa", "house_plan.qa", "HP-0117"},
    {"explorer_native_b", "drive_shaft.lms", "drive_shaft_ja.lms", "DS-0350-02"},
    {"explorer_native_b_origin", "house_plan.lms", "house_plan_ja.lms", "HP-0117"},
    {"explorer_backup", "drive_shaft.lbk", "drive_shaft_ja.lbk", "DS-0350-02"},
    {"explorer_exf", "house_plan.exf", "house_plan_ja.exf", "HP-0117"},
    {"explorer_command", "plot_plate.cmd", "plot_shaft_ja.cmd", "DIALOG_PREVIEW"},
    {"explorer_qf", "house_plan.qf", "house_plan_ja.qf", "HP-0117"},
    {"explorer_qj", "drive_shaft.qj", "drive_shaft_ja.qj", "DS-0350-02"},
    {"explorer_text", "machining_notes.txt", "machining_notes_ja.txt", "MP-2040-01"},
};

std::vector<Step> StepsOfTour(bool japanese) {
    std::vector<Step> steps = {Shoot("host"), Press(IDC_OPEN_WITH_PREVIEW), FileDialogShows()};
    for (const PaneShot& shot : kPaneShots) {
        steps.push_back(SelectInExplorer(japanese ? shot.japaneseSample : shot.sample));
        steps.push_back(CommentShows(shot.comment));
        steps.push_back(Shoot(shot.picture));
    }
    const Step rest[] = {
        SelectInExplorer("flange.bmp"),
        PictureShows(176, 124),
        Shoot("explorer_picture"),
        SelectInExplorer("mounting_plate.nc"),
        PictureShows(0, 0),
        Shoot("explorer_no_preview"),
        SelectInExplorer("mounting_plate.dxf"),
        CommentShows("MP-2040-01"),
        AddDrawings(600),  // else all pictures are there before one can look
        PressInPane(kPaneGallery),
        GalleryShows(),
        ShootAtOnce("gallery_loading"),
        PressInDialog(IDCANCEL),
        GalleryGone(),
        RemoveDrawings(),
        PressInPane(kPaneGallery),
        GalleryShows(),
        GalleryComplete(),
        Shoot("gallery"),
        GrowDialog(170, 110),
        Shoot("gallery_resized"),
        PressInDialog(IDOK),  // the drawing that was selected before
        DialogGone(),
        Shoot("host_chosen"),

        Press(IDC_OPEN),
        FileDialogShows(),
        SelectInExplorer("mounting_plate.dxf"),
        Shoot("explorer_plain"),
        PressInDialog(IDCANCEL),
        DialogGone(),

        Press(IDC_SAVE),
        FileDialogShows(),
        Shoot("save"),
        PressInDialog(IDOK),
        QuestionShows(),
        Shoot("save_overwrite"),
        PressInDialog(IDCANCEL),
        FileDialogShows(),
        PressInDialog(IDCANCEL),
        DialogGone(),

        Press(IDC_CHOOSE_FOLDER),
        FolderTreeShows(),
        Shoot("folder_tree"),
        PressInDialog(IDCANCEL),
        DialogGone(),

        SetClassicStyle(true),
        Press(IDC_OPEN),
        FileDialogShows(),
        SelectInClassic("mounting_plate.dxf"),
        Shoot("classic"),
        PressInDialog(IDCANCEL),
        DialogGone(),

        Press(IDC_CHOOSE_FOLDER),
        FileDialogShows(),
        Shoot("classic_folder"),
        PressInDialog(IDOK),
        DialogGone(),
        Shoot("host_folder_chosen"),

        Press(IDC_PARAMETERS),
        ControlShows(IDC_DEPTH),
        TypeInto(IDC_ANGLE, "29:30'", IDC_DEPTH),
        TypeInto(IDC_DEPTH, "25.4/4"),
        Shoot("parameters_typed"),
        TypeInto(IDC_DEPTH, "25.4/4", IDC_SPEED),
        Shoot("parameters_cutting"),
        SelectTab(1),
        TypeInto(IDC_TEETH, "99", IDC_DIAMETER),
        Shoot("parameters_tool"),
        PressInDialog(IDC_SIMULATE),
        DialogGone(),
        Shoot("host_parameters"),
    };
    steps.insert(steps.end(), std::begin(rest), std::end(rest));
    return steps;
}

// ---- The tour

void CALLBACK OnTick(HWND, UINT, UINT_PTR timer, DWORD) {
    if (tour.inStep) return;
    if (tour.next == tour.steps.size()) {
        KillTimer(nullptr, timer);
        EndDialog(tour.host, tour.failed ? 1 : 0);
        return;
    }
    tour.inStep = true;
    if (tour.steps[tour.next].done()) {
        ++tour.next;
        InterlockedIncrement(&tour.progress);
    }
    tour.inStep = false;
}

// Ends the process when the tour has not come forward for a while: the timer of a hung dialog no longer ticks.
DWORD WINAPI Watch(void*) {
    for (LONG seen = -1; seen != tour.progress;) {
        seen = tour.progress;
        Sleep(kStepMilliseconds);
    }
    const auto step = static_cast<size_t>(tour.progress);
    if (step >= tour.steps.size()) return 0;
    std::fprintf(stderr, "kwdemo: stuck at step %u: %s\n", static_cast<unsigned>(step), tour.steps[step].what.c_str());
    std::fflush(stderr);
    TerminateProcess(GetCurrentProcess(), 3);
    return 0;
}

}  // namespace

void StartTour(HWND host, const Options& options) {
    char folder[MAX_PATH] = "";
    const DWORD length = GetFullPathNameA(options.shots.c_str(), sizeof(folder), folder, nullptr);
    if (length == 0 || length >= sizeof(folder)) {
        std::fprintf(stderr, "kwdemo: %s: no usable folder name\n", options.shots.c_str());
        EndDialog(host, 1);
        return;
    }
    CreateDirectoryA(folder, nullptr);  // an existing one is as good
    tour.host = host;
    tour.options = &options;
    tour.folder = folder;
    tour.steps = StepsOfTour(options.language == "ja");
    if (const HANDLE thread = CreateThread(nullptr, 0, Watch, nullptr, 0, nullptr)) CloseHandle(thread);
    SetForegroundWindow(host);
    SetTimer(nullptr, 0, kTickMilliseconds, OnTick);
}
