#include "inputs.h"

#include <windows.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string_view>

#include "kit/handles.h"
#include "preview/formats/element_record.h"

static constexpr std::uint64_t kFilesSeed = 0x6B7766696C6573;

static constexpr std::int64_t kUnit = 1000000000000000;  // one drawing unit: lengths are counted in 1e-15 of it
static constexpr std::int64_t kPowers[kDecimalPlaces + 1] = {
    1,         10,         100,         1000,         10000,         100000,         1000000,         10000000,
    100000000, 1000000000, 10000000000, 100000000000, 1000000000000, 10000000000000, 100000000000000, 1000000000000000};

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

std::int64_t Random::Between(std::int64_t low, std::int64_t high) {
    const std::uint64_t wide = (static_cast<std::uint64_t>(Next()) << 32) | Next();
    return low + static_cast<std::int64_t>(wide % static_cast<std::uint64_t>(high - low + 1));
}

// The text as drawing programs write it: no zeros at the end, but always a digit behind the point.
static std::string TextOf(Decimal number) {
    const auto places = static_cast<std::size_t>(number.places);
    std::string text = std::to_string(number.units < 0 ? -number.units : number.units);
    if (text.size() <= places) text.insert(0, places + 1 - text.size(), '0');
    text.insert(text.size() - places, 1, '.');
    while (text.back() == '0' && text[text.size() - 2] != '.') text.pop_back();
    return number.units < 0 ? "-" + text : text;
}

double Decimal::Value() const {
    const std::string text = TextOf(*this);
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

// How a program writes a length: with so many digits behind the point, but no more than so many from the first that
// counts.
struct Precision {
    int places, digits;
};
constexpr Precision kShort = {1, 20};

static Decimal Cut(std::int64_t length, Precision precision) {
    int places = precision.digits;
    for (std::int64_t whole = length / kUnit; whole != 0; whole /= 10) --places;
    places = std::min({places, precision.places, kDecimalPlaces});
    return {length / kPowers[kDecimalPlaces - places], places};
}

// ---- The entities of a drawing

// An A0 sheet in millimetres.
static constexpr std::int64_t kSheetWidth = 1189 * kUnit;
static constexpr std::int64_t kSheetHeight = 841 * kUnit;

static constexpr const char* kLayers[] = {"0", "WALLS", "DIMENSIONS", "AXES", "HATCH-2", "TITLE"};
static constexpr const char* kTexts[] = {"M8x1.25", "R12.5", "%%c25 H7", "SECTION A-A", "SCALE 1:50", "2000", "45%%d"};
static constexpr int kTextHeights[] = {5, 7, 10, 14, 20};
static constexpr int kTextAngles[] = {0, 0, 0, 90, 90, 45, 330};
// Most entities take their line type from the layer and name none.
static constexpr const char* kLineTypes[] = {"CONTINUOUS", "BYLAYER", "DASHED", "CENTER", "HIDDEN", "PHANTOM", "DOT"};

template <typename T, std::size_t N>
static T Pick(Random* random, const T (&choices)[N]) {
    return choices[random->Below(N)];
}

EntityStream::EntityStream(std::uint64_t seed) : random{seed} {}

// What was typed has few digits, what was computed all that a double holds.
static Precision PickPrecision(Random* random) {
    static constexpr Precision kPrecisions[] = {kShort,   kShort,   {4, 20},  {6, 20},
                                                {15, 16}, {15, 16}, {15, 16}, {15, 17}};
    return Pick(random, kPrecisions);
}

// A step of a contour: mostly short against the sheet, a few long ones.
static std::int64_t PickStep(Random* random) {
    const std::int64_t reach = (kUnit / 2) << random->Below(8);  // 0.5 to 64 drawing units
    return random->Between(-reach, reach);
}

// A contour may leave the sheet by a little.
static std::int64_t Bounded(std::int64_t value, std::int64_t limit) {
    return std::clamp(value, -10 * kUnit, limit + 10 * kUnit);
}

static Entity NextLine(EntityStream* stream) {
    Random* random = &stream->random;
    if (stream->contourLeft == 0) {
        stream->contourLeft = 1 + random->Below(12);
        stream->penX = random->Between(0, kSheetWidth);
        stream->penY = random->Between(0, kSheetHeight);
    }
    --stream->contourLeft;
    const std::int64_t fromX = stream->penX, fromY = stream->penY;
    const std::uint32_t direction = random->Below(4);  // along an axis, or aslant
    if (direction != 0) stream->penX = Bounded(fromX + PickStep(random), kSheetWidth);
    if (direction != 1) stream->penY = Bounded(fromY + PickStep(random), kSheetHeight);
    const Precision precision = PickPrecision(random);
    Entity line;
    line.x1 = Cut(fromX, precision);
    line.y1 = Cut(fromY, precision);
    line.x2 = Cut(stream->penX, precision);
    line.y2 = Cut(stream->penY, precision);
    return line;
}

static Entity NextText(EntityStream* stream) {
    Random* random = &stream->random;
    Entity* text = &stream->lastText;
    if (stream->textsLeft == 0) {  // texts of one size stand together: a table, a chain of dimensions
        stream->textsLeft = 1 + random->Below(8);
        text->kind = EntityKind::kText;
        text->size = Cut(Pick(random, kTextHeights) * kUnit, kShort);
        text->hasWidthFactor = random->Below(4) == 0;
        text->widthFactor = {random->Below(2) ? 8 : 7, 1};
        text->startDegrees = Cut(Pick(random, kTextAngles) * kUnit, kShort);
        text->hasAngle = text->startDegrees.units != 0;
        text->horizontal = random->Below(3) == 0 ? 1 + static_cast<int>(random->Below(2)) : 0;
        text->vertical = text->horizontal ? static_cast<int>(random->Below(4)) : 0;
    }
    --stream->textsLeft;
    text->x1 = Cut(random->Between(0, kSheetWidth), {6, 20});
    text->y1 = Cut(random->Between(0, kSheetHeight), {6, 20});
    text->text = Pick(random, kTexts);
    return *text;
}

static Entity NextRound(Random* random, EntityKind kind) {
    const Precision precision = PickPrecision(random);
    Entity round;
    round.kind = kind;
    round.x1 = Cut(random->Between(0, kSheetWidth), precision);
    round.y1 = Cut(random->Between(0, kSheetHeight), precision);
    round.size = Cut(random->Between(kUnit / 2, kUnit << random->Below(6)), precision);
    round.startDegrees = Cut(random->Between(0, 359 * kUnit), precision);
    round.endDegrees = Cut(random->Between(0, 359 * kUnit), precision);
    return round;
}

Entity EntityStream::Next() {
    Entity entity;
    const std::uint32_t share = random.Below(100);
    if (share < 82) entity = NextLine(this);
    else if (share < 90) entity = NextRound(&random, EntityKind::kArc);
    else if (share < 94) entity = NextRound(&random, EntityKind::kCircle);
    else if (share < 97) entity = NextText(this);
    else entity = NextRound(&random, EntityKind::kPoint);
    entity.lineType = random.Below(8) == 0 ? Pick(&random, kLineTypes) : nullptr;
    return entity;
}

// ---- Writing

// Collects lines and hands them to the file in large pieces.
struct Writer {
    UniqueHandle file;
    std::string pending;
    std::size_t written = 0;
    bool good = true;

    explicit Writer(const std::string& path)
        : file(CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)) {
        good = IsOpen(file);
    }
    std::size_t Size() const { return written + pending.size(); }
    void Flush() {
        DWORD count = 0;
        const DWORD wanted = static_cast<DWORD>(pending.size());
        good = good && WriteFile(file.get(), pending.data(), wanted, &count, nullptr) && count == wanted;
        written += wanted;
        pending.clear();
    }
    void Bytes(std::string_view bytes) {
        pending += bytes;
        if (pending.size() >= 1 << 20) Flush();
    }
    void Line(std::string_view text) {
        pending += text;
        Bytes("\r\n");
    }
    void Pair(int code, std::string_view value) {
        char text[16];
        std::snprintf(text, sizeof(text), "%3d", code);
        Line(text);
        Line(value);
    }
    void Pair(int code, int value) {
        char text[16];
        std::snprintf(text, sizeof(text), "%6d", value);
        Pair(code, text);
    }
    void Pair(int code, Decimal value) { Pair(code, TextOf(value)); }
    void Point(int code, Decimal x, Decimal y) {
        Pair(code, x);
        Pair(code + 10, y);
        Pair(code + 20, Decimal{});
    }
};

// DXF

static void WriteDxfEntity(Writer* out, const Entity& entity, std::size_t number) {
    static constexpr const char* kNames[] = {"POINT", "LINE", "ARC", "CIRCLE", "TEXT"};
    char handle[16];
    std::snprintf(handle, sizeof(handle), "%X", static_cast<unsigned>(number + 0x100));
    out->Pair(0, kNames[static_cast<int>(entity.kind)]);
    out->Pair(5, handle);
    out->Pair(8, kLayers[number / 7 % std::size(kLayers)]);
    if (entity.lineType) out->Pair(6, entity.lineType);
    if (number % 3 == 0) out->Pair(62, static_cast<int>(number / 3 % 7) + 1);
    out->Point(10, entity.x1, entity.y1);
    switch (entity.kind) {
        case EntityKind::kPoint: break;
        case EntityKind::kLine: out->Point(11, entity.x2, entity.y2); break;
        case EntityKind::kCircle: out->Pair(40, entity.size); break;
        case EntityKind::kArc:
            out->Pair(40, entity.size);
            out->Pair(50, entity.startDegrees);
            out->Pair(51, entity.endDegrees);
            break;
        case EntityKind::kText:
            out->Pair(40, entity.size);
            out->Pair(1, entity.text);
            if (entity.hasAngle) out->Pair(50, entity.startDegrees);
            if (entity.hasWidthFactor) out->Pair(41, entity.widthFactor);
            if (entity.horizontal) {
                out->Pair(72, entity.horizontal);
                out->Point(11, entity.x1, entity.y1);
                out->Pair(73, entity.vertical);
            }
            break;
    }
}

static void WriteDxfHead(Writer* out, std::size_t) {
    out->Pair(0, "SECTION");
    out->Pair(2, "HEADER");
    out->Pair(9, "$ACADVER");
    out->Pair(1, "AC1009");
    out->Pair(9, "$EXTMIN");
    out->Point(10, Cut(0, kShort), Cut(0, kShort));
    out->Pair(9, "$EXTMAX");
    out->Point(10, Cut(kSheetWidth, kShort), Cut(kSheetHeight, kShort));
    out->Pair(0, "ENDSEC");
    out->Pair(0, "SECTION");
    out->Pair(2, "TABLES");
    out->Pair(0, "TABLE");
    out->Pair(2, "LAYER");
    out->Pair(70, static_cast<int>(std::size(kLayers)));
    for (const char* layer : kLayers) {
        out->Pair(0, "LAYER");
        out->Pair(2, layer);
        out->Pair(70, 0);
        out->Pair(62, 7);
        out->Pair(6, kLineTypes[0]);
    }
    out->Pair(0, "ENDTAB");
    out->Pair(0, "ENDSEC");
    out->Pair(0, "SECTION");
    out->Pair(2, "ENTITIES");
}

static void WriteDxfEnd(Writer* out) {
    out->Pair(0, "ENDSEC");
    out->Pair(0, "EOF");
}

// Native and backup drawings

static WorldRect SheetOf() { return {0, 0, Cut(kSheetWidth, kShort).Value(), Cut(kSheetHeight, kShort).Value()}; }

template <typename T>
static void Put(std::string* out, std::size_t offset, const T& value) {
    std::memcpy(out->data() + offset, &value, sizeof(value));
}
static void PutText(std::string* out, std::size_t offset, std::string_view text) {
    out->replace(offset, text.size(), text);
}

static void WriteNativeHead(Writer* out, std::size_t entityCount) {
    std::string head(1024, '\0');
    const WorldRect sheet = SheetOf();
    PutText(&head, 4, "CAD ORVIL QA V4.0    \x14");
    Put(&head, 32, sheet.maxX);
    Put(&head, 40, sheet.maxY);
    Put(&head, 48, sheet.minX);
    Put(&head, 56, sheet.minY);
    PutText(&head, 106, "PART LIST");
    Put(&head, 242, static_cast<std::uint16_t>(entityCount));
    for (std::size_t layer = 0; layer < 16; ++layer) Put(&head, 250 + 2 * layer, std::uint16_t{1});
    out->Bytes(head);
}

static void WriteBackupHead(Writer* out, std::size_t entityCount) {
    std::string head(446, '\0');
    PutText(&head, 0, "VEXTRON lumos Backup V2");
    PutText(&head, 284, "PART LIST");
    Put(&head, 410, SheetOf());
    Put(&head, 442, static_cast<std::uint32_t>(entityCount));
    out->Bytes(head);
}

int LineTypePen(const char* lineType) {
    static constexpr struct {
        const char* name;
        int pen;
    } kPens[] = {{"CONTINUOUS", 1}, {"DASHED", 2}, {"CENTER", 3}, {"PHANTOM", 4}, {"DOT", 5}, {"HIDDEN", 6}};
    if (!lineType) return 0;
    for (const auto& row : kPens) {
        if (std::strcmp(row.name, lineType) == 0) return row.pen;
    }
    return 0;
}

Decimal FullWidthOf(const Entity& text) {
    const std::int64_t factor = text.hasWidthFactor ? text.widthFactor.units : 10;
    return {2 * text.size.units * factor, 2};
}

int VerticalOf(const Entity& text) { return std::max(text.vertical - 1, 0); }

static float Single(Decimal number) { return static_cast<float>(number.Value()); }

template <typename Fields>
static void PutElement(std::string* record, ElementKind kind, const Fields& fields, std::size_t number) {
    RecordHead head = {};
    head.type = static_cast<std::uint16_t>(kind);
    head.layer = static_cast<std::uint8_t>(number / 7 % 16);
    Put(record, 0, head);
    Put(record, kFieldsAt, fields);
}

static TextFields FieldsOfText(const Entity& text) {
    TextFields fields = {};
    fields.x = Single(text.x1);
    fields.y = Single(text.y1);
    fields.height = Single(text.size);
    fields.width = Single(FullWidthOf(text));
    fields.angleDegrees = text.hasAngle ? Single(text.startDegrees) : 0;
    fields.placement = static_cast<std::uint16_t>(VerticalOf(text) << 5 | text.horizontal << 7);
    return fields;
}

static void PutEntity(std::string* record, const Entity& entity, std::size_t number) {
    const double x = entity.x1.Value(), y = entity.y1.Value();
    const auto attributes = static_cast<std::uint16_t>(LineTypePen(entity.lineType) << 4);
    switch (entity.kind) {
        case EntityKind::kPoint: PutElement(record, kPointElement, PointFields{x, y}, number); break;
        case EntityKind::kLine:
            PutElement(record, kLineElement, LineFields{x, y, entity.x2.Value(), entity.y2.Value(), attributes},
                       number);
            break;
        case EntityKind::kCircle:
            PutElement(record, kArcElement, ArcFields{x, y, entity.size.Value(), 0, 360, attributes}, number);
            break;
        case EntityKind::kArc:
            PutElement(record, kArcElement,
                       ArcFields{x, y, entity.size.Value(), entity.startDegrees.Value(), entity.endDegrees.Value(),
                                 attributes},
                       number);
            break;
        case EntityKind::kText: PutElement(record, kTextElement, FieldsOfText(entity), number); break;
    }
}

static void WriteNativeEntity(Writer* out, const Entity& entity, std::size_t number) {
    std::string record(kRecordSize, '\0');
    PutEntity(&record, entity, number);
    if (entity.kind == EntityKind::kText) {  // all of them are short enough to need no continuation
        PutText(&record, 48, entity.text);
        Put(&record, 62, std::uint16_t{65535});
    }
    out->Bytes(record);
}

static void WriteBackupEntity(Writer* out, const Entity& entity, std::size_t number) {
    std::string record(kRecordSize, '\0');
    PutEntity(&record, entity, number);
    if (entity.kind == EntityKind::kText) Put(&record, 46, static_cast<std::uint16_t>(std::strlen(entity.text)));
    out->Bytes(record);
}

static void WriteNoEnd(Writer*) {}

// Text drawings

static void WriteTextHead(Writer* out, std::size_t) {
    out->Line("; generated");
    out->Line("FIGRNAME PART LIST");
    out->Line("AR " + TextOf(Cut(0, kShort)) + "," + TextOf(Cut(0, kShort)) + "," + TextOf(Cut(kSheetWidth, kShort)) +
              "," + TextOf(Cut(kSheetHeight, kShort)));
}

static void WriteTextEntity(Writer* out, const Entity& entity, std::size_t number) {
    static constexpr const char* kKeys[] = {"GP ", "GL ", "GA ", "GA ", "GT "};
    std::string line = kKeys[static_cast<int>(entity.kind)];
    if (entity.kind != EntityKind::kText) line += std::to_string(number / 7 % 16) + ",";
    line += TextOf(entity.x1) + "," + TextOf(entity.y1) + ",";
    switch (entity.kind) {
        case EntityKind::kPoint: break;
        case EntityKind::kLine: line += TextOf(entity.x2) + "," + TextOf(entity.y2) + ","; break;
        case EntityKind::kCircle: line += TextOf(entity.size) + ",0.0,360.0,"; break;
        case EntityKind::kArc:
            line += TextOf(entity.size) + "," + TextOf(entity.startDegrees) + "," + TextOf(entity.endDegrees) + ",";
            break;
        case EntityKind::kText:
            line += TextOf(FullWidthOf(entity)) + "," + TextOf(entity.size) + ",0.0," +
                    (entity.hasAngle ? TextOf(entity.startDegrees) : "0.0") + ",0.0,";
            break;
    }
    line += std::to_string(LineTypePen(entity.lineType));
    if (entity.kind == EntityKind::kText) line += std::string(",'") + entity.text + "'";
    out->Line(line);
}

static constexpr struct {
    const char* extension;
    void (*head)(Writer* out, std::size_t entityCount);
    void (*entity)(Writer* out, const Entity& entity, std::size_t number);
    void (*end)(Writer* out);
} kFormats[kDrawingFormatCount] = {
    // in the order of DrawingFormat
    {".dxf", WriteDxfHead, WriteDxfEntity, WriteDxfEnd},
    {".drw", WriteNativeHead, WriteNativeEntity, WriteNoEnd},
    {".bak", WriteBackupHead, WriteBackupEntity, WriteNoEnd},
    {".exf", WriteTextHead, WriteTextEntity, WriteNoEnd},
};

const char* ExtensionOf(DrawingFormat format) { return kFormats[static_cast<int>(format)].extension; }

bool WriteDrawing(std::size_t size, std::size_t entityCount, Drawing* drawing) {
    const auto& format = kFormats[static_cast<int>(drawing->format)];
    Writer writer(drawing->path);
    format.head(&writer, entityCount);
    EntityStream entities(drawing->seed);
    std::size_t count = 0;
    for (; writer.good && count < entityCount && writer.Size() < size; ++count) {
        format.entity(&writer, entities.Next(), count);
    }
    format.end(&writer);
    writer.Flush();
    drawing->size = writer.written;
    drawing->entityCount = count;
    drawing->extents = SheetOf();
    return writer.good;
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

std::vector<std::string> WriteSmallFiles(const std::string& folder, std::size_t count) {
    static constexpr std::size_t kFilesAFolder = 500;
    std::vector<std::string> paths;
    Random random{kFilesSeed};
    std::string subfolder;
    for (std::size_t i = 0; i < count; ++i) {
        if (i % kFilesAFolder == 0) {
            subfolder = folder + "files" + std::to_string(i / kFilesAFolder) + "\\";
            if (!CreateDirectoryA(subfolder.c_str(), nullptr)) return paths;
        }
        const auto& kind = kSmallFiles[random.Below(std::size(kSmallFiles))];
        const std::size_t size = 1024 + random.Below(3 * 1024);
        std::string contents = std::string(kind.offset, '\0') + kind.signature;
        while (contents.size() < size) AppendFilling(&random, kind.filling, &contents);
        const std::string path = subfolder + "part" + std::to_string(i) + kind.extension;
        Writer writer(path);
        writer.pending = contents;
        writer.Flush();
        if (!writer.good) return paths;
        paths.push_back(path);
    }
    return paths;
}

std::vector<std::string> WriteListedFiles(const std::string& folder, std::size_t count) {
    std::vector<std::string> names;
    Random random{kFilesSeed};
    for (std::size_t i = 0; i < count; ++i) {
        const auto& kind = kSmallFiles[random.Below(std::size(kSmallFiles))];
        const std::string name = "part" + std::to_string(i) + kind.extension;
        Writer writer(folder + name);
        writer.pending.assign(random.Below(2000), ' ');
        writer.Flush();
        if (!writer.good) return names;
        names.push_back(name);
    }
    return names;
}
