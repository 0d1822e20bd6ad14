#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>

#include "frame/module.h"
#include "frame/services.h"
#include "resources/resource.h"
#include "support/resource_module.h"
#include "support/temp_folder.h"

TEST(StringCache, FlushesWhenAllSlotsAreTaken) {
    const TempFolder folder;
    std::vector<std::string> texts;
    for (int i = 0; i < 600; ++i) texts.push_back("text " + std::to_string(i));
    texts.insert(texts.end(), {"", std::string(125, 'a') + "bcdef"});  // 600 is absent, 601 longer than a slot
    WriteResourceModule(folder.At("strings.dll"), 100, texts);
    const HMODULE module = LoadLibraryExA(folder.At("strings.dll").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_TRUE(module);
    const auto get = [=](UINT number) { return LoadResString(module, 100 + number); };
    LoadResString(nullptr, 0);  // teardown
    const char* first = get(0);
    ASSERT_STREQ(first, "text 0");
    for (UINT i = 1; i < 512; ++i) {
        ASSERT_FALSE(get(600)) << "a missing string";  // takes no slot
        ASSERT_STREQ(get(i), texts[i].c_str());
        ASSERT_EQ(get(0), first) << "a string is held once";
    }
    EXPECT_STREQ(first, "text 0") << "512 strings fit";
    const char* fifth = get(5);
    const char* next = get(512);
    EXPECT_STREQ(fifth, "") << "all texts are gone";
    EXPECT_STREQ(next, "text 512");
    EXPECT_EQ(next, first) << "the first slot is used again";
    EXPECT_EQ(std::string(get(601)), std::string(125, 'a') + "b");
    EXPECT_FALSE(LoadResString(ThisModule(), 110)) << "modules are kept apart";
    EXPECT_FALSE(LoadResString(nullptr, 0));
    EXPECT_STREQ(get(3), "text 3") << "made again after the teardown";
    LoadResString(nullptr, 0);
    FreeLibrary(module);
}

// Both languages hold every text that is shown; copies are bounded.
TEST(ResString, EveryTextIsThere) {
    for (const UINT id : {IDS_OVERWRITE, IDS_LOADING, IDS_NO_PREVIEW, IDS_TEXT_FACE, IDS_DRAWING_NAME,
                          IDS_DRAWING_NUMBER, IDS_DESIGNER, IDS_INVALID_VALUE, IDS_INITIAL_ERROR})
        EXPECT_TRUE(LoadResString(ThisModule(), id)) << id;
    EXPECT_TRUE(strstr(LoadResString(ThisModule(), IDS_OVERWRITE), "%s"));
    const std::string whole = LoadResString(ThisModule(), IDS_NO_PREVIEW);
    char text[9] = "########";
    CopyResString(IDS_NO_PREVIEW, text, 6);
    EXPECT_EQ(text, whole.substr(0, strlen(text)));
    EXPECT_EQ(text[6], '#');
    CopyResString(9999, text, sizeof(text));
    EXPECT_STREQ(text, "");
}
