#include "fuzz/targets.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "dlgctrl/expression.h"
#include "dlgctrl/number_type.h"
#include "dlgctrl/value_format.h"
#include "kit/dib_file.h"
#include "kit/numbers.h"
#include "kit/paths.h"
#include "kit/sjis.h"
#include "preview/drawing/raster.h"
#include "preview/formats/backup.h"
#include "preview/formats/command.h"
#include "preview/formats/comments.h"
#include "preview/formats/dxf.h"
#include "preview/formats/full_dxf.h"
#include "preview/formats/native.h"
#include "preview/formats/signatures.h"
#include "preview/formats/text.h"
#include "support/checked_canvas.h"

namespace {

std::string TextOf(ByteView bytes) { return {reinterpret_cast<const char*>(bytes.data), bytes.size}; }

// What an input asks for besides its bytes, so that a file is tried in one way and its neighbours in others: drawn,
// drawn with text frames, cancelled, on no canvas, without a sink.
struct Ways {
    std::uint32_t bits = 2166136261u;
    explicit Ways(ByteView input) {
        for (std::size_t i = 0; i < std::min<std::size_t>(input.size, 16); ++i) {
            bits = (bits ^ input.data[input.size - 1 - i]) * 16777619u;
        }
        bits ^= static_cast<std::uint32_t>(input.size) * 2654435761u;
        bits ^= bits >> 15;
    }
    std::uint32_t Take(std::uint32_t count) {  // 0 to count - 1
        const std::uint32_t value = bits % count;
        bits /= count;
        return value;
    }
};

// ---- Drawings

struct FuzzedCanvas : CheckedCanvas {
    explicit FuzzedCanvas(Ways& ways) {
        constexpr PixelRect kTargets[] = {{0, 0, 189, 126}, {0, 0, 1, 1}, {5, 7, 4005, 3007}, {0, 0, 0, 0}};
        target = kTargets[ways.Take(8) / 2];
        if (ways.Take(4) == 0) drawsLeft = ways.Take(64);
        if (ways.Take(8) == 0) fitsLeft = ways.Take(3);
        textsAsFrames = ways.Take(4) == 0;
    }
};

void Label(unsigned id, char* out, std::size_t size) {
    const std::string text(id % 70, 'L');
    std::strncpy(out, text.c_str(), size - 1);
    out[size - 1] = '\0';
}

// A buffer of exactly the size that its comment is told.
struct CommentBuffer {
    std::size_t size;
    std::unique_ptr<char[]> bytes;
    Comment comment;
    explicit CommentBuffer(Ways& ways) {
        constexpr std::size_t kSizes[] = {0, 1, 2, 5, 100, 400, 32767};
        size = kSizes[ways.Take(7)];
        bytes.reset(new char[size]());
        if (size > 0) comment = {bytes.get(), static_cast<long long>(size), Label};
    }
    ~CommentBuffer() { Require(size == 0 || std::memchr(bytes.get(), 0, size)); }
};

template <Decoder decode>
void Decode(ByteView input) {
    Ways ways(input);
    CommentBuffer buffer(ways);
    FuzzedCanvas canvas(ways);
    DrawingSink* const sink = ways.Take(16) == 0 ? nullptr : &canvas;
    const bool complete = decode(input, &buffer.comment, sink);
    Require(!complete || !sink || canvas.opened);
}

// ---- What users and hosts type

// Sometimes so many times one behind the other that a parser without a limit runs out of stack.
void RunExpression(ByteView input) {
    constexpr std::size_t kLong = 1 << 16;
    std::string text = TextOf(input);
    if (Ways(input).Take(16) == 0) {
        while (!text.empty() && text.size() < kLong) text += text;
    }
    const char* position = text.c_str();
    double value = 0;
    int error = 0;
    const int good = evaluateExpression(&position, &value, &error);
    Require(position >= text.c_str() && position <= text.c_str() + std::strlen(text.c_str()));
    Require(good == (error == 0) && (good || value == 0));
}

// One byte that chooses, a format and a text, each ended by a zero.
void RunValue(ByteView input) {
    if (input.size == 0) return;
    const std::string all = TextOf(input), format = all.c_str() + 1,
                      text = all.c_str() + std::min(all.size(), format.size() + 2);
    const unsigned choice = input.data[0];
    const NumberType& type = kNumberTypes[choice % 5];
    SetRealFormat(choice & 0x80 ? format.c_str() : nullptr, static_cast<int>(choice >> 3 & 7) - 1);
    char kept[kRealFormatSize];
    int decimals = 0;
    GetRealFormat(kept, &decimals);
    const double minimum = choice & 0x40 ? -1e9 : 0, maximum = choice & 0x20 ? 0 : 1e300;
    CheckedText(type, text.c_str(), minimum, maximum, choice & 1 ? format.c_str() : nullptr);
    alignas(8) unsigned char variable[8];
    type.store(variable, type.limit(type.leading(text.c_str()), minimum, maximum));
    type.format(format.c_str(), type.load(variable));
    Require(FormatText(format.c_str(), text.c_str()).size() <= format.size() + text.size() + 1000);
    std::string cut = text;
    DropSplitCharacter(&cut);
    Require(cut.size() + 1 >= text.size());
    TrimDecimals(&cut, decimals);
}

// Against the standard conversion, which also takes hexadecimal numbers.
void RunNumber(ByteView input) {
    std::string text = TextOf(input);
    text = text.c_str();
    text.resize(std::min(text.find_first_of("xX"), text.size()));
    std::size_t used = 0;
    const double value = ParseDecimal({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, &used);
    char* end = nullptr;
    const double standard = std::strtod(text.c_str(), &end);
    if (std::isnan(standard) || text.find_first_of("iI") < static_cast<std::size_t>(end - text.c_str())) return;
    Require(value == standard && std::signbit(value) == std::signbit(standard));
    Require(used == static_cast<std::size_t>(end - text.c_str()));
}

// ---- Texts

// Against the rule, byte by byte.
void RunLines(ByteView input) {
    LineWalk walk = {input.data, input.data + input.size};
    ByteView line;
    std::size_t at = 0;
    while (TakeLine(&walk, &line)) {
        Require(at < input.size && input.data[at] != 0 && line.data == input.data + at);
        std::size_t end = at;
        while (end < input.size && input.data[end] >= 32)
            end += IsLeadByte(input.data[end]) && end + 1 < input.size ? 2 : 1;
        Require(line.size == end - at);
        while (end < input.size && input.data[end] != 0 && input.data[end] < 32) ++end;
        Require(walk.next == input.data + end);
        at = end;
    }
    Require(at == input.size || input.data[at] == 0);
}

void RunIdentify(ByteView input) {
    constexpr const char* kExtensions[] = {"",     ".qa",  ".DXF", ".exf", ".BMI", ".PCS", ".HLP",
                                           ".dll", ".BAT", ".EXE", ".SYS", ".VXD", ".OBJ", ".LIB",
                                           ".BMP", ".ICO", ".CUR", ".LZH", ".TXT", ".PTP", ".CMD"};
    Ways ways(input);
    CommentBuffer buffer(ways);
    const int code = IdentifyBytes(input, kExtensions[ways.Take(std::size(kExtensions))], buffer.bytes.get(),
                                   static_cast<int>(buffer.size));
    Require(code >= 0 && code <= FT_COMMAND);
}

void RunCommand(ByteView input) {
    Ways ways(input);
    CommentBuffer buffer(ways);
    const std::string named = TakeCommandFile(input, &buffer.comment);
    const std::string path = ResolveBeside("C:\\drawings\\\x83\x5c\\plot.cmd", named, 'D');
    Require(named.size() < kMaxPath && path.size() < kMaxPath);
    FindExtension(path.c_str());
    FindLastBackslash(path.c_str());
}

void RunComment(ByteView input) {
    Decode<DecodeTextComment>(input);
    Decode<DecodeQjComment>(input);
    Decode<DecodeQfComment>(input);
}

// ---- Bitmaps and records

void RunBitmap(ByteView input) {
    Dib dib = {};
    if (!ReadDib(input, &dib)) return;
    const std::vector<std::uint8_t> pixels(dib.pixels.data, dib.pixels.data + dib.header.imageSize);
    if (!HasRuns(dib)) return;
    const DibRuns runs = TakeRuns(&dib);
    constexpr std::uint32_t kLargest = 1 << 12;
    if (dib.header.imageSize > kLargest) return;
    const std::unique_ptr<std::uint8_t[]> rows(new std::uint8_t[dib.header.imageSize]());
    WriteRuns(runs, dib.header, rows.get());
}

// The texts of the first records, with what is kept between them and without; sometimes so many records that chains of
// deleted ones are passed over.
void RunRecords(ByteView input) {
    constexpr std::size_t kMany = std::size_t{640} * 64;
    constexpr unsigned kMostTexts = 24;
    if (input.size < 64) return;
    std::vector<std::uint8_t> records(input.data, input.data + input.size);
    if (Ways(input).Take(16) == 0) {
        while (records.size() < kMany) records.insert(records.end(), input.data, input.data + input.size / 64 * 64);
    }
    const ByteView all = {records.data(), records.size()};
    const unsigned count = static_cast<unsigned>(all.size / 64);
    const std::size_t size = input.data[2] % 2 ? 256 : input.data[3];
    const std::unique_ptr<char[]> text(new char[size]), again(new char[size]);
    ChainSkips skips;
    for (unsigned number = 0; number <= std::min(count + 1, kMostTexts); ++number) {
        const std::size_t length = GatherRecordText(number, count, all, text.get(), size, &skips);
        Require(length == 0 || (length < size && text[length] == 0));
        if (number % 8 != 1) continue;
        Require(GatherRecordText(number, count, all, again.get(), size) == length);
        Require(std::memcmp(text.get(), again.get(), size) == 0);
    }
}

// Extents, then elements: a byte of kind and pen, two of end marks, seven numbers each.
// A bitmap's bits, which end where the memory does.
struct FuzzedRaster : Raster {
    std::vector<std::uint32_t> memory;
    FuzzedRaster(const ViewTransform& view, int depth) {
        const std::int32_t columns = std::clamp(view.canvasRight, 1, 64), rows = std::clamp(view.canvasBottom, 1, 24);
        const auto pitchWords = static_cast<std::size_t>((columns * depth + 31) / 32);
        memory.resize(pitchWords * static_cast<std::size_t>(rows));
        if (!OpenRaster(this, memory.data(), columns, rows, depth)) std::abort();
        text = [](StrokeTarget&, const TextStroke&) {};
    }
};

void RunStrokes(ByteView input) {
    Ways ways(input);
    FuzzedCanvas canvas(ways);
    std::size_t at = 0;
    const auto take = [&](auto& value) {
        const bool there = ReadAt(input, at, &value);
        at += sizeof(value);
        return there;
    };
    WorldRect extents = {};
    if (!take(extents)) return;
    canvas.fitsLeft = 1;
    if (!canvas.fit(canvas, extents, DrawingSink::kWipe)) return;
    FuzzedRaster raster(canvas.view, input.size % 2 ? 1 : 32);
    PreviewPrimitive element;
    std::uint8_t kind = 0;
    std::uint16_t marks = 0;
    double n[7] = {};
    while (take(kind) && take(marks) && take(n)) {
        switch (kind & 7) {
            case kPoint: element.SetPoint(n[0], n[1]); break;
            case kLine: element.SetLine(n[0], n[1], n[2], n[3]); break;
            case kArc: element.SetArc(n[0], n[1], n[2], n[3], n[4]); break;
            case kFrame: element.SetFrame(n[0], n[1], n[2], n[3], n[4], n[5], n[6]); break;
            case kText: element.SetText(n[0], n[1], n[2], n[3], n[4], n[5], TextOf(input).c_str()); break;
            default: element.kind = kind; break;
        }
        if (marks & 0x8000) {
            element.SetLineMarks(EndMarkWord(marks & 3, marks >> 2 & 3));
            element.SetArcMarks(EndMarkWord(marks >> 4 & 3, marks >> 6 & 3));
        }
        PreviewPrimitive same = element;
        DrawElement(raster, canvas.view, same, kind >> 4);
        DrawElement(canvas, canvas.view, element, kind >> 4);
    }
}

}  // namespace

const FuzzTarget kFuzzTargets[] = {
    // clang-format off
    {"expression", RunExpression, 1024}, {"value", RunValue, 256}, {"number", RunNumber, 1024}, {"lines", RunLines, 256},
    {"identify", RunIdentify, 1100}, {"native", Decode<DecodeNative>, 16384}, {"backup", Decode<DecodeBackup>, 2048},
    {"text", Decode<DecodeTextDrawing>, 2048}, {"dxf", Decode<DecodeDxf>, 2048},
    {"fulldxf", Decode<DecodeFullDxf>, 2048}, {"command", RunCommand, 1024},
    {"comment", RunComment, 1024}, {"bitmap", RunBitmap, 2048}, {"records", RunRecords, 2048}, {"strokes", RunStrokes, 1024},
    // clang-format on
};
const std::size_t kFuzzTargetCount = std::size(kFuzzTargets);
