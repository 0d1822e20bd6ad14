#include "support/resource_module.h"

#include <gtest/gtest.h>

#include <cstring>

// Resource strings stand in blocks of 16, each a length and that many UTF-16 characters.
static std::vector<WORD> StringBlock(UINT block, UINT firstId, const std::vector<std::string>& texts) {
    std::vector<WORD> words;
    for (UINT id = block * 16; id < block * 16 + 16; ++id) {
        const std::string text = id >= firstId && id - firstId < texts.size() ? texts[id - firstId] : "";
        words.push_back(static_cast<WORD>(text.size()));
        words.insert(words.end(), text.begin(), text.end());
    }
    return words;
}

struct VersionBlock {
    WORD length = sizeof(VersionBlock), valueLength = sizeof(VS_FIXEDFILEINFO), type = 0;
    WCHAR key[17] = L"VS_VERSION_INFO\0";  // 34 bytes: the value begins at a multiple of 4
    VS_FIXEDFILEINFO value = {};
};
static_assert(offsetof(VersionBlock, value) == 40);

void WriteResourceModule(const std::string& path, UINT firstId, const std::vector<std::string>& texts, WORD major,
                         WORD minor, WORD build, WORD privatePart) {
    char system[MAX_PATH] = "";
    GetSystemDirectoryA(system, MAX_PATH);
    ASSERT_TRUE(CopyFileA((std::string(system) + "\\version.dll").c_str(), path.c_str(), FALSE));
    const HANDLE update = BeginUpdateResourceA(path.c_str(), TRUE);
    ASSERT_TRUE(update);
    const WORD neutral = MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL);
    for (UINT block = firstId / 16; block * 16 < firstId + texts.size(); ++block) {
        std::vector<WORD> words = StringBlock(block, firstId, texts);
        EXPECT_TRUE(UpdateResourceA(update, MAKEINTRESOURCEA(6), MAKEINTRESOURCEA(block + 1), neutral, words.data(),
                                    static_cast<DWORD>(words.size() * sizeof(WORD))));
    }
    VersionBlock version;
    version.value.dwSignature = 0xFEEF04BD;
    version.value.dwFileVersionMS = static_cast<DWORD>(MAKELONG(minor, major));
    version.value.dwFileVersionLS = static_cast<DWORD>(MAKELONG(privatePart, build));
    EXPECT_TRUE(UpdateResourceA(update, MAKEINTRESOURCEA(16), MAKEINTRESOURCEA(1), neutral, &version, sizeof(version)));
    EXPECT_TRUE(EndUpdateResourceA(update, FALSE));
}
