#include "preview/formats/title_block.h"

#include <gtest/gtest.h>

#include "preview/reader.h"
#include "support/drawings.h"
#include "support/samples.h"

static std::string Blocks(const std::string& name, const std::string& number, const std::string& designer) {
    const bool japanese = GetACP() == 932;
    const auto block = [](const std::string& label, const std::string& field) {
        return label + "\r\r\n" + field + std::string(42 - std::min<std::size_t>(field.size(), 42), ' ') +
               "\r\r\n\r\r\n";
    };
    return block(japanese ? "[\x90\x7d\x96\xca\x96\xbc\x8f\xcc]" : "[Drawing name]", name) +
           block(japanese ? "[\x90\x7d\x94\xd4]" : "[Drawing no]", number) +
           block(japanese ? "[\x8d\xec\x90\xac\x8e\xd2]" : "[Designer]", designer);
}

TEST(TitleBlock, EveryFormat) {
    const std::string line = LineRecord(0, 0, 1, 1), a = NativeFile(kEditionA, 9, 9, line);
    const struct {
        const char* what;
        PreviewReader reader;
        std::string file;
        std::size_t at, slot, longest;
        std::size_t least;  // a file of this size has a comment, a smaller one has none
    } cases[] = {
        {"native", ReadNativePreview, a, 106, 42, 41, a.size()},
        {"backup", ReadBackupDrawing, BackupFile(9, 9, line), 284, 42, 42, 446 + 64},
        {"QJ", ReadQjComment, BytesAt(400, {{4, "CADORVIL QJ"}}), 144, 42, 41, 270},
        {"QF", ReadQfComment, BytesAt(900, {{4, "CADORVIL QF"}}), 576, 48, 47, 720},
    };
    for (const auto& c : cases) {
        const auto with = [&](const std::string& name, const std::string& number, const std::string& designer) {
            return Put(c.file, {{c.at, name}, {c.at + c.slot, number}, {c.at + 2 * c.slot, designer}});
        };
        const auto as = [](std::size_t count) { return std::string(count, 'A'); };
        const std::string plain = with("name", "\x83\x5c\x94\x5c", "who %s");
        const std::string whole = Blocks("name", "\x83\x5c\x94\x5c", "who %s");
        const std::string most = as(c.longest);
        EXPECT_EQ(CommentOf(c.reader, with(as(3 * c.slot), as(40), as(c.slot)), 999), Blocks(most, most, most))
            << c.what;
        for (const std::size_t size : {0, 1, 2, 17, 18, 150, 200})
            EXPECT_EQ(CommentOf(c.reader, plain, size), whole.substr(0, size ? size - 1 : 0)) << c.what << " " << size;
        EXPECT_EQ(CommentOf(c.reader, plain.substr(0, c.least), 999), whole) << c.what;
        for (const std::size_t size : {c.least - 1, c.at + 1, std::size_t{0}})
            EXPECT_EQ(CommentOf(c.reader, plain.substr(0, size), 999), "") << c.what << " " << size;
    }
    // Drawings that announce more than they hold, or are none.
    const std::string none = NativeFile(kEditionA, 9, 9, "");
    for (const std::string& file : {Put(a, {{242, "\2"}}), Put(a, {{242, "\xFF\xFF"}}), Put(a, {{20, "1"}}),
                                    Put(a, {{4, "LumosBase"}}), none.substr(0, 1023)})
        EXPECT_EQ(CommentOf(ReadNativePreview, file, 999), "");
    EXPECT_NE(CommentOf(ReadNativePreview, none, 999), "");
}
