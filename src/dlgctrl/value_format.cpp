#include "dlgctrl/value_format.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "kit/code_page.h"

namespace {

constexpr char kDefaultRealFormat[] = "%.3lf";
constexpr std::size_t kMostDigits = 3;  // of a width or a precision

// The 309 digits of the largest number, a sign, a point, and the longest precision or width.
constexpr std::size_t kNumberSize = 309 + 2 + 1000 + 1;

// What stands between '%' and the next text: "-8.3lf" has flags "-", width 8, precision 3, size "l", letter 'f'.
struct Conversion {
    std::string layout;  // flags, width and precision as they are written
    int width;           // 0: none
    int precision;       // -1: none
    bool left;
    std::string size;
    char letter;
};

const char* SkipOf(const char* at, const char* characters) { return at + std::strspn(at, characters); }

// Reads a conversion behind its '%'; null when a width or a precision is unreasonable or an argument of its own.
const char* TakeConversion(const char* at, Conversion* out) {
    const char* const widthBegin = SkipOf(at, "-+ #0");
    const char* end = SkipOf(widthBegin, "0123456789");
    if (end - widthBegin > static_cast<std::ptrdiff_t>(kMostDigits)) return nullptr;
    out->width = std::atoi(widthBegin);
    out->precision = -1;
    if (*end == '.') {
        const char* const precisionBegin = end + 1;
        end = SkipOf(precisionBegin, "0123456789");
        if (end - precisionBegin > static_cast<std::ptrdiff_t>(kMostDigits)) return nullptr;
        out->precision = std::atoi(precisionBegin);
    }
    out->layout.assign(at, end);
    out->left = out->layout.find('-') != std::string::npos;
    const char* const letter = SkipOf(end, "hlL");
    out->size.assign(end, letter);
    out->letter = *letter;
    return *letter ? letter + 1 : nullptr;
}

// Prints text and at most one conversion, which print(conversion, out) adds to `out`; false when the format does not
// suit. Without a conversion the text stands alone.
template <typename Print>
bool PrintBy(const char* format, std::string* out, Print print) {
    out->clear();
    bool done = false;
    while (*format) {
        if (format[0] != '%') {  // '%' is never the second byte of a character
            *out += *format++;
        } else if (format[1] == '%') {
            *out += '%';
            format += 2;
        } else {
            Conversion conversion;
            format = done ? nullptr : TakeConversion(format + 1, &conversion);
            if (!format || !print(conversion, out)) return false;
            done = true;
        }
    }
    return true;
}

bool IsOneOf(char letter, const char* letters) { return std::strchr(letters, letter) != nullptr; }

bool PrintInteger(const Conversion& conversion, int value, std::string* out) {
    if (!IsOneOf(conversion.letter, "diuoxX")) return false;
    char text[kNumberSize];
    const std::string narrowing = conversion.size == "h" || conversion.size == "hh" ? conversion.size : "";
    const std::string format = "%" + conversion.layout + narrowing + conversion.letter;
    std::snprintf(text, sizeof(text), format.c_str(), value);
    *out += text;
    return true;
}

// The host may have set a locale with another point.
void RestorePoint(char* number) {
    const char* const point = std::localeconv()->decimal_point;
    char* const at = *point ? std::strstr(number, point) : nullptr;
    if (!at) return;
    const std::size_t length = std::strlen(point);
    *at = '.';
    std::memmove(at + 1, at + length, std::strlen(at + length) + 1);
}

bool PrintReal(const Conversion& conversion, double value, std::string* out) {
    if (!IsOneOf(conversion.letter, "fFeEgG")) return false;
    char text[kNumberSize];
    const std::string format = "%" + conversion.layout + conversion.letter;
    std::snprintf(text, sizeof(text), format.c_str(), value);
    RestorePoint(text);
    *out += text;
    return true;
}

bool PrintText(const Conversion& conversion, const char* text, std::string* out) {
    if (conversion.letter != 's' || !conversion.size.empty()) return false;
    std::string shown = text;
    if (conversion.precision >= 0 && shown.size() > static_cast<std::size_t>(conversion.precision)) {
        shown.resize(static_cast<std::size_t>(conversion.precision));
        DropSplitCharacter(&shown);
    }
    const auto width = static_cast<std::size_t>(conversion.width);
    const std::size_t padding = width > shown.size() ? width - shown.size() : 0;
    if (!conversion.left) out->append(padding, ' ');
    *out += shown;
    if (conversion.left) out->append(padding, ' ');
    return true;
}

char realFormat[kRealFormatSize] = "%.3lf";
int trimDecimals = -1;

bool FormatRealBy(const char* format, double value, std::string* out) {
    return PrintBy(format, out,
                   [&](const Conversion& conversion, std::string* text) { return PrintReal(conversion, value, text); });
}

}  // namespace

std::string FormatInteger(const char* format, int value) {
    std::string text;
    const auto print = [&](const Conversion& conversion, std::string* out) {
        return PrintInteger(conversion, value, out);
    };
    if (!format || !PrintBy(format, &text, print)) text = std::to_string(value);
    return text;
}

std::string FormatText(const char* format, const char* text) {
    std::string shown;
    const auto print = [&](const Conversion& conversion, std::string* out) { return PrintText(conversion, text, out); };
    if (!format || !PrintBy(format, &shown, print)) shown = text;
    return shown;
}

std::string FormatReal(const char* format, double value) {
    std::string text;
    if (format && *format && FormatRealBy(format, value, &text)) return text;
    const std::string moduleFormat(realFormat, strnlen(realFormat, kRealFormatSize));
    if (!FormatRealBy(moduleFormat.c_str(), value, &text)) FormatRealBy(kDefaultRealFormat, value, &text);
    TrimDecimals(&text, trimDecimals);
    return text;
}

int SetRealFormat(const char* format, int decimals) {
    std::strncpy(realFormat, format ? format : kDefaultRealFormat, kRealFormatSize);
    trimDecimals = decimals;
    return 1;
}

int GetRealFormat(char* format, int* decimals) {
    if (format) std::strncpy(format, realFormat, kRealFormatSize);
    if (decimals) *decimals = trimDecimals;
    return 1;
}

bool TrimDecimals(std::string* text, int decimals) {
    if (decimals < 0) return true;
    const std::size_t point = text->rfind('.');
    if (point == std::string::npos) return false;
    if (text->find_first_not_of("0123456789", point + 1) != std::string::npos) return true;
    const std::size_t shortest = point + 1 + static_cast<std::size_t>(decimals);
    while (text->size() > shortest && text->back() == '0') text->pop_back();
    return true;
}

void DropSplitCharacter(std::string* text) {
    std::size_t at = 0;
    while (at < text->size()) {
        const bool isLead = IsSystemLeadByte(static_cast<std::uint8_t>((*text)[at]));
        if (isLead && at + 1 == text->size()) text->pop_back();
        at += isLead ? 2 : 1;
    }
}
