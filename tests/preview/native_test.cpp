#include "preview/formats/native.h"

#include <gtest/gtest.h>

#include <tuple>

#include "support/drawings.h"
#include "support/guard_block.h"

static std::string Shown(const std::string& file, int width, int height, bool frames = false) {
    return PlotOf(DecodeNative, file, width, height, frames);
}

TEST(DecodeNative, Layers) {
    const auto on = [](int layer) { return Put(LineRecord(2, 2.7, 9, 2.7), {{7, {static_cast<char>(layer)}}}); };
    const std::string all(512, '\1');
    // What is put into the header and where.
    const std::tuple<const char*, NativeEdition, int, std::size_t, std::string, bool> cases[] = {
        // clang-format off
        {"no flag", kEditionA, 3, 250, "", false}, {"its flag", kEditionA, 3, 250 + 6, "\1", true},
        {"the current layer", kEditionA, 1, 250, "", true}, {"another current layer", kEditionA, 1, 248, "\2", false},
        {"the last flag of edition A", kEditionA, 15, 250, all, true},
        {"edition A has 16 flags", kEditionA, 16, 250, all, false},
        {"the last flag of edition B", kEditionB, 255, 250 + 510, "\1", true},
        // clang-format on
    };
    for (const auto& [what, edition, layer, at, bytes, isShown] : cases) {
        const std::string file = Put(NativeFile(edition, 16, 8, on(layer)), {{at, bytes}});
        EXPECT_EQ(Shown(file, 16, 8) != PlotOf({}, 16, 8), isShown) << what;
    }
}

TEST(DecodeNative, SheetAndOrigin) {
    const auto file = [](const char* start, std::initializer_list<double> sheet, float x, float y) {
        const std::string records = LineRecord(2 + x, 3 + y, 90 + x, 50 + y) + PointRecord(5 + x, 50 + y) +
                                    ArcRecord(50 + x, 30 + y, 20, 0, 300) +
                                    TextRecord({20 + x, 30 + y, 8, 8, 1, 0}, 0, "abc");
        std::string numbers;
        for (const double number : sheet) numbers += Raw(number);
        return Put(NativeFile(kEditionB, 0, 0, records), {{0, start}, {32, numbers}});
    };
    const std::string picture = Shown(file("", {100, 60}, 0, 0), 100, 60);
    EXPECT_EQ(Shown(file("LMOX", {1100, 560, 1000, 500, 7, 9}, 1000, 500), 100, 60), picture);
    EXPECT_EQ(Shown(file("LMOS", {100, 60, 77, 55, 70, 50}, 0, 0), 100, 60), picture)
        << "with an origin the sheet begins at (0, 0), whatever its minimum says";
}

// Small letters in their full-width form.
static std::string Wide(const std::string& text) {
    std::string wide;
    for (const char c : text) wide += {'\x82', static_cast<char>(c - 'a' + 0x81)};
    return wide;
}

// What a text record, which is number 1, and the records behind it give.
TEST(GatherRecordText, Table) {
    const std::string most = "abcdefghijklmn", more(46, 'x');
    const auto text = [](const std::string& string, unsigned link = kNoLink) {
        return TextRecord({}, 0, string, link);
    };
    const auto next = [](const std::string& string, unsigned link = kNoLink, unsigned status = 0) {
        return ContinuationRecord(string, link, status);
    };
    const std::string hidden = "\x81\x5c\xe0\x7c\x9f\x5b\xfc\x5d", dash = "\x81\x7c";
    const std::tuple<const char*, std::string, std::string> cases[] = {
        // clang-format off
        {"the string ends at the first zero byte", text("ab", 2) + next("xyz"), Wide("ab")},
        {"out of order", text(most, 3) + next("c") + next(more, 2), Wide(most + more + "c")},
        {"link 0", text(most, 0) + next("xyz"), Wide(most)}, {"a link to itself", text(most, 1), Wide(most)},
        {"beyond the count", text(most, 3) + next("xyz"), Wide(most)},
        {"deleted, its link counts", text(most, 2) + next(more, 3, 1) + next(more, 4, 0x4000) + next("c"), Wide(most + "c")},
        {"other bits of the status", text(most, 2) + next("c", kNoLink, 0xBFFE), Wide(most + "c")},
        {"deleted ones in a circle", text(most, 2) + next(more, 3, 1) + next(more, 2, 1), Wide(most)},
        {"a circle: as many hops as records", text(most, 2) + next(more, 3) + next(more, 2), most + std::string(138, 'x')},
        // widened as far as 256 - 14 - 46 for each chunk reaches
        {"three chunks", text(most, 2) + next(more, 3) + next(more), Wide(most + more.substr(17)) + std::string(63, 'x')},
        {"no seventh", text(most, 2) + next(more, 2) + std::string(5 * 64, '\0'), most + std::string(230, 'x')},
        // marks
        {"removed", text("a|b_c[d]e"), Wide("abcde")}, {"every other one stays", text("[[]]"), "\x81\x6d\x81\x6e"},
        {"the character that slides into the gap may be wide", text("[" + dash + "]a"), dash + Wide("a")},
        {"second bytes that look like marks", text(hidden), hidden},
        {"half a character at the end", text("a\x83"), Wide("a") + "\x81\x40"},
        {"a character over the seam", text(most.substr(1) + "\x83", 2) + next("\x5c"), Wide(most.substr(1)) + "\x83\x5c"},
        // clang-format on
    };
    for (const auto& [what, chunks, text] : cases) {
        const GuardBlock records(chunks), buffer(std::string(256, '#'));
        const unsigned count = static_cast<unsigned>(chunks.size() / 64);
        const std::size_t length = GatherRecordText(1, count, records.View(), buffer.Text(), buffer.size);
        EXPECT_EQ(testing::PrintToString(std::string(buffer.Text(), length)), testing::PrintToString(text)) << what;
        EXPECT_EQ(length, strnlen(buffer.Text(), buffer.size)) << what;
    }
}

// A chain over 1,000 deleted continuations, one of which a filler pattern marks: it counts as deleted as long as the
// text stands before it.
TEST(GatherRecordText, LongChains) {
    constexpr unsigned kLast = 1003, kFilled = 700;
    const std::string most = "abcdefghijklmn";
    std::string records = TextRecord({}, 0, most, 2);
    for (unsigned number = 2; number < kLast - 1; ++number)
        records += ContinuationRecord("x", number + 1, number == kFilled ? 0x25A5 : 1);
    records += ContinuationRecord("end") + TextRecord({}, 0, most, 2);
    const auto text = [&](unsigned number, unsigned count) {
        char out[256];
        const GuardBlock block(records.substr(0, std::size_t{64} * count));
        return std::string(out, GatherRecordText(number, count, block.View(), out, sizeof(out)));
    };
    EXPECT_EQ(text(1, kLast), Wide(most + "end"));
    EXPECT_EQ(text(kLast, kLast), Wide(most + "x")) << "and the zeros behind it end the text";
    EXPECT_EQ(text(1, kLast - 2), Wide(most)) << "the chain leads behind the last record";
    records.replace((kLast - 3) * 64 + 62, 2, Raw(std::uint16_t{2}));  // a ring
    EXPECT_EQ(text(1, kLast), Wide(most));
}

// Filler patterns count when a record is reached, not when a text before it looks ahead.
TEST(DecodeNative, TextFillers) {
    const std::string most = "abcdefghijklmn", more(42, 'x'), dot = "\x81\x45";
    const auto filled = [](const std::string& record) { return Put(record, {{58, std::string(6, '\xA5')}}); };
    const auto text = [](const std::string& string, unsigned link) {
        return TextRecord({5, 30, 8, 4, 0, 0}, 0, string, link);
    };
    const auto shown = [](const std::string& records) {
        return Shown(NativeFile(kEditionA, 250, 60, records), 250, 60);
    };
    const auto drawn = [](const std::string& wide) { return PlotOf({TextStrokeOf(5, 38, 8, 2, 0, 0, wide)}, 250, 60); };
    EXPECT_EQ(shown(filled(ContinuationRecord(more)) + text(most, 1)), drawn(Wide(most + more)));
    EXPECT_EQ(shown(text(most, 2) + filled(ContinuationRecord(more))),
              drawn(Wide(most + more) + dot + dot + dot + dot));
}
