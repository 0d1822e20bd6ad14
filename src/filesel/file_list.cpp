#include "filesel/file_list.h"

#include <commctrl.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "filesel/file_line.h"
#include "kit/guard.h"
#include "kit/handles.h"
#include "kwdialogs.h"
#include "resources/resource.h"

DWORD SortOptionBits = 0;
DWORD DisplayOptionBits = 0;

// ---- Drive information

namespace {

// Sizes in bytes. Deliberate: 32-bit products, which wrap on drives above 4 GiB.
struct DriveSizes {
    DWORD total, free;
};

}  // namespace

static bool GetDriveSizes(DriveSizes* out) {
    DWORD sectorsPerCluster = 0, bytesPerSector = 0, freeClusters = 0, clusters = 0;
    if (!GetDiskFreeSpaceA(nullptr, &sectorsPerCluster, &bytesPerSector, &freeClusters, &clusters)) return false;
    *out = {clusters * sectorsPerCluster * bytesPerSector, freeClusters * sectorsPerCluster * bytesPerSector};
    return true;
}

static void ShowDriveSizes(HWND dialog, const DriveSizes& sizes) {
    SetDlgItemTextA(dialog, IDC_DRIVE_TOTAL, FormatDriveSize(sizes.total).c_str());
    SetDlgItemTextA(dialog, IDC_DRIVE_FREE, FormatDriveSize(sizes.free).c_str());
    SetDlgItemTextA(dialog, IDC_DRIVE_USED, FormatDriveSize(sizes.total - sizes.free).c_str());
}

// ---- Rebuilding the list

namespace {

// The list box by its own procedure: with thousands of lines, the way through the subclass would take as long as asking
// the file system for each file.
struct ListBox {
    const HWND window;
    const WNDPROC procedure;
    explicit ListBox(HWND list)
        : window(list), procedure(reinterpret_cast<WNDPROC>(GetClassLongPtrA(list, GCLP_WNDPROC))) {}
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return CallWindowProcA(procedure, window, message, wParam, lParam);
    }
    LRESULT Send(UINT message, WPARAM wParam, const void* pointer) const {
        return Send(message, wParam, reinterpret_cast<LPARAM>(pointer));
    }
};

// The list's own device context with its own font.
struct ListDc {
    WindowDc window;
    Selection font;
    explicit ListDc(HWND list)
        : window(list), font(window.dc, reinterpret_cast<HGDIOBJ>(SendMessageA(list, WM_GETFONT, 0, 0))) {}
    LONG WidthOf(const std::string& text) const {
        SIZE size = {};
        GetTextExtentPoint32A(window.dc, text.c_str(), static_cast<int>(text.size()), &size);
        return size.cx;
    }
};

// Where the columns begin, in pixels from the left edge.
struct TabStops {
    int pixels[4];
    int count;
    void Add(LONG width) {
        pixels[count] = (count > 0 ? pixels[count - 1] : 0) + static_cast<int>(width);
        ++count;
    }
};

}  // namespace

static std::string LineText(const ListBox& list, WPARAM line) {
    const LRESULT length = list.Send(LB_GETTEXTLEN, line);
    if (length <= 0) return {};
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    list.Send(LB_GETTEXT, line, text.data());
    text.resize(std::strlen(text.c_str()));
    return text;
}

static bool FindFile(const std::string& name, WIN32_FIND_DATAA* out) {
    const UniqueFind search(FindFirstFileA(name.c_str(), out));
    return search.get() != INVALID_HANDLE_VALUE;
}

// What the file system says of the file that a line names. A file that is gone keeps its name and has no size and time.
static void DescribeLine(const std::string& line, WIN32_FIND_DATAA* out) {
    const std::string name = line.substr(0, line.find('\t'));
    if (FindFile(name, out) || FindFile(line.substr(0, FileNameLength(line.c_str())), out)) return;
    *out = {};
    lstrcpynA(out->cFileName, name.c_str(), sizeof(out->cFileName));
}

// Fills one record a line and measures the columns.
static TabStops DescribeLines(const ListBox& list, const ListDc& dc, WIN32_FIND_DATAA* files, WPARAM count) {
    LONG widestName = 0, widestSize = 0;
    for (WPARAM line = 0; line < count; ++line) {
        DescribeLine(LineText(list, line), &files[line]);
        widestName = std::max(widestName, dc.WidthOf(std::string(files[line].cFileName) + "A"));
        widestSize = std::max(widestSize, dc.WidthOf(FormatThousands(files[line].nFileSizeLow) + "A"));
    }
    TabStops stops = {};
    stops.Add(widestName);
    if (DisplayOptionBits & KW_SHOW_SIZE) stops.Add(widestSize);
    if (DisplayOptionBits & KW_SHOW_DATE) stops.Add(dc.WidthOf("AA/AA/AAA"));
    if (DisplayOptionBits & KW_SHOW_TIME) stops.Add(dc.WidthOf("AA:AA:AAA"));
    return stops;
}

// The horizontal dialog base unit in pixels: the system's, or the average character of the list's own font where that
// is smaller. Lists differ in which of the two they go by, and a stop that is too near would let columns overlap.
static unsigned BaseUnit(const ListDc& dc) {
    const LONG alphabet = dc.WidthOf("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    const auto average = static_cast<unsigned>((alphabet / 26 + 1) / 2);
    const unsigned systemUnit = LOWORD(GetDialogBaseUnits());
    return std::max(1u, std::min(systemUnit, average));
}

static void SetTabStops(const ListBox& list, const ListDc& dc, const TabStops& stops) {
    const unsigned baseUnit = BaseUnit(dc);
    unsigned units[4] = {};
    for (int i = 0; i < stops.count; ++i) units[i] = static_cast<unsigned>(stops.pixels[i]) * 4 / baseUnit;
    list.Send(LB_SETTABSTOPS, static_cast<WPARAM>(stops.count), units);
}

// Puts the lines into the list, which is empty; returns the widest one's width in pixels.
static int InsertLines(const ListBox& list, const ListDc& dc, const TabStops& stops, const WIN32_FIND_DATAA* files,
                       WPARAM count) {
    int widest = 0;
    for (WPARAM line = 0; line < count; ++line) {
        const std::string text = FormatFileLine(files[line], DisplayOptionBits);
        list.Send(LB_INSERTSTRING, line, text.c_str());
        const DWORD extent =
            GetTabbedTextExtentA(dc.window.dc, text.c_str(), static_cast<int>(text.size()), stops.count, stops.pixels);
        widest = std::max(widest, static_cast<int>(LOWORD(extent)));
    }
    return widest;
}

static void RebuildLines(const ListBox& list, WPARAM count) {
    const std::unique_ptr<WIN32_FIND_DATAA[]> files(new (std::nothrow) WIN32_FIND_DATAA[count]);
    if (!files) return;

    const ListDc dc(list.window);
    const TabStops stops = DescribeLines(list, dc, files.get(), count);
    SetTabStops(list, dc, stops);
    const WaitCursor wait;
    std::stable_sort(files.get(), files.get() + count, [](const WIN32_FIND_DATAA& a, const WIN32_FIND_DATAA& b) {
        return CompareFiles(a, b, SortOptionBits) < 0;
    });
    const LRESULT selected = list.Send(LB_GETCURSEL);
    list.Send(LB_RESETCONTENT);
    list.Send(LB_SETHORIZONTALEXTENT, 0);
    const int widest = InsertLines(list, dc, stops, files.get(), count);
    list.Send(LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(widest));
    // Deliberate: a selection on the first line is not restored.
    if (selected > 0) list.Send(LB_SETCURSEL, static_cast<WPARAM>(selected));
}

// Without redrawing, which would take many times longer than all else; the message that asks for it is still to come.
static void RebuildList(const ListBox& list) {
    DriveSizes sizes;
    if (!GetDriveSizes(&sizes)) return;
    ShowDriveSizes(GetParent(list.window), sizes);
    const LRESULT count = list.Send(LB_GETCOUNT);
    SendMessageA(list.window, WM_SETREDRAW, FALSE, 0);
    if (count > 0) RebuildLines(list, static_cast<WPARAM>(count));
    else list.Send(LB_SETHORIZONTALEXTENT, 0);
}

// ---- Subclass

static LRESULT CALLBACK FileListProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
    if (message == WM_SETREDRAW && wParam) Guarded(0, [&] { return RebuildList(ListBox(list)), 0; });
    if (message == WM_NCDESTROY) UnsubclassFileList(list);
    return DefSubclassProc(list, message, wParam, lParam);
}

void SubclassFileList(HWND list) { SetWindowSubclass(list, FileListProc, 0, 0); }

void UnsubclassFileList(HWND list) { RemoveWindowSubclass(list, FileListProc, 0); }
