// A system that is not Windows is taken for a Japanese one, so that tests and fuzzing there meet two-byte characters.
#include "kit/code_page.h"

#include <iconv.h>

#include <cstdio>
#include <string>

#include "kit/sjis.h"

bool IsSystemLeadByte(std::uint8_t byte) { return IsLeadByte(byte); }

namespace {

// Conversions are kept: opening one takes longer than a text.
struct Conversion {
    std::string to, from;
    iconv_t handle = reinterpret_cast<iconv_t>(-1);
    ~Conversion() { Close(); }
    void Close() {
        if (IsOpen()) iconv_close(handle);
    }
    bool IsOpen() const { return handle != reinterpret_cast<iconv_t>(-1); }
    bool Open(const char* wantedTo, const char* wantedFrom) {
        if (to == wantedTo && from == wantedFrom) return IsOpen();
        Close();
        to = wantedTo, from = wantedFrom;
        handle = iconv_open(wantedTo, wantedFrom);
        return IsOpen();
    }
};

// What cannot be converted becomes `replacement`, of the same unit as the output.
template <typename Unit>
std::size_t Convert(Conversion& conversion, const void* text, std::size_t size, std::size_t step, Unit replacement,
                    Unit* out, std::size_t room) {
    iconv(conversion.handle, nullptr, nullptr, nullptr, nullptr);
    char* in = const_cast<char*>(static_cast<const char*>(text));
    auto* to = reinterpret_cast<char*>(out);
    std::size_t left = size, toLeft = room * sizeof(Unit);
    while (left >= step && iconv(conversion.handle, &in, &left, &to, &toLeft) == static_cast<std::size_t>(-1)) {
        if (toLeft < sizeof(Unit) || left < step) break;
        std::memcpy(to, &replacement, sizeof(Unit));
        to += sizeof(Unit), toLeft -= sizeof(Unit);
        in += step, left -= step;
    }
    return room - toLeft / sizeof(Unit);
}

}  // namespace

std::size_t TextToUnicode(unsigned page, ByteView text, char16_t* out, std::size_t room) {
    static thread_local Conversion conversion;
    char name[16];
    std::snprintf(name, sizeof(name), "CP%u", page);
    if (!conversion.Open("UTF-16LE", name)) return 0;
    return Convert(conversion, text.data, text.size, 1, u'\uFFFD', out, room);
}

std::size_t UnicodeToSystem(const char16_t* text, std::size_t length, char* out, std::size_t room) {
    static thread_local Conversion conversion;
    if (!conversion.Open("CP932", "UTF-16LE")) return 0;
    return Convert(conversion, text, length * sizeof(char16_t), sizeof(char16_t), '?', out, room);
}
