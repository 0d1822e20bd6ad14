#include "filesel/file_list.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "kit/guard.h"
#include "kit/handles.h"
#include "kwdialogs.h"
#include "preview/file_type.h"
#include "resources/resource.h"

DWORD SortOptionBits = 0;
DWORD DisplayOptionBits = 0;

// ---- Order

static std::uint64_t Join(DWORD high, DWORD low) { return static_cast<std::uint64_t>(high) << 32 | low; }

static int CompareNumbers(std::uint64_t a, std::uint64_t b) { return a < b ? -1 : a > b; }

// A name without an extension comes before every name with one.
static int CompareExtensions(const char* a, const char* b) {
    const char* const dotA = std::strrchr(a, '.');
    const char* const dotB = std::strrchr(b, '.');
    if (!dotA || !dotB) return (dotA != nullptr) - (dotB != nullptr);
    return std::strcmp(dotA + 1, dotB + 1);
}

// Deliberate: names are compared byte by byte, upper case before lower case.
int CompareFiles(const WIN32_FIND_DATAA& a, const WIN32_FIND_DATAA& b, DWORD sortBits) {
    int order = 0;
    if (sortBits & KW_SORT_NAME) order = std::strcmp(a.cFileName, b.cFileName);
    if (order == 0 && (sortBits & KW_SORT_EXTENSION)) order = CompareExtensions(a.cFileName, b.cFileName);
    if (order == 0 && (sortBits & KW_SORT_SIZE)) {
        order = CompareNumbers(Join(a.nFileSizeHigh, a.nFileSizeLow), Join(b.nFileSizeHigh, b.nFileSizeLow));
    }
    if (order == 0 && (sortBits & KW_SORT_DATE)) {
        order = CompareNumbers(Join(a.ftLastWriteTime.dwHighDateTime, a.ftLastWriteTime.dwLowDateTime),
                               Join(b.ftLastWriteTime.dwHighDateTime, b.ftLastWriteTime.dwLowDateTime));
    }
    return sortBits & KW_SORT_DESCENDING ? -order : order;
}

// ---- Texts

std::string FormatDriveSize(DWORD bytes) {
    static constexpr struct {
        int shift;
        const char* format;
    } kUnits[] = {{30, "%uGB"}, {20, "%uMB"}, {10, "%uKB"}, {0, "%uB"}};
    const auto* unit = kUnits;
    while (unit->shift > 0 && bytes >> unit->shift == 0) ++unit;
    char text[16];
    std::snprintf(text, sizeof(text), unit->format, static_cast<unsigned>(bytes >> unit->shift));
    return text;
}

std::string FormatThousands(DWORD count) {
    std::string text = std::to_string(count);
    for (std::size_t at = text.size(); at > 3; at -= 3) text.insert(at - 3, ",");
    return text;
}

std::size_t FileNameLength(const char* line) {
    const std::size_t tab = std::strcspn(line, "\t");
    return line[tab] ? tab : std::strcspn(line, " ");
}

// Two digits of a year: 1900 to 1999 and from 2000 on; earlier years stay as they are.
static int YearOfCentury(int year) { return year >= 2000 ? year - 2000 : year >= 1900 ? year - 1900 : year; }

static void AppendTime(const FILETIME& time, DWORD displayBits, std::string* line) {
    FILETIME local = {};
    SYSTEMTIME at = {};
    FileTimeToLocalFileTime(&time, &local);
    FileTimeToSystemTime(&local, &at);
    char text[32];
    if (displayBits & KW_SHOW_DATE) {
        std::snprintf(text, sizeof(text), "\t%02d/%02d/%02d", YearOfCentury(at.wYear), at.wMonth, at.wDay);
        *line += text;
    }
    if (displayBits & KW_SHOW_TIME) {
        std::snprintf(text, sizeof(text), "\t%02d:%02d:%02d", at.wHour, at.wMinute, at.wSecond);
        *line += text;
    }
}

std::string FormatFileLine(const WIN32_FIND_DATAA& file, DWORD displayBits) {
    std::string line = file.cFileName;
    if (displayBits & KW_SHOW_SIZE) line += "\t" + FormatThousands(file.nFileSizeLow);
    if (displayBits & (KW_SHOW_DATE | KW_SHOW_TIME)) AppendTime(file.ftLastWriteTime, displayBits, &line);
    if (displayBits & KW_SHOW_COMMENT) {
        char comment[256];
        IdentifyFileType(file.cFileName, comment, sizeof(comment));
        line += "\t";
        line += comment;
    }
    // Without a column, a name that holds a blank would be cut there when it is selected.
    if (line.find('\t') == std::string::npos && line.find(' ') != std::string::npos) line += "\t";
    return line;
}

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

static std::string LineText(HWND list, WPARAM line) {
    const LRESULT length = SendMessageA(list, LB_GETTEXTLEN, line, 0);
    if (length <= 0) return {};
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    SendMessageA(list, LB_GETTEXT, line, reinterpret_cast<LPARAM>(text.data()));
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
static TabStops DescribeLines(HWND list, const ListDc& dc, WIN32_FIND_DATAA* files, WPARAM count) {
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

static void SetTabStops(HWND list, const ListDc& dc, const TabStops& stops) {
    const unsigned baseUnit = BaseUnit(dc);
    unsigned units[4] = {};
    for (int i = 0; i < stops.count; ++i) units[i] = static_cast<unsigned>(stops.pixels[i]) * 4 / baseUnit;
    SendMessageA(list, LB_SETTABSTOPS, static_cast<WPARAM>(stops.count), reinterpret_cast<LPARAM>(units));
}

// Puts the lines into the list, which is empty; returns the widest one's width in pixels.
static int InsertLines(HWND list, const ListDc& dc, const TabStops& stops, const WIN32_FIND_DATAA* files,
                       WPARAM count) {
    int widest = 0;
    for (WPARAM line = 0; line < count; ++line) {
        const std::string text = FormatFileLine(files[line], DisplayOptionBits);
        SendMessageA(list, LB_INSERTSTRING, line, reinterpret_cast<LPARAM>(text.c_str()));
        const DWORD extent =
            GetTabbedTextExtentA(dc.window.dc, text.c_str(), static_cast<int>(text.size()), stops.count, stops.pixels);
        widest = std::max(widest, static_cast<int>(LOWORD(extent)));
    }
    return widest;
}

static void RebuildList(HWND list) {
    DriveSizes sizes;
    if (!GetDriveSizes(&sizes)) return;
    ShowDriveSizes(GetParent(list), sizes);
    const LRESULT lines = SendMessageA(list, LB_GETCOUNT, 0, 0);
    if (lines <= 0) return;
    const auto count = static_cast<WPARAM>(lines);
    const std::unique_ptr<WIN32_FIND_DATAA[]> files(new (std::nothrow) WIN32_FIND_DATAA[count]);
    if (!files) return;

    const ListDc dc(list);
    const TabStops stops = DescribeLines(list, dc, files.get(), count);
    SetTabStops(list, dc, stops);
    const WaitCursor wait;
    std::stable_sort(files.get(), files.get() + count, [](const WIN32_FIND_DATAA& a, const WIN32_FIND_DATAA& b) {
        return CompareFiles(a, b, SortOptionBits) < 0;
    });
    const LRESULT selected = SendMessageA(list, LB_GETCURSEL, 0, 0);
    SendMessageA(list, LB_RESETCONTENT, 0, 0);
    SendMessageA(list, LB_SETHORIZONTALEXTENT, 0, 0);
    const int widest = InsertLines(list, dc, stops, files.get(), count);
    SendMessageA(list, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(widest), 0);
    // Deliberate: a selection on the first line is not restored.
    if (selected > 0) SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(selected), 0);
}

// ---- Subclass

// The window property that remembers the list box's own procedure.
static constexpr char kPreviousProcedure[] = "kwFileListProcedure";

static LRESULT CALLBACK FileListProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto previous = reinterpret_cast<WNDPROC>(GetPropA(list, kPreviousProcedure));
    if (!previous) return DefWindowProcA(list, message, wParam, lParam);
    if (message == WM_SETREDRAW && wParam) RebuildList(list);
    if (message == WM_NCDESTROY) UnsubclassFileList(list);
    return CallWindowProcA(previous, list, message, wParam, lParam);
}

void SubclassFileList(HWND list) {
    if (!list || GetPropA(list, kPreviousProcedure)) return;
    const LONG_PTR own = GetWindowLongPtrA(list, GWLP_WNDPROC);
    if (!SetPropA(list, kPreviousProcedure, reinterpret_cast<HANDLE>(own))) return;
    SetWindowLongPtrA(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(GuardedProcedure<LRESULT, FileListProc>));
}

void UnsubclassFileList(HWND list) {
    const HANDLE previous = list ? RemovePropA(list, kPreviousProcedure) : nullptr;
    if (previous) SetWindowLongPtrA(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous));
}
