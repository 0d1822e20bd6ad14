#include "filesel/file_line.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

#include "kwdialogs.h"
#include "preview/file_type.h"

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
