#include "preview/formats/full_dxf_unicode.h"

#include <algorithm>
#include <cstring>

#include "kit/code_page.h"

static constexpr std::size_t kMostUnits = 1 << 16;

// ---- Code pages

struct PageName {
    const char* name;
    unsigned page;
};
static constexpr PageName kPageNames[] = {
    {"dos437", 437},  {"dos850", 850}, {"dos852", 852},      {"dos855", 855},      {"dos857", 857},
    {"dos860", 860},  {"dos861", 861}, {"dos863", 863},      {"dos864", 864},      {"dos865", 865},
    {"dos866", 866},  {"dos869", 869}, {"dos932", 932},      {"big5", 950},        {"gb2312", 936},
    {"ksc5601", 949}, {"johab", 1361}, {"mac-roman", 10000}, {"iso8859-2", 28592},
};

// The number behind "ANSI_" or a name of its own; 0 when it is none.
static unsigned PageOfName(ByteView name) {
    for (const PageName& row : kPageNames) {
        if (IsName(name, row.name)) return row.page;
    }
    constexpr std::size_t kPrefix = 5;
    if (name.size <= kPrefix || !IsName({name.data, kPrefix}, "ANSI_")) return 0;
    const long long page = DxfInteger({}, 70, {name.data + kPrefix, name.size - kPrefix});
    return page >= 437 && page <= 1361 ? static_cast<unsigned>(page) : 0;
}

DxfEncoding EncodingOf(const DxfForm& form, const DxfTables& tables) {
    constexpr int kFirstUtf8Version = 1021;
    DxfEncoding encoding;
    const unsigned page = PageOfName(tables.codePage);
    if (page) encoding.page = page;
    // Programs that state no page mostly write UTF-8 too.
    encoding.tryUtf8 = form.byteOrderMark || tables.version >= kFirstUtf8Version || page == 0;
    return encoding;
}

static bool HasLeadBytes(unsigned page) {
    return page == 932 || page == 936 || page == 949 || page == 950 || page == 1361;
}

// ---- Conversion

static void AppendUnit(std::u16string* out, unsigned unit) {
    if (out->size() < kMostUnits) out->push_back(static_cast<char16_t>(unit));
}

static void AppendPoint(std::u16string* out, std::uint32_t point) {
    if (point < 0x10000) {
        AppendUnit(out, point);
    } else {
        AppendUnit(out, 0xD800 + ((point - 0x10000) >> 10));
        AppendUnit(out, 0xDC00 + ((point - 0x10000) & 0x3FF));
    }
}

// The character at the text's begin, and its bytes; 0 bytes when it is not UTF-8.
static std::size_t TakeUtf8(ByteView text, std::uint32_t* point) {
    const std::uint8_t lead = text.data[0];
    const std::size_t size = lead < 0x80   ? 1
                             : lead < 0xC2 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 0;
    if (size == 0 || text.size < size) return 0;
    *point = size == 1 ? lead : lead & (0x7Fu >> size);
    for (std::size_t i = 1; i < size; ++i) {
        if ((text.data[i] & 0xC0) != 0x80) return 0;
        *point = *point << 6 | (text.data[i] & 0x3Fu);
    }
    const bool isShort = (size == 3 && *point < 0x800) || (size == 4 && *point < 0x10000);
    return isShort || *point > 0x10FFFF || (*point >= 0xD800 && *point < 0xE000) ? 0 : size;
}

static bool AppendUtf8(ByteView text, std::u16string* out) {
    const std::size_t before = out->size();
    while (text.size) {
        std::uint32_t point = 0;
        const std::size_t size = TakeUtf8(text, &point);
        if (size == 0) {
            out->resize(before);
            return false;
        }
        AppendPoint(out, point);
        text.data += size, text.size -= size;
    }
    return true;
}

static void AppendBytes(unsigned page, bool tryUtf8, ByteView text, std::u16string* out) {
    const bool ascii = std::all_of(text.data, text.data + text.size, [](std::uint8_t byte) { return byte < 0x80; });
    if (!ascii && tryUtf8 && AppendUtf8(text, out)) return;
    if (!ascii) {
        const std::size_t before = out->size(), room = std::min(text.size, kMostUnits - std::min(kMostUnits, before));
        out->resize(before + room);
        const std::size_t length = TextToUnicode(page, text, &(*out)[before], room);
        out->resize(before + std::min(length, room));
        if (length) return;
    }
    for (std::size_t i = 0; i < text.size; ++i) AppendUnit(out, text.data[i]);
}

// `count` hexadecimal digits; false when they are not all there.
static bool TakeHex(ByteView text, std::size_t at, std::size_t count, std::uint32_t* value) {
    if (at > text.size || text.size - at < count) return false;
    *value = 0;
    for (std::size_t i = at; i < at + count; ++i) {
        const std::uint8_t c = text.data[i], letter = static_cast<std::uint8_t>(c & 0xDF);
        const bool digit = c >= '0' && c <= '9';
        if (!digit && !(letter >= 'A' && letter <= 'F')) return false;
        *value = *value << 4 | static_cast<std::uint32_t>(digit ? c - '0' : letter - 'A' + 10);
    }
    return true;
}

// "\U+XXXX" or "\M+nXXXX" at `at`: appends its character and gives its length; 0 when it is neither.
static std::size_t TakeNamedCharacter(ByteView text, std::size_t at, std::u16string* out) {
    static constexpr unsigned kPages[] = {0, 932, 950, 949, 1361, 936};
    std::uint32_t value = 0;
    if (MatchAt(text, at, "\\U+") || MatchAt(text, at, "\\u+")) {
        if (!TakeHex(text, at + 3, 4, &value)) return 0;
        AppendUnit(out, value);
        return 7;
    }
    if (!MatchAt(text, at, "\\M+") || text.size - at < 8 || text.data[at + 3] < '1' || text.data[at + 3] > '5')
        return 0;
    if (!TakeHex(text, at + 4, 4, &value)) return 0;
    const std::uint8_t bytes[] = {static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value)};
    AppendBytes(kPages[text.data[at + 3] - '0'], false, {bytes, 2}, out);
    return 8;
}

void AppendUnicode(const DxfEncoding& encoding, ByteView text, std::u16string* out) {
    const bool leadBytes = !encoding.tryUtf8 && HasLeadBytes(encoding.page);
    std::size_t begin = 0, at = 0;
    const auto flush = [&] {
        if (at > begin) AppendBytes(encoding.page, encoding.tryUtf8, {text.data + begin, at - begin}, out);
    };
    while (at < text.size && out->size() < kMostUnits) {
        if (leadBytes && text.data[at] > 0x80 && at + 1 < text.size) {
            at += 2;  // the second byte may be a backslash
            continue;
        }
        if (text.data[at] != '\\') {
            ++at;
            continue;
        }
        flush();
        begin = at;
        const std::size_t length = TakeNamedCharacter(text, at, out);
        if (length) {
            at += length;
            begin = at;
        } else {
            ++at;
        }
    }
    flush();
}

// ---- Codes in a line

static char16_t Lower(char16_t c) { return c >= 'A' && c <= 'Z' ? static_cast<char16_t>(c + 0x20) : c; }
static bool IsDigit(char16_t c) { return c >= '0' && c <= '9'; }

DxfLineMarks ResolveLineCodes(std::u16string* text) {
    DxfLineMarks marks;
    std::u16string& s = *text;
    std::size_t out = 0;
    for (std::size_t at = 0; at < s.size(); ++at) {
        char16_t c = s[at];
        const std::size_t left = s.size() - at;
        if (c == '^' && left >= 2) {
            const char16_t next = s[at + 1];
            if (next == ' ' || next == 'I' || next == 'J' || next == 'M') {
                ++at;
                c = next == ' ' ? u'^' : u' ';
            }
        } else if (c == '%' && left >= 3 && s[at + 1] == '%') {
            const char16_t code = Lower(s[at + 2]);
            if (left >= 5 && IsDigit(code) && IsDigit(s[at + 3]) && IsDigit(s[at + 4])) {
                c = static_cast<char16_t>((code - '0') * 100 + (s[at + 3] - '0') * 10 + (s[at + 4] - '0'));
                at += 4;
            } else if (code == 'u' || code == 'o' || code == 'k') {
                (code == 'u' ? marks.underlined : code == 'o' ? marks.overlined : marks.struckOut) = true;
                at += 2;
                continue;
            } else if (code == 'c' || code == 'd' || code == 'p' || code == '%') {
                c = code == 'c' ? u'\u00D8' : code == 'd' ? u'\u00B0' : code == 'p' ? u'\u00B1' : u'%';
                at += 2;
            }
        }
        s[out++] = c < ' ' ? u' ' : c;
    }
    s.resize(out);
    return marks;
}
