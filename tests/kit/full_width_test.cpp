#include "kit/full_width.h"

#include <windows.h>

#include <gtest/gtest.h>

TEST(ToFullWidth, Table) {
    const struct {
        int byte;
        int wide;
    } cases[] = {
        // clang-format off
        {0x00, 0x8140}, {0x1F, 0x8140}, {' ', 0x8140}, {0x7F, 0x8140}, {0x80, 0x8140}, {0x81, 0x8140},  // no form
        {0xA0, 0x8140}, {0xE0, 0x8140}, {0xFC, 0x8140}, {0xFD, 0x8140}, {0xFF, 0x8140},
        {'!', 0x8149}, {'/', 0x815E}, {'0', 0x824F}, {'9', 0x8258}, {':', 0x8146}, {'@', 0x8197},
        {'A', 0x8260}, {'Z', 0x8279}, {'[', 0x816D}, {'a', 0x8281}, {'z', 0x829A}, {'{', 0x816F}, {'}', 0x8170},
        {'"', 0x8168}, {'\'', 0x8166}, {'`', 0x814D}, {'~', 0x8150}, {'-', 0x817C},                     // settled by hand
        {0xA1, 0x8142}, {0xA2, 0x8175}, {0xA3, 0x8176}, {0xA4, 0x8141}, {0xA5, 0x8145},                 // punctuation
        {0xA6, 0x8392}, {0xB0, 0x815B}, {0xB1, 0x8341}, {0xDD, 0x8393}, {0xDE, 0x814A}, {0xDF, 0x814B}, // kana, voice marks
        // clang-format on
    };
    for (const auto& c : cases) EXPECT_EQ(ToFullWidth(static_cast<std::uint8_t>(c.byte)), c.wide) << c.byte;
}

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
