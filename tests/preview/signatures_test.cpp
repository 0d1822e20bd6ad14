#include "preview/formats/signatures.h"

#include <gtest/gtest.h>

#include <tuple>

#include "kit/paths.h"
#include "support/drawings.h"
#include "support/guard_block.h"
#include "support/samples.h"

static std::string Qa(char version) { return BytesAt(232, {{4, "CAD ORVIL QA V4.0"}, {25, {version}}}); }
static std::string Lumos(char version) { return BytesAt(232, {{4, "LumosBase"}, {25, {version}}}); }

static const std::string kSzdd = "SZDD\x88\xF0\x27\x33";
static const std::string kBlocks = BytesAt(97, {{32, "\1"}, {64, "\2"}, {96, "\3"}});
static const std::string kBackup = "VEXTRON lumos Backup V2";

static FileTypeCode Identify(const std::string& name, const std::string& contents, char* out = nullptr, int size = 0) {
    const GuardBlock head(contents);
    return IdentifyBytes(head.View(), FindExtension(name.c_str()), out, size);
}

TEST(IdentifyBytes, Kinds) {
    const std::tuple<const char*, std::string, int> cases[] = {
        // clang-format off
        // native drawings, whatever the extension, and the bytes that decide which
        {"a", Qa(4), 1}, {"a.dxf", Qa(26), 1}, {"a", Lumos(4), 0}, {"a", Put(Qa(5), {{0, "LMOS"}}), 0},
        {"a", Put(Qa(5), {{92, "...lumos..."}}), 0}, {"a", Put(Qa(5), {{92, "...lumos."}}), 1},
        {"a", Qa(6), 22}, {"a.txt", Qa(6), 21}, {"a", Lumos(3), 22},
        {"a", BytesAt(21, {{4, "CAD ORVIL QA V4.0"}}), 22},
        {"a", "1234CADORVIL QJ", 2}, {"a.bmp", "1234CADORVIL QF", 3}, {"a", "123CADORVIL QF", 21},
        {"a.txt", kBlocks, 25}, {"a.txt", kBlocks.substr(0, 96), 21}, {"a.exe", kBackup, 24},
        // a signature counts together with its extension only
        {"a.exe", "MZ", 11}, {"a.DLL", "MZ", 9}, {"a.dat", "MZ", 21}, {"a.lzh", "ab-lh5-", 19}, {"a.bmp", "BM", 16},
        {"a.obj", "!<arch>", 21}, {"a.ico", BytesAt(4, {{2, "\1"}}), 17}, {"a.ico", BytesAt(4, {{2, "\2"}}), 22},
        {"a.dxf", kSzdd, 20}, {"a.dxf", kSzdd.substr(0, 7), 4},
        // the extension alone, that of the file's name
        {"a.DXF", "\1", 4}, {"a.exf", "", 7}, {"report.txt", "G90\nG01 X1 Y2\n", 21}, {"a.ptp", "", 23},
        {"a.cmd", "\1", 26}, {"a.dxf.old", "", 21}, {"dxf", "", 21},
        // the contents: text or not, and the vote
        {"a", "", 21}, {"a", {"a\0b", 3}, 22}, {"part.nc", "G90\nG01 X1 Y2\n", 23}, {"a", "G01", 23}, {"a", "G9", 21},
        {"a", "Name\nNext\n", 23}, {"a", "Name Next\n", 21}, {"a", "g01 x1 y1\n", 21},  // a keyword once a line
        // what is read ends after 1,024 bytes
        {"a", std::string(1022, 'a') + "\x83\x5c", 21}, {"a", std::string(1023, 'a') + "\x83\x5c", 22},
        {"a", std::string(1024, 'a') + "\1\2\3", 21}, {"a", std::string(1023, 'a') + "\nG01\n", 21},
        // clang-format on
    };
    for (const auto& [name, contents, code] : cases)
        EXPECT_EQ(Identify(name, contents), code) << name << ": " << testing::PrintToString(contents);
}

TEST(IdentifyBytes, Texts) {
    const auto as = [](std::size_t count) { return std::string(count, 'A'); };
    const auto fields = [](const std::string& header, std::size_t at, std::size_t step) {
        return Put(header + std::string(800, 0), {{at, "name"}, {at + step, "number"}, {at + 2 * step, "who"}});
    };
    const std::string qj = BytesAt(16, {{4, "CADORVIL QJ"}}), qf = BytesAt(16, {{4, "CADORVIL QF"}});
    const std::tuple<const char*, std::string, int, std::string> cases[] = {
        // clang-format off
        {"a", fields(Lumos(4).substr(0, 100), 106, 42), 300, "name,number,who"},
        {"a", fields(qj, 144, 42), 300, "name,number,who"}, {"a", fields(qf, 576, 48), 300, "name,number,who"},
        {"a", Qa(4), 300, ",,"},
        // a field ends where its slot does
        {"a", Put(fields(qf, 576, 48), {{576, as(200)}}), 300, as(47) + "," + as(47) + "," + as(47)},
        {"a", kBackup + std::string(1, 0) + as(400), 300, as(259)},
        // never more than size - 2
        {"a", fields(qj, 144, 42), 10, "name,num"},
        {"a", fields(qj, 144, 42), 1, ""}, {"a", fields(qj, 144, 42), 0, ""},
        // texts as one line, size - 1 of them; none for the rest
        {"a", "ab\r\ncd\te", 300, "ab  cd\te"}, {"a", "ab\r\ncd\te", 5, "ab  "}, {"a", "N1\nG01", 300, "N1 G01"},
        {"a", "abc", 0, ""}, {"a.txt", "abc", 300, ""}, {"a", {"a\0b", 3}, 300, ""},
        // clang-format on
    };
    for (const auto& [name, contents, size, text] : cases) {
        const GuardBlock out(std::string(static_cast<std::size_t>(size), '\0'));
        Identify(name, contents, out.Text(), size);
        const std::string all(out.Text(), out.size);
        EXPECT_EQ(all, text + std::string(out.size - text.size(), '\0'))
            << testing::PrintToString(contents) << " " << size;
    }
}

TEST(IsTextBuffer, Table) {
    const std::pair<std::string, bool> cases[] = {
        // clang-format off
        {"", true}, {"a\tb\r\n~ ", true}, {"\x1f", false}, {{"\0", 1}, false}, {"\x7f", false},
        {"ab\x1a", true}, {"a\x1a" "b", false}, {"\x1a", true},                                // end-of-file mark
        {"\x80\xa0\xa1\xdf", true}, {"\xfd", false}, {"\x81\x40", true}, {"\xfc\xfc", true},  // two-byte characters
        {"\x81\x3f", false}, {"\x81\x7f", false}, {"\x81\xfd", false}, {"\x83\x5c\x83", false},
        // clang-format on
    };
    for (const auto& [bytes, isText] : cases) {
        const GuardBlock block(bytes);
        EXPECT_EQ(IsTextBuffer(block.data, block.size), isText) << testing::PrintToString(bytes);
    }
}
