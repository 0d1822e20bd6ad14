#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>

#include "frame/module.h"
#include "frame/services.h"
#include "resources/resource.h"
#include "support/resource_module.h"
#include "support/temp_folder.h"

// A module of 600 strings: id 100 + n holds "text n", id 701 a long one; 700 is absent.
class StringCache : public testing::Test {
protected:
    TempFolder folder;
    HMODULE module = nullptr;

    void SetUp() override {
        std::vector<std::string> texts;
        for (int i = 0; i < 600; ++i) texts.push_back("text " + std::to_string(i));
        texts.insert(texts.end(), {"", std::string(125, 'a') + "bcdef"});
        WriteResourceModule(folder.At("strings.dll"), 100, texts);
        module = LoadLibraryExA(folder.At("strings.dll").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
        ASSERT_TRUE(module);
        LoadResString(nullptr, 0);
    }
    void TearDown() override {
        LoadResString(nullptr, 0);
        FreeLibrary(module);
    }
    const char* Get(UINT number) { return LoadResString(module, 100 + number); }
};

TEST_F(StringCache, FlushesWhenAllSlotsAreTaken) {
    const char* first = Get(0);
    ASSERT_STREQ(first, "text 0");
    for (UINT i = 1; i < 512; ++i) {
        ASSERT_FALSE(LoadResString(module, 700)) << "a missing string";  // takes no slot
        ASSERT_STREQ(Get(i), ("text " + std::to_string(i)).c_str());
        ASSERT_EQ(Get(0), first) << "a string is held once";
    }
    EXPECT_STREQ(first, "text 0") << "512 strings fit";
    const char* fifth = Get(5);
    const char* next = Get(512);
    EXPECT_STREQ(fifth, "") << "all texts are gone";
    EXPECT_STREQ(next, "text 512");
    EXPECT_EQ(next, first) << "the first slot is used again";
    EXPECT_STREQ(Get(511), "text 511");
    EXPECT_STREQ(Get(0), "text 0");
}

TEST_F(StringCache, KeepsModulesApartAndCutsLongTexts) {
    EXPECT_STREQ(Get(10), "text 10");
    EXPECT_FALSE(LoadResString(ThisModule(), 110));
    EXPECT_FALSE(LoadResString(module, IDS_LOADING));
    EXPECT_EQ(std::string(Get(601)), std::string(125, 'a') + "b");
    EXPECT_FALSE(LoadResString(nullptr, 0));  // teardown
    EXPECT_STREQ(Get(3), "text 3") << "made again after the teardown";
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
