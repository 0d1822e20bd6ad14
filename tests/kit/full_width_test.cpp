#include "kit/full_width.h"

#include <gtest/gtest.h>

#ifdef _WIN32
#include <windows.h>
#endif

TEST(ToFullWidth, Table) {
    const std::pair<int, int> cases[] = {
        // clang-format off
        {0x00, 0x8140}, {0x1F, 0x8140}, {0x7F, 0x8140}, {0x80, 0x8140}, {0xA0, 0x8140}, {0xE0, 0x8140}, {0xFF, 0x8140},
        {'"', 0x8168}, {'\'', 0x8166}, {'\\', 0x818F}, {'~', 0x8150}, {0xDE, 0x814A}, {0xDF, 0x814B},
        // clang-format on
    };
    for (const auto& [byte, wide] : cases) EXPECT_EQ(ToFullWidth(static_cast<std::uint8_t>(byte)), wide) << byte;
}

#ifdef _WIN32
// The whole of the table against the system's own tables, but for what those map otherwise (see the hand-settled rows).
TEST(ToFullWidth, AsTheSystemMapsIt) {
    const LCID japanese = MAKELCID(MAKELANGID(LANG_JAPANESE, SUBLANG_DEFAULT), SORT_DEFAULT);
    for (int byte = 0x20; byte < 0xDE; byte = byte == '}' ? 0xA1 : byte + 1) {
        if (byte == '"' || byte == '\'' || byte == '\\') continue;
        const char narrow = static_cast<char>(byte);
        wchar_t half = 0, full = 0;
        unsigned char wide[2] = {};
        ASSERT_EQ(MultiByteToWideChar(932, 0, &narrow, 1, &half, 1), 1) << byte;
        ASSERT_EQ(LCMapStringW(japanese, LCMAP_FULLWIDTH, &half, 1, &full, 1), 1) << byte;
        ASSERT_EQ(WideCharToMultiByte(932, 0, &full, 1, reinterpret_cast<char*>(wide), 2, nullptr, nullptr), 2) << byte;
        EXPECT_EQ(ToFullWidth(static_cast<std::uint8_t>(byte)), wide[0] << 8 | wide[1]) << byte;
    }
}
#endif
