#include "preview/command_reader.h"

#include <gtest/gtest.h>

#include "support/cases.h"
#include "support/drawings.h"
#include "support/picture.h"
#include "support/samples.h"
#include "support/temp_folder.h"

static const RECT kTarget = {0, 0, 16, 8};

static std::string Show(const std::string& path) {
    return TakePicture(PreviewCommandFile(0, path.c_str(), &kTarget, nullptr, 0));
}

static const std::string kKey = "DIALOG_PREVIEW";
static std::string Line(const std::string& path) { return kKey + " \"" + path + "\"\r\n"; }

static void Replace(std::string* text, const std::string& word, const std::string& by) {
    for (std::size_t at; (at = text->find(word)) != std::string::npos;) text->replace(at, word.size(), by);
}

static const std::string kDrawing = DxfDrawing(16, 8, "0 LINE|10 2|20 2.7|11 9|21 2.7");

TEST(CommandReader, FollowsTheLine) {
    const TempFolder folder;
    const std::string sub = folder.MakeFolder("sub"), elsewhere = folder.MakeFolder("elsewhere");
    const std::string records = LineRecord(2, 2.7, 9, 2.7), other = DxfDrawing(16, 8, "0 POINT|10 3|20 5.7");
    for (const char* name : {"part.dxf", "a b'c.dxf"}) folder.Write(name, kDrawing);
    folder.Write("part.qa", NativeFile(kEditionA, 16, 8, records));
    folder.Write("part.exf", "AR 0,0,16,8\nGL 0,2,2.7,9,2.7,0\n");
    folder.Write("part.lbk", BackupFile(16, 8, records));
    folder.Write("elsewhere\\part.dxf", other);
    folder.Write("part.cmd", Line("part.dxf"));
    const std::string part = Line("part.dxf"), drive = folder.path.substr(0, 2);
    std::vector<TextCase> cases = TextCases("preview/commands.txt");
    for (TextCase& c : cases) {
        Replace(&c.given, "{folder}", folder.path);
        Replace(&c.given, "{path}", folder.path.substr(2));
        Replace(&c.given, "{drive}", drive);
        Replace(&c.given, "{other}", drive[0] == 'Q' ? "R:" : "Q:");
        c.given += "\r\n";
    }
    cases.insert(cases.end(), {
                                  {"the other case of its drive",
                                   Line(std::string(1, static_cast<char>(drive[0] ^ 0x20)) + ":part.dxf"), "drawn"},
                                  {"the file's last byte goes", kKey + " \"part.dxf\"", ""},
                                  {"a byte more", kKey + " \"part.dxf\"x", "drawn"},
                                  {"nothing", "", ""},
                                  {"a path may be so long", Line(std::string(259, 'x')) + part, ""},
                                  {"a longer one is none", Line(std::string(260, 'x')) + part, "drawn"},
                              });
    const std::string command = folder.At("a.cmd");
    const std::string expected = TakePicture(ReadDxfPreview(0, folder.At("part.dxf").c_str(), &kTarget, nullptr, 0));
    ASSERT_TRUE(HasInk(expected));
    char before[MAX_PATH] = "", now[MAX_PATH] = "";
    GetCurrentDirectoryA(sizeof(before), before);
    for (const std::string& from : {elsewhere, folder.path}) {
        SetCurrentDirectoryA(from.c_str());
        for (const TextCase& c : cases) {
            folder.Write("a.cmd", c.given);
            EXPECT_EQ(Show(command), c.expected.empty() ? "" : expected) << c.name;
        }
        GetCurrentDirectoryA(sizeof(now), now);
        EXPECT_EQ(now, from);
    }
    EXPECT_EQ(Show("part.cmd"), expected) << "a command file in the current directory";
    folder.Write("sub\\up.cmd", Line("..\\part.dxf"));
    EXPECT_EQ(Show("sub\\up.cmd"), expected) << "in a folder below";
    folder.Write("sub\\up.cmd", Line(drive + "..\\part.dxf"));
    EXPECT_EQ(Show("sub\\up.cmd"), expected) << "the drive is the current directory's";
    SetCurrentDirectoryA(sub.c_str());
    folder.Write("a.cmd", Line("..\\" + folder.path.substr(folder.path.rfind('\\') + 1) + "\\part.dxf"));
    EXPECT_EQ(Show("..\\a.cmd"), expected) << "above the current directory";
    EXPECT_FALSE(PreviewCommandFile(0, nullptr, &kTarget, nullptr, 0));
    SetCurrentDirectoryA(before);
}

// Folders whose name ends in a byte that stands for half a character in another language, and folders far down.
TEST(CommandReader, Folders) {
    const TempFolder folder;
    const std::string special = GetACP() == 932 ? "\x83\x5c" : "Ren\xe9";
    folder.MakeFolder(special);
    folder.Write(special + "\\" + special + ".dxf", kDrawing);
    folder.Write(special + "\\part.dxf", kDrawing);
    folder.Write(special + "\\a.cmd", Line("part.dxf"));
    folder.Write(special + "\\b.cmd", Line(special + ".dxf"));
    EXPECT_TRUE(HasInk(Show(folder.At(special + "\\a.cmd")))) << "beside the command file";
    EXPECT_TRUE(HasInk(Show(folder.At(special + "\\b.cmd")))) << "a name that ends in such a byte";
    const std::string deep = std::string(80, 'd') + "\\" + std::string(80, 'e'), side(60, 's');
    for (const std::string& name : {std::string(80, 'd'), deep, side}) folder.MakeFolder(name);
    folder.Write(side + "\\part.dxf", kDrawing);
    folder.Write(deep + "\\a.cmd", Line("..\\..\\" + side + "\\part.dxf"));
    EXPECT_TRUE(HasInk(Show(folder.At(deep + "\\a.cmd")))) << "too long only until the path is resolved";
}

TEST(CommandReader, Comment) {
    const TempFolder folder;
    folder.Write("part.qa", Put(NativeFile(kEditionA, 9, 9, ""), {{106, "name"}}));
    char out[100] = "";
    const std::string path = folder.Write("a.cmd", "REM\r\n\r\n" + Line("part.qa") + "END\n");
    EXPECT_NE(TakePicture(PreviewCommandFile(0, path.c_str(), &kTarget, out, sizeof(out))), "");
    EXPECT_STREQ(out, "REM\r\r\nDIALOG_PREVIEW \"part.qa\"\r\r\nEND\r\r\n") << "the drawing's title block stays out";
}
