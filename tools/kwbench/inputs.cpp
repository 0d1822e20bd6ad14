#include "inputs.h"

#include <windows.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "preview/formats/element_record.h"

static constexpr std::uint64_t kFilesSeed = 0x6B7766696C6573;

// An A0 sheet in millimetres.
static constexpr double kSheetWidth = 1189, kSheetHeight = 841;

// ---- Numbers

std::uint32_t Random::Next() {  // splitmix64, its upper half
    state += 0x9E3779B97F4A7C15;
    std::uint64_t z = state;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
    return static_cast<std::uint32_t>((z ^ (z >> 31)) >> 32);
}

std::uint32_t Random::Below(std::uint32_t bound) {
    return static_cast<std::uint32_t>((static_cast<std::uint64_t>(Next()) * bound) >> 32);
}

double Random::Between(double low, double high) { return low + (high - low) * (Next() / 4294967296.0); }

template <typename T, std::size_t N>
static T Pick(Random* random, const T (&choices)[N]) {
    return choices[random->Below(N)];
}

// As drawing programs write a number: no zeros at the end, but always a digit behind the point.
static std::string TextOf(double number, int digits = 6) {
    char text[64];
    int places = digits;
    for (double whole = std::max(number, -number); whole >= 1 && digits > 6; whole /= 10) --places;
    char* end = std::to_chars(text, text + sizeof(text), number, std::chars_format::fixed, places).ptr;
    while (end[-1] == '0' && end[-2] != '.') --end;
    return {text, end};
}

// ---- The entities of a drawing

static constexpr const char* kLayers[] = {"0", "WALLS", "DIMENSIONS", "AXES", "HATCH-2", "TITLE"};
static constexpr const char* kTexts[] = {"M8x1.25", "R12.5", "%%c25 H7", "SECTION A-A", "SCALE 1:50", "2000", "45%%d"};
// Most entities take their line type from the layer and name none.
static constexpr struct {
    const char* name;
    int pen;
} kLineTypes[] = {{"CONTINUOUS", 1}, {"BYLAYER", 0}, {"DASHED", 2}, {"CENTER", 3},
                  {"HIDDEN", 6},     {"PHANTOM", 4}, {"DOT", 5}};

// A number as its text has it: what was typed has few digits, what was computed all that a double holds.
static double Written(double number, int digits) {
    const std::string text = TextOf(number, digits);
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}
static int PickDigits(Random* random) {
    static constexpr int kDigits[] = {1, 1, 4, 6, 16, 16, 16, 17};
    return Pick(random, kDigits);
}

static Entity NextLine(EntityStream* stream) {
    Random* random = &stream->random;
    if (stream->contourLeft == 0) {
        stream->contourLeft = 1 + random->Below(12);
        stream->penX = random->Between(0, kSheetWidth);
        stream->penY = random->Between(0, kSheetHeight);
    }
    --stream->contourLeft;
    // A step of a contour: mostly short against the sheet, a few long ones. It may leave the sheet by a little.
    const auto step = [&](double from, double limit) {
        const double reach = 0.5 * (1 << random->Below(8));
        return std::clamp(from + random->Between(-reach, reach), -10.0, limit + 10);
    };
    const double fromX = stream->penX, fromY = stream->penY;
    const std::uint32_t direction = random->Below(4);  // along an axis, or aslant
    if (direction != 0) stream->penX = step(fromX, kSheetWidth);
    if (direction != 1) stream->penY = step(fromY, kSheetHeight);
    Entity line;
    line.digits = PickDigits(random);
    line.x1 = fromX, line.y1 = fromY;
    line.x2 = stream->penX, line.y2 = stream->penY;
    return line;
}

static Entity NextText(EntityStream* stream) {
    static constexpr double kHeights[] = {5, 7, 10, 14, 20}, kAngles[] = {0, 0, 0, 90, 90, 45, 330};
    Random* random = &stream->random;
    Entity* text = &stream->lastText;
    text->kind = EntityKind::kText;
    if (stream->textsLeft == 0) {  // texts of one size stand together: a table, a chain of dimensions
        stream->textsLeft = 1 + random->Below(8);
        text->size = Pick(random, kHeights);
        text->widthFactor = random->Below(4) == 0 ? random->Below(2) ? 0.8 : 0.7 : 1;
        text->startDegrees = Pick(random, kAngles);
        text->horizontal = random->Below(3) == 0 ? 1 + static_cast<int>(random->Below(2)) : 0;
        text->vertical = text->horizontal ? static_cast<int>(random->Below(4)) : 0;
    }
    --stream->textsLeft;
    text->x1 = random->Between(0, kSheetWidth);
    text->y1 = random->Between(0, kSheetHeight);
    text->text = Pick(random, kTexts);
    return *text;
}

// Texts whose font is another one each time, of four.
static Entity NextAlternatingText(EntityStream* stream) {
    stream->textsLeft = 1;
    Entity* text = &stream->lastText;
    text->size = stream->count % 2 ? 14 : 20;
    text->startDegrees = stream->count / 2 % 2 ? 90 : 0;
    ++stream->count;
    return NextText(stream);
}

static Entity NextRound(Random* random, EntityKind kind, double largest) {
    Entity round;
    round.kind = kind;
    round.digits = PickDigits(random);
    round.x1 = random->Between(0, kSheetWidth);
    round.y1 = random->Between(0, kSheetHeight);
    round.size = random->Between(largest / 40, largest);
    round.startDegrees = random->Between(0, 359);
    round.endDegrees = random->Between(0, 359);
    return round;
}

Entity EntityStream::Next() {
    if (mix == Mix::kCircles) return NextRound(&random, EntityKind::kCircle, 800);  // 5 to 200 pixels in a pane
    if (mix == Mix::kTexts) return NextAlternatingText(this);
    Entity entity;
    const std::uint32_t share = random.Below(100);
    if (share < 82) entity = NextLine(this);
    else if (share < 90) entity = NextRound(&random, EntityKind::kArc, 1 << random.Below(6));
    else if (share < 94) entity = NextRound(&random, EntityKind::kCircle, 1 << random.Below(6));
    else if (share < 97) entity = NextText(this);
    else entity = NextRound(&random, EntityKind::kPoint, 1);
    entity.lineType = random.Below(8) == 0 ? kLineTypes[random.Below(std::size(kLineTypes))].name : nullptr;
    return entity;
}

static int PenOf(const Entity& entity) {
    for (const auto& row : kLineTypes) {
        if (entity.lineType == row.name) return row.pen;
    }
    return 0;
}

// ---- Writing

Writer::Writer(const std::string& path) : file(std::fopen(path.c_str(), "wb"), std::fclose) {}

void Writer::Bytes(std::string_view bytes) {
    if (file && std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size()) size += bytes.size();
    else file.reset();
}

void Writer::Pair(int code, std::string_view value) {
    char text[16];
    std::snprintf(text, sizeof(text), "%3d\r\n", code);
    Bytes((text + std::string(value)).append("\r\n"));
}

void Writer::Pair(int code, double value, int digits) { Pair(code, std::string_view(TextOf(value, digits))); }

void Writer::Point(int code, double x, double y, int digits) {
    Pair(code, x, digits);
    Pair(code + 10, y, digits);
    Pair(code + 20, "0.0");
}

void Writer::Pairs(std::initializer_list<std::pair<int, const char*>> pairs) {
    for (const auto& [code, value] : pairs) Pair(code, value);
}

bool Writer::End() { return file && std::fclose(file.release()) == 0; }

bool WriteWholeFile(const std::string& path, std::string_view contents) {
    Writer writer(path);
    writer.Bytes(contents);
    return writer.End();
}

static void WriteDxfHead(Writer* out, std::size_t) {
    out->Pairs({{0, "SECTION"}, {2, "HEADER"}, {9, "$EXTMIN"}});
    out->Point(10, 0, 0, 1);
    out->Pair(9, "$EXTMAX");
    out->Point(10, kSheetWidth, kSheetHeight, 1);
    out->Pairs({{0, "ENDSEC"}, {0, "SECTION"}, {2, "ENTITIES"}});
}

static void WriteDxfEntity(Writer* out, const Entity& entity, std::size_t number) {
    static constexpr const char* kNames[] = {"POINT", "LINE", "ARC", "CIRCLE", "TEXT"};
    char handle[16];
    std::snprintf(handle, sizeof(handle), "%X", static_cast<unsigned>(number + 0x100));
    out->Pair(0, kNames[static_cast<int>(entity.kind)]);
    out->Pair(5, handle);
    out->Pair(8, kLayers[number / 7 % std::size(kLayers)]);
    if (entity.lineType) out->Pair(6, entity.lineType);
    if (number % 3 == 0) out->Pair(62, "     " + std::to_string(number / 3 % 7 + 1));
    out->Point(10, entity.x1, entity.y1, entity.digits);
    const auto pair = [&](int code, double value) { out->Pair(code, value, entity.digits); };
    switch (entity.kind) {
        case EntityKind::kPoint: break;
        case EntityKind::kLine: out->Point(11, entity.x2, entity.y2, entity.digits); break;
        case EntityKind::kCircle: pair(40, entity.size); break;
        case EntityKind::kArc:
            pair(40, entity.size);
            pair(50, entity.startDegrees);
            pair(51, entity.endDegrees);
            break;
        case EntityKind::kText:
            pair(40, entity.size);
            out->Pair(1, entity.text);
            if (entity.startDegrees != 0) pair(50, entity.startDegrees);
            if (entity.widthFactor != 1) pair(41, entity.widthFactor);
            if (entity.horizontal) {
                out->Pair(72, "     " + std::to_string(entity.horizontal));
                out->Point(11, entity.x1, entity.y1, entity.digits);
                out->Pair(73, "     " + std::to_string(entity.vertical));
            }
            break;
    }
}

static void WriteDxfEnd(Writer* out) { out->Pairs({{0, "ENDSEC"}, {0, "EOF"}}); }

// Native and backup drawings

template <typename T>
static void Put(std::string* out, std::size_t offset, const T& value) {
    std::memcpy(out->data() + offset, &value, sizeof(value));
}
static void PutText(std::string* out, std::size_t offset, std::string_view text) {
    out->replace(offset, text.size(), text);
}

static void WriteNativeHead(Writer* out, std::size_t entityCount) {
    std::string head(1024, '\0');
    PutText(&head, 4, "CAD ORVIL QA V4.0    \x14");
    Put(&head, 32, kSheetWidth);
    Put(&head, 40, kSheetHeight);
    Put(&head, 242, static_cast<std::uint16_t>(entityCount));
    for (std::size_t layer = 0; layer < 16; ++layer) Put(&head, 250 + 2 * layer, std::uint16_t{1});
    out->Bytes(head);
}

static void WriteBackupHead(Writer* out, std::size_t entityCount) {
    std::string head(446, '\0');
    PutText(&head, 0, "VEXTRON lumos Backup V2");
    Put(&head, 426, kSheetWidth);
    Put(&head, 434, kSheetHeight);
    Put(&head, 442, static_cast<std::uint32_t>(entityCount));
    out->Bytes(head);
}

static double FullWidthOf(const Entity& text) { return 2 * text.size * text.widthFactor; }

// A record without what only one of the two formats has.
static std::string RecordOf(const Entity& entity, std::size_t number) {
    static constexpr ElementKind kKinds[] = {kPointElement, kLineElement, kArcElement, kArcElement, kTextElement};
    std::string record(kRecordSize, '\0');
    RecordHead head = {};
    head.type = kKinds[static_cast<int>(entity.kind)];
    head.layer = static_cast<std::uint8_t>(number / 7 % 16);
    Put(&record, 0, head);
    const auto attributes = static_cast<std::uint16_t>(PenOf(entity) << 4);
    const double x = Written(entity.x1, entity.digits), y = Written(entity.y1, entity.digits);
    const bool isCircle = entity.kind == EntityKind::kCircle;
    switch (entity.kind) {
        case EntityKind::kPoint: Put(&record, kFieldsAt, PointFields{x, y}); break;
        case EntityKind::kLine:
            Put(&record, kFieldsAt,
                LineFields{x, y, Written(entity.x2, entity.digits), Written(entity.y2, entity.digits), attributes});
            break;
        case EntityKind::kArc:
        case EntityKind::kCircle:
            Put(&record, kFieldsAt,
                ArcFields{x, y, entity.size, isCircle ? 0 : entity.startDegrees, isCircle ? 360 : entity.endDegrees,
                          attributes});
            break;
        case EntityKind::kText: {
            TextFields fields = {};
            fields.x = static_cast<float>(x), fields.y = static_cast<float>(y);
            fields.height = static_cast<float>(entity.size);
            fields.width = static_cast<float>(FullWidthOf(entity));
            fields.angleDegrees = static_cast<float>(entity.startDegrees);
            fields.placement =
                static_cast<std::uint16_t>(std::max(entity.vertical - 1, 0) << 5 | entity.horizontal << 7);
            Put(&record, kFieldsAt, fields);
            break;
        }
    }
    return record;
}

static void WriteNativeEntity(Writer* out, const Entity& entity, std::size_t number) {
    std::string record = RecordOf(entity, number);
    if (entity.kind == EntityKind::kText) {  // all of them are short enough to need no continuation
        PutText(&record, 48, entity.text);
        Put(&record, 62, std::uint16_t{65535});
    }
    out->Bytes(record);
}

static void WriteBackupEntity(Writer* out, const Entity& entity, std::size_t number) {
    std::string record = RecordOf(entity, number);
    if (entity.kind == EntityKind::kText) Put(&record, 46, static_cast<std::uint16_t>(std::strlen(entity.text)));
    out->Bytes(record);
}

// Text drawings

static void WriteTextHead(Writer* out, std::size_t) {
    out->Bytes("; generated\r\nAR 0.0,0.0," + TextOf(kSheetWidth) + "," + TextOf(kSheetHeight) + "\r\n");
}

static void WriteTextEntity(Writer* out, const Entity& entity, std::size_t number) {
    static constexpr const char* kKeys[] = {"GP ", "GL ", "GA ", "GA ", "GT "};
    std::string line = kKeys[static_cast<int>(entity.kind)];
    const auto add = [&](std::initializer_list<double> values) {
        for (const double value : values) line += TextOf(value, entity.digits) + ",";
    };
    if (entity.kind != EntityKind::kText) line += std::to_string(number / 7 % 16) + ",";
    add({entity.x1, entity.y1});
    switch (entity.kind) {
        case EntityKind::kPoint: break;
        case EntityKind::kLine: add({entity.x2, entity.y2}); break;
        case EntityKind::kCircle: add({entity.size, 0, 360}); break;
        case EntityKind::kArc: add({entity.size, entity.startDegrees, entity.endDegrees}); break;
        case EntityKind::kText: add({FullWidthOf(entity), entity.size, 0, entity.startDegrees, 0}); break;
    }
    line += std::to_string(PenOf(entity));
    if (entity.kind == EntityKind::kText) line += std::string(",'") + entity.text + "'";
    out->Bytes(line + "\r\n");
}

static void WriteNoEnd(Writer*) {}

static constexpr struct {
    const PreviewFormat& format;
    const char* extension;
    void (*head)(Writer* out, std::size_t entityCount);
    void (*entity)(Writer* out, const Entity& entity, std::size_t number);
    void (*end)(Writer* out);
} kFormats[kDrawingFormatCount] = {
    // in the order of DrawingFormat
    {kDxfFormat, ".dxf", WriteDxfHead, WriteDxfEntity, WriteDxfEnd},
    {kNativeFormat, ".drw", WriteNativeHead, WriteNativeEntity, WriteNoEnd},
    {kBackupFormat, ".bak", WriteBackupHead, WriteBackupEntity, WriteNoEnd},
    {kTextFormat, ".exf", WriteTextHead, WriteTextEntity, WriteNoEnd},
};

const PreviewFormat& FormatOf(DrawingFormat format) { return kFormats[static_cast<int>(format)].format; }
const char* ExtensionOf(DrawingFormat format) { return kFormats[static_cast<int>(format)].extension; }

bool WriteDrawing(std::size_t size, std::size_t entityCount, Drawing* drawing) {
    const auto& format = kFormats[static_cast<int>(drawing->format)];
    Writer writer(drawing->path);
    format.head(&writer, entityCount);
    EntityStream entities = {{drawing->seed}, drawing->mix};
    std::size_t count = 0;
    for (; writer.file && count < entityCount && writer.size < size; ++count) {
        format.entity(&writer, entities.Next(), count);
    }
    format.end(&writer);
    drawing->size = writer.size;
    drawing->entityCount = count;
    return writer.End();
}

// ---- Small files

enum class Filling { kProse, kProgram, kJapanese, kBytes, kDxf };

static constexpr struct {
    const char* extension;
    std::size_t offset;  // where the signature stands
    const char* signature;
    Filling filling;
} kSmallFiles[] = {
    {".TXT", 0, "", Filling::kProse},
    {".LST", 0, "", Filling::kProse},
    {".DOC", 0, "", Filling::kJapanese},
    {".NC", 0, "%\r\nO0100\r\n", Filling::kProgram},
    {".PTP", 0, "", Filling::kProgram},
    {".DXF", 0, "", Filling::kDxf},
    {".EXE", 0, "MZ", Filling::kBytes},
    {".DLL", 0, "MZ", Filling::kBytes},
    {".BMP", 0, "BM", Filling::kBytes},
    {".DAT", 0, "", Filling::kBytes},
    {".DRW", 4, "CAD ORVIL QA V4.0    \x14", Filling::kBytes},
    {".DRW", 4, "LumosBase            \x1A", Filling::kBytes},
    {".BAK", 0, "VEXTRON lumos Backup V2", Filling::kBytes},
};

static void AppendFilling(Random* random, Filling filling, std::string* out) {
    static constexpr const char* kWords[] = {"the ", "drawing ", "of ", "a ", "bracket, ", "two ", "holes.\r\n"};
    static constexpr const char* kBlocks[] = {"G01 X", "G00 X", "X", "G02 X"};
    switch (filling) {
        case Filling::kProse: *out += Pick(random, kWords); break;
        case Filling::kJapanese: *out += random->Below(12) ? "\x90\x7D\x96\xCA" : "\r\n"; break;
        case Filling::kBytes: *out += static_cast<char>(random->Below(256)); break;
        case Filling::kProgram:
            *out += Pick(random, kBlocks) + std::to_string(random->Below(500)) + ".5 Y" +
                    std::to_string(random->Below(500)) + ".25\r\n";
            break;
        case Filling::kDxf: *out += " 10\r\n" + std::to_string(random->Below(1000)) + ".125\r\n"; break;
    }
}

std::vector<std::string> WriteSmallFiles(const std::string& folder, std::size_t count, std::size_t filesAFolder) {
    std::vector<std::string> paths;
    Random random{kFilesSeed};
    std::string subfolder;
    for (std::size_t i = 0; i < count; ++i) {
        if (i % filesAFolder == 0) {
            subfolder = folder + "files" + std::to_string(i / filesAFolder) + "\\";
            if (!CreateDirectoryA(subfolder.c_str(), nullptr)) return paths;
        }
        const auto& kind = kSmallFiles[random.Below(std::size(kSmallFiles))];
        const std::size_t size = 1024 + random.Below(3 * 1024);
        std::string contents = std::string(kind.offset, '\0') + kind.signature;
        while (contents.size() < size) AppendFilling(&random, kind.filling, &contents);
        const std::string path = subfolder + "part" + std::to_string(i) + kind.extension;
        if (!WriteWholeFile(path, contents)) return paths;
        paths.push_back(path);
    }
    return paths;
}
