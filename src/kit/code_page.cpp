#include "kit/code_page.h"

#include <windows.h>

#include <algorithm>

bool IsSystemLeadByte(std::uint8_t byte) { return IsDBCSLeadByte(byte) != 0; }

static_assert(sizeof(wchar_t) == sizeof(char16_t));
constexpr std::size_t kMostLength = 0x7FFFFFFF;  // of one call

std::size_t TextToUnicode(unsigned page, ByteView text, char16_t* out, std::size_t room) {
    if (text.size == 0 || text.size > kMostLength || room == 0) return 0;
    return static_cast<std::size_t>(MultiByteToWideChar(page, 0, reinterpret_cast<const char*>(text.data),
                                                        static_cast<int>(text.size), reinterpret_cast<wchar_t*>(out),
                                                        static_cast<int>(std::min(room, kMostLength))));
}

std::size_t UnicodeToSystem(const char16_t* text, std::size_t length, char* out, std::size_t room) {
    if (length == 0 || length > kMostLength || room == 0) return 0;
    return static_cast<std::size_t>(
        WideCharToMultiByte(CP_ACP, 0, reinterpret_cast<const wchar_t*>(text), static_cast<int>(length), out,
                            static_cast<int>(std::min(room, kMostLength)), nullptr, nullptr));
}
