#include "screen_shots.h"

#include <windows.h>

#include <commctrl.h>
#include <commdlg.h>
#include <dlgs.h>

#include <cstdio>
#include <iterator>
#include <memory>
#include <vector>

#include "dialog_robot.h"
#include "png_file.h"
#include "resource.h"
#include "sample_copy.h"

namespace {

constexpr DWORD kSettleMilliseconds = 300;  // for the screen to show what the windows have drawn
constexpr DWORD kStillMilliseconds = 500;   // a pane without a comment is done when it has not changed for so long

// Controls of the preview pane.
constexpr int kPanePicture = 1007;
constexpr int kPaneComment = 1061;
constexpr int kPaneGallery = 1063;

// Controls of the gallery.
constexpr int kGalleryList = 1064;
constexpr int kGalleryProgress = 1065;

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

struct Tour {
    const Options& options;
    std::string folder;  // options.shots as a full path: an open dialog moves the current directory
    bool failed;

    void Save(HWND dialog, const std::string& name) {
        RECT part = {};
        GetWindowRect(dialog, &part);
        const std::string file = "/" + name + "_" + options.language + ".png";
        const UniqueBitmap bitmap = CaptureScreen(part);
        const bool saved = bitmap && SavePng(bitmap.get(), (folder + file).c_str());
        std::printf("%s%s%s\n", options.shots.c_str(), file.c_str(), saved ? "" : ": could not be written");
        std::fflush(stdout);
        if (!saved) failed = true;
    }
    // The picture as it is now, without a wait.
    DialogStep ShootAtOnce(const std::string& name) {
        return Check([=](HWND dialog) { Save(dialog, name); });
    }
    DialogStep Shoot(const std::string& name) {
        const auto redraw = [](HWND dialog) {
            return RedrawWindow(dialog, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN) != FALSE;
        };
        const DialogStep settled = Lasts(redraw, kSettleMilliseconds);
        return [=](HWND dialog) {
            if (!settled(dialog)) return false;
            Save(dialog, name);
            return true;
        };
    }
};

// ---- Steps

DialogStep Shows(int id) {
    return [=](HWND dialog) { return IsWindowVisible(FindControl(dialog, id)) != FALSE; };
}

bool FolderTreeShows(HWND dialog) {
    const HWND tree = FindControl(dialog, WC_TREEVIEWA);
    return tree && SendMessageA(tree, TVM_GETNEXTITEM, TVGN_CARET, 0);
}

// It hides its progress bar when the last picture is there.
bool GalleryComplete(HWND dialog) { return !IsWindowVisible(FindControl(dialog, kGalleryProgress)); }

bool QuestionShows(HWND dialog) { return !GetDlgItem(dialog, cmb1); }

// Makes the front dialog larger, as a user would at its corner.
DialogStep GrowDialog(int dx, int dy) {
    return Check([=](HWND dialog) {
        RECT rect = {};
        GetWindowRect(dialog, &rect);
        SetWindowPos(dialog, nullptr, rect.left - dx / 2, rect.top - dy / 2, rect.right - rect.left + dx,
                     rect.bottom - rect.top + dy, SWP_NOZORDER);
    });
}

// Types into a field and, unless that is none, goes on to the next one.
DialogStep TypeInto(int field, const std::string& text, int nextField = 0) {
    return Check([=](HWND dialog) {
        const HWND edit = FindControl(dialog, field);
        SetFocus(edit);
        SetWindowTextA(edit, text.c_str());
        SendMessageA(edit, EM_SETSEL, text.size(), static_cast<LPARAM>(text.size()));
        if (nextField) SetFocus(FindControl(dialog, nextField));
    });
}

DialogStep SelectTab(int index) {
    return Check([=](HWND dialog) {
        SendMessageA(FindControl(dialog, WC_TABCONTROLA), TCM_SETCURFOCUS, static_cast<WPARAM>(index), 0);
    });
}

// Selects a file in the list box of the classic dialog; its lines begin with the name.
DialogStep SelectInList(const std::string& name) {
    return [=](HWND dialog) {
        const HWND list = GetDlgItem(dialog, lst1);
        const auto wanted = reinterpret_cast<LPARAM>(name.c_str());
        const LRESULT line = list ? SendMessageA(list, LB_FINDSTRING, static_cast<WPARAM>(-1), wanted) : -1;
        if (line < 0) return false;
        SetFocus(list);
        SelectLine(dialog, lst1, static_cast<int>(line));
        return true;
    };
}

// The comment comes last: once it holds the text, the picture is there.
DialogStep CommentShows(const std::string& text) {
    return [=](HWND dialog) { return ControlText(dialog, kPaneComment).find(text) != std::string::npos; };
}

// Waits for a picture of that size (or of any, for 0) without a comment that has stood for a while.
DialogStep PictureShows(int width, int height) {
    const auto shows = [=, seen = HBITMAP{}](HWND dialog) mutable {
        const LRESULT image = SendMessageA(FindControl(dialog, kPanePicture), STM_GETIMAGE, IMAGE_BITMAP, 0);
        const HBITMAP before = seen;
        seen = reinterpret_cast<HBITMAP>(image);
        BITMAP facts = {};
        GetObjectA(seen, sizeof(facts), &facts);
        return seen && seen == before && (!width || (facts.bmWidth == width && facts.bmHeight == height)) &&
               ControlText(dialog, kPaneComment).empty();
    };
    return Lasts(shows, kStillMilliseconds);
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
    {"explorer_full_dxf", "pump_cover.dxf", "pump_cover_ja.dxf", "PC-0062-01"},
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

std::vector<DialogStep> StepsOf(Tour& tour) {
    const bool japanese = tour.options.language == "ja";
    const std::string& samples = tour.options.samples;
    const auto addDrawings = [&](HWND) { AddManyCopies(samples, "mounting_plate.dxf", 600); };
    const auto removeDrawings = [&](HWND) { RemoveManyCopies(samples); };
    const auto chooseBasicDxf = [](HWND host) { CheckDlgButton(host, IDC_FULL_DXF, BST_UNCHECKED); };
    const auto chooseClassicStyle = [](HWND host) { CheckDlgButton(host, IDC_CLASSIC_STYLE, BST_CHECKED); };
    std::vector<DialogStep> steps = {tour.Shoot("host"), Press(IDC_OPEN_WITH_PREVIEW), Shows(cmb1)};
    for (const PaneShot& shot : kPaneShots) {
        steps.push_back(SelectFile(japanese ? shot.japaneseSample : shot.sample));
        steps.push_back(CommentShows(shot.comment));
        steps.push_back(tour.Shoot(shot.picture));
    }
    const DialogStep rest[] = {
        SelectFile("flange.bmp"),
        PictureShows(176, 124),
        tour.Shoot("explorer_picture"),
        SelectFile("mounting_plate.nc"),
        PictureShows(0, 0),
        tour.Shoot("explorer_no_preview"),
        SelectFile("mounting_plate.dxf"),
        CommentShows("MP-2040-01"),
        Check(addDrawings),  // else all pictures are there before one can look
        Press(kPaneGallery),
        Shows(kGalleryList),
        tour.ShootAtOnce("gallery_loading"),
        Press(IDCANCEL),
        Shows(kPaneGallery),
        Check(removeDrawings),
        Press(kPaneGallery),
        Shows(kGalleryList),
        GalleryComplete,
        tour.Shoot("gallery"),
        GrowDialog(170, 110),
        tour.Shoot("gallery_resized"),
        Press(IDOK),  // the drawing that was selected before
        Shows(IDC_OPEN_WITH_PREVIEW),
        tour.Shoot("host_chosen"),

        Check(chooseBasicDxf),
        Press(IDC_OPEN_WITH_PREVIEW),
        Shows(cmb1),
        SelectFile(japanese ? "pump_cover_ja.dxf" : "pump_cover.dxf"),
        CommentShows("PC-0062-01"),
        tour.Shoot("explorer_basic_dxf"),
        Press(IDCANCEL),
        Shows(IDC_OPEN_WITH_PREVIEW),

        Press(IDC_OPEN),
        Shows(cmb1),
        SelectFile("mounting_plate.dxf"),
        tour.Shoot("explorer_plain"),
        Press(IDCANCEL),
        Shows(IDC_OPEN_WITH_PREVIEW),

        Press(IDC_SAVE),
        Shows(cmb1),
        tour.Shoot("save"),
        Press(IDOK),
        QuestionShows,
        tour.Shoot("save_overwrite"),
        Press(IDCANCEL),
        Shows(cmb1),
        Press(IDCANCEL),
        Shows(IDC_OPEN_WITH_PREVIEW),

        Press(IDC_CHOOSE_FOLDER),
        FolderTreeShows,
        tour.Shoot("folder_tree"),
        Press(IDCANCEL),
        Shows(IDC_OPEN_WITH_PREVIEW),

        Check(chooseClassicStyle),
        Press(IDC_OPEN),
        Shows(cmb1),
        SelectInList("mounting_plate.dxf"),
        tour.Shoot("classic"),
        Press(IDCANCEL),
        Shows(IDC_OPEN_WITH_PREVIEW),

        Press(IDC_CHOOSE_FOLDER),
        Shows(cmb1),
        tour.Shoot("classic_folder"),
        Press(IDOK),
        Shows(IDC_OPEN_WITH_PREVIEW),
        tour.Shoot("host_folder_chosen"),

        Press(IDC_PARAMETERS),
        Shows(IDC_DEPTH),
        TypeInto(IDC_ANGLE, "29:30'", IDC_DEPTH),
        TypeInto(IDC_DEPTH, "25.4/4"),
        tour.Shoot("parameters_typed"),
        TypeInto(IDC_DEPTH, "25.4/4", IDC_SPEED),
        tour.Shoot("parameters_cutting"),
        SelectTab(1),
        TypeInto(IDC_TEETH, "99", IDC_DIAMETER),
        tour.Shoot("parameters_tool"),
        Press(IDC_SIMULATE),
        Shows(IDC_OPEN_WITH_PREVIEW),
        tour.Shoot("host_parameters"),
        Press(IDCANCEL),
    };
    steps.insert(steps.end(), std::begin(rest), std::end(rest));
    return steps;
}

}  // namespace

int TakeTour(const std::function<void()>& showHost, const Options& options) {
    char folder[MAX_PATH] = "";
    const DWORD length = GetFullPathNameA(options.shots.c_str(), sizeof(folder), folder, nullptr);
    if (length == 0 || length >= sizeof(folder)) {
        std::fprintf(stderr, "kwdemo: %s: no usable folder name\n", options.shots.c_str());
        return 1;
    }
    CreateDirectoryA(folder, nullptr);  // an existing one is as good
    Tour tour = {options, folder, false};
    const std::string fault = DriveDialogs(showHost, StepsOf(tour));
    if (!fault.empty()) std::fprintf(stderr, "kwdemo: %s\n", fault.c_str());
    return tour.failed || !fault.empty() ? 1 : 0;
}
