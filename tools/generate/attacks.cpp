#include "generate/attacks.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "generate/files.h"
#include "preview/formats/backup.h"
#include "preview/formats/command.h"
#include "preview/formats/comments.h"
#include "preview/formats/dxf.h"
#include "preview/formats/full_dxf.h"
#include "preview/formats/native.h"
#include "preview/formats/text.h"

namespace {

// `head`, then what `next` gives for 0, 1, 2 ..., as long as it fits the size, then `tail`.
template <typename Next>
std::string Fill(std::size_t size, std::string text, Next next, const std::string& tail = "") {
    for (int i = 0;; ++i) {
        const std::string part = next(i);
        if (text.size() + part.size() + tail.size() > size) return text + tail;
        text += part;
    }
}

template <typename Next>
std::string DxfOf(std::size_t size, const std::string& extents, Next next) {
    return Fill(size, Dxf("9 $EXTMIN|10 " + extents + "|20 0|9 $EXTMAX|10 1000|20 700|0 SECTION|2 ENTITIES"), next,
                Dxf("0 ENDSEC|0 EOF"));
}

// ---- DXF

std::string OldX(std::size_t size) {  // one long number that every circle asks for again
    return DxfOf(size, "0", [size](int i) {
        return i > 0 ? Dxf("0 CIRCLE|20 350|40 90") : Dxf("0 POINT|10 0." + std::string(size / 2, '1') + "|20 1");
    });
}
std::string Justification(std::size_t size) {
    return DxfOf(size, "0", [](int) { return Dxf("0 TEXT|10 9|20 9|40 90|1 x|50 1|72 3|73 5"); });
}
std::string PercentRuns(std::size_t size) {
    return DxfOf(size, "0", [](int) { return Dxf("0 TEXT|10 9|20 9|40 90|1 " + std::string(127, '%')); });
}
std::string OneLine(std::size_t size) { return std::string(size, '1'); }
std::string BlankLines(std::size_t size) { return "x" + std::string(size - 1, '\n'); }
std::string LongNumbers(std::size_t size) {
    const std::string number = "0." + std::string(780, '9');
    return DxfOf(size, "0", [&](int) { return Dxf("0 LINE|10 0|20 0|11 " + number + "e3|21 " + number + "e2"); });
}
template <const char* const& minX>
std::string OddExtents(std::size_t size) {
    return DxfOf(size, minX, [](int i) {
        return Dxf("0 LINE|10 -1e300|20 0|11 1e" + std::to_string(i % 309) + "|21 5|0 CIRCLE|10 0|20 0|40 1e" +
                   std::to_string(i % 309));
    });
}
constexpr const char *kNan = "nan", *kInfinite = "1e999", *kEmpty = "1000", *kHuge = "-1e308";
std::string Circles(std::size_t size) {  // as large as a circle is drawn
    return DxfOf(size, "0", [](int i) { return Dxf("0 CIRCLE|10 5|20 5|40 " + std::to_string(114600 - i % 100)); });
}
std::string Texts(std::size_t size) {  // a font for each
    return DxfOf(size, "0", [](int i) {
        return Dxf("0 TEXT|10 500|20 350|40 " + std::to_string(14330 - i % 1000) + "|1 W|50 " +
                   std::to_string(i % 3600 / 10.0));
    });
}

// ---- DXF, the full reader

template <typename Next>
std::string FullOf(std::size_t size, const std::string& blocks, const std::string& head, Next next) {
    return Fill(size, Dxf("0 SECTION|2 BLOCKS|" + blocks + "0 ENDSEC|0 SECTION|2 ENTITIES|0 POINT|10 0|20 0|" + head),
                next, Dxf("0 ENDSEC|0 EOF"));
}
std::string Block(int number, const std::string& entities) {
    return "0 BLOCK|2 B" + std::to_string(number) + "|" + entities + "|0 ENDBLK|";
}
std::string Insert(int number) { return "0 INSERT|2 B" + std::to_string(number) + "|10 1|20 1"; }
std::string ManyInserts(int i) { return Dxf(Insert(i % 20)); }

std::string BlockBomb(std::size_t size) {  // each holds the one before ten times
    std::string blocks = Block(0, "0 LINE|11 9|21 5");
    for (int i = 1; i < 20; ++i) {
        std::string inserts = Insert(i - 1);
        for (int k = 1; k < 10; ++k) inserts += "|" + Insert(i - 1);
        blocks += Block(i, inserts);
    }
    return FullOf(size, blocks, "0 POINT|10 300|20 200", ManyInserts);
}
std::string BlockRings(std::size_t size) {  // each holds itself, the one before and the one behind
    std::string blocks;
    for (int i = 0; i < 20; ++i)
        blocks += Block(i, "0 LINE|11 9|21 5|" + Insert(i) + "|" + Insert((i + 1) % 20) + "|" + Insert((i + 19) % 20));
    return FullOf(size, blocks, "0 POINT|10 300|20 200", ManyInserts);
}
std::string DeepBlocks(std::size_t size) {
    std::string blocks = Block(0, "0 LINE|11 9|21 5");
    for (int i = 1; i < 1000; ++i) blocks += Block(i, Insert(i - 1));
    return FullOf(size, blocks, "0 POINT|10 300|20 200", [](int i) { return Dxf(Insert(i % 1000)); });
}
std::string OpenBlocks(std::size_t size) {  // without an end, of what shows nothing, and seen aslant
    std::string blocks;
    for (int i = 0; blocks.size() < size / 2; ++i) blocks += "0 BLOCK|2 B" + std::to_string(i) + "|0 X|0 X|";
    return FullOf(size, blocks + "0 LINE|11 9|21 5|", "0 POINT|10 300|20 200",
                  [](int i) { return Dxf(Insert(i) + (i % 2 ? "|210 1" : "")); });
}
std::string WideArrays(std::size_t size) {
    return FullOf(size, Block(0, "0 LINE|11 9|21 5") + Block(1, "0 INSERT|2 B0|70 32767|71 32767|44 1e-3|45 1e-3"),
                  "0 POINT|10 300|20 200", [](int i) {
                      return Dxf(Insert(i % 2) + "|70 32767|71 32767|44 0.0" + std::to_string(i % 9) + "1|45 9");
                  });
}
std::string LongRecords(std::size_t size) {  // that each insert would walk over
    std::string blocks = Block(0, "0 LINE|11 9|21 5");
    blocks.insert(blocks.find("|0 LINE"),
                  "|1000 " + std::string(size / 4, 'x') + "|0 NEW|1 " + std::string(size / 4, 'x'));
    return FullOf(size, blocks, "0 POINT|10 300|20 200", [](int) { return Dxf(Insert(0)); });
}
std::string HighDegrees(std::size_t size) {
    return FullOf(size, "", "0 SPLINE|71 1000000", [](int i) {
        return Dxf("40 " + std::to_string(i) + "|10 " + std::to_string(i % 300) + "|20 " + std::to_string(i * 7 % 200));
    });
}
std::string OddKnots(std::size_t size) {
    return FullOf(size, "", "0 POINT|10 300|20 200", [](int i) {
        return Dxf(std::string("0 SPLINE|71 3|40 0|40 nan|40 1e999|40 -1e308|40 ") + (i % 2 ? "nan" : "1") +
                   "|40 1e-320|40 1|40 1|10 0|20 0|41 0|10 9|20 1e300|41 -1|10 3|20 9|41 nan|10 nan|20 1e999|41 1e999");
    });
}
std::string DenseHatches(std::size_t size) {
    return FullOf(size, "", "0 POINT|10 300|20 200", [](int i) {
        return Dxf("0 HATCH|70 0|92 3|10 0|20 0|10 300|20 0|10 300|20 200|75 0|78 1|53 " + std::to_string(i) +
                   "|43 0|44 0|45 1e-9|46 1." + std::to_string(i % 7) + "|79 2|49 1e-9|49 -1e-9");
    });
}
std::string NestedCodes(std::size_t size) {
    return FullOf(size, "", "0 POINT|10 300|20 200|0 MTEXT|10 1|20 9|40 2|41 1",
                  [](int) { return Dxf("3 " + std::string(120, '{') + "\\H9x;\\S1/2;" + std::string(100, '\\')); });
}

// ---- Other formats

// Every other record is a text, and every text's chain leads into a ring of all deleted continuations.
std::string Chains(std::size_t size) {
    const auto count = static_cast<unsigned>(std::min<std::size_t>((size - 1024) / 64, 65534));
    std::string records;
    for (unsigned i = 0; i < count; ++i) {
        records += i % 2 ? ContinuationRecord("", (i + 2) % count + 1, 0x4000)
                         : TextRecord({5, 9, 9, 9, 0, 0}, 0, "a text", i + 2);
    }
    const std::string file = NativeFile(kEditionA, 400, 300, records);
    return file + std::string(size - file.size(), '\0');
}
std::string FarFrames(std::size_t size) {
    return Fill(size, BackupFile(400, 300, ""), [](int i) {
        const float away = i % 2 ? 1e38f : -3e9f;
        return CountedTextRecord({away, away, 1e30f, 1e30f, 1e30f, 33}, 0, 65535);
    });
}
std::string OpenTexts(std::size_t size) {  // none has its closing quote
    return Fill(size, "AR 0,0,400,300\n", [](int) { return "GT 5,5,9,9,0,0,0,6 '" + std::string(200, 'x') + "\n"; });
}
std::string Areas(std::size_t size) {
    return Fill(size, "", [](int i) { return "AR 0,0,40" + std::to_string(i % 10) + ",300\nGL 1,0,0,400,300,0\n"; });
}
std::string NamesItself(std::size_t size) {
    return Fill(size, "", [](int) { return "DIALOG_PREVIEW \"..\\attack.cmd\"\n"; });
}
bool DecodeCommand(ByteView file, Comment* comment, DrawingSink*) {
    return !ResolveBeside("C:\\a\\attack.cmd", TakeCommandFile(file, comment), 'C').empty();
}

}  // namespace

const Attack kAttacks[] = {
    {"a number asked for again", ".dxf", DecodeDxf, OldX, {0, 0, 3120, 0, 0}},
    {"justification 3", ".dxf", DecodeDxf, Justification, {0, 0, 0, 0, 2939}},
    {"runs of %%", ".dxf", DecodeDxf, PercentRuns, {0, 0, 0, 0, 1175}},
    {"one line", ".dxf", DecodeDxf, OneLine, {}},
    {"one line, .exf", ".exf", DecodeTextDrawing, OneLine, {}},
    {"blank lines", ".dxf", DecodeDxf, BlankLines, {}},
    {"numbers of 780 digits", ".dxf", DecodeDxf, LongNumbers, {0, 124, 0, 0, 0}},
    {"extents NaN", ".dxf", DecodeDxf, OddExtents<kNan>, {0, 0, 36, 0, 0}},
    {"extents infinite", ".dxf", DecodeDxf, OddExtents<kInfinite>, {}},
    {"extents empty", ".dxf", DecodeDxf, OddExtents<kEmpty>, {0, 0, 21, 0, 0}},
    {"extents of 1e308", ".dxf", DecodeDxf, OddExtents<kHuge>, {}},
    {"circles of 32,766 pixels", ".dxf", DecodeDxf, Circles, {0, 0, 4759, 0, 0}},
    {"texts of a new angle each", ".dxf", DecodeDxf, Texts, {0, 0, 0, 0, 2955}},
    {"a block bomb", ".dxf", DecodeFullDxf, BlockBomb, {2, 265798, 0, 0, 0}},
    {"blocks that hold themselves", ".dxf", DecodeFullDxf, BlockRings, {2, 173333, 0, 0, 0}},
    {"blocks 1,000 deep", ".dxf", DecodeFullDxf, DeepBlocks, {2, 128, 0, 0, 0}},
    {"blocks without an end", ".dxf", DecodeFullDxf, OpenBlocks, {2, 0, 0, 0, 0}},
    {"arrays of 32,767 x 32,767", ".dxf", DecodeFullDxf, WideArrays, {225108, 0, 0, 0, 0}},
    {"blocks of long records", ".dxf", DecodeFullDxf, LongRecords, {1, 2625, 0, 0, 0}},
    {"a spline of degree 1,000,000", ".dxf", DecodeFullDxf, HighDegrees, {1, 6681, 0, 0, 0}},
    {"knots that are no numbers", ".dxf", DecodeFullDxf, OddKnots, {2, 0, 0, 0, 0}},
    {"hatches denser than pixels", ".dxf", DecodeFullDxf, DenseHatches, {22, 6141, 0, 0, 0}},
    {"nested format codes", ".dxf", DecodeFullDxf, NestedCodes, {286, 0, 0, 0, 0}},
    {"chains of deleted records", ".qa", DecodeNative, Chains, {0, 0, 0, 0, 1555}},
    {"frames far away", ".lbk", DecodeBackup, FarFrames, {}},
    {"texts without an end", ".exf", DecodeTextDrawing, OpenTexts, {}},
    {"extents again and again", ".exf", DecodeTextDrawing, Areas, {0, 5882, 0, 0, 0}},
    {"a command file that names itself", ".cmd", DecodeCommand, NamesItself, {}},
    {"one line, .txt", ".txt", DecodeTextComment, OneLine, {}},
};
const std::size_t kAttackCount = std::size(kAttacks);
