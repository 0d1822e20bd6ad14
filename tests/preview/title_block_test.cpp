#include "preview/formats/title_block.h"

#include <gtest/gtest.h>

#include "preview/formats/backup.h"
#include "preview/formats/comments.h"
#include "preview/formats/native.h"
#include "support/drawings.h"
#include "support/samples.h"

static std::string Blocks(const std::string& name, const std::string& number, const std::string& designer) {
    const auto block = [](const std::string& label, const std::string& field) {
        return label + "\r\r\n" + field + std::string(42 - std::min<std::size_t>(field.size(), 42), ' ') +
               "\r\r\n\r\r\n";
    };
    return block("<35>", name) + block("<36>", number) + block("<37>", designer);
}

TEST(TitleBlock, EveryFormat) {
    const std::string line = LineRecord(0, 0, 1, 1), a = NativeFile(kEditionA, 9, 9, line);
    const struct {
        const char* what;
        Decoder decode;
        std::string file;
        std::size_t at, slot, longest;
        std::size_t least;  // a file of this size has a comment, a smaller one has none
    } cases[] = {
        {"native", DecodeNative, a, 106, 42, 41, a.size()},
        {"backup", DecodeBackup, BackupFile(9, 9, line), 284, 42, 42, 446 + 64},
        {"QJ", DecodeQjComment, BytesAt(400, {{4, "CADORVIL QJ"}}), 144, 42, 41, 270},
        {"QF", DecodeQfComment, BytesAt(900, {{4, "CADORVIL QF"}}), 576, 48, 47, 720},
    };
    for (const auto& c : cases) {
        const auto with = [&](const std::string& name, const std::string& number, const std::string& designer) {
            return Put(c.file, {{c.at, name}, {c.at + c.slot, number}, {c.at + 2 * c.slot, designer}});
        };
        const auto as = [](std::size_t count) { return std::string(count, 'A'); };
        const std::string plain = with("name", "\x83\x5c\x94\x5c", "who %s");
        const std::string whole = Blocks("name", "\x83\x5c\x94\x5c", "who %s");
        const std::string most = as(c.longest);
        EXPECT_EQ(CommentOf(c.decode, with(as(3 * c.slot), as(40), as(c.slot)), 999), Blocks(most, most, most))
            << c.what;
        for (const std::size_t size : {0u, 1u, 2u, 17u, 18u, 130u, 170u})
            EXPECT_EQ(CommentOf(c.decode, plain, size), whole.substr(0, size ? size - 1 : 0)) << c.what << " " << size;
        EXPECT_EQ(CommentOf(c.decode, plain.substr(0, c.least), 999), whole) << c.what;
        for (const std::size_t size : {c.least - 1, c.at + 1, std::size_t{0}})
            EXPECT_EQ(CommentOf(c.decode, plain.substr(0, size), 999), "") << c.what << " " << size;
    }
    // Drawings that announce more than they hold, or are none.
    const std::string none = NativeFile(kEditionA, 9, 9, "");
    for (const std::string& file : {Put(a, {{242, "\2"}}), Put(a, {{242, "\xFF\xFF"}}), Put(a, {{20, "1"}}),
                                    Put(a, {{4, "LumosBase"}}), none.substr(0, 1023)})
        EXPECT_EQ(CommentOf(DecodeNative, file, 999), "");
    EXPECT_NE(CommentOf(DecodeNative, none, 999), "");
}
