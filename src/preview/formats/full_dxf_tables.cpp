// One walk over the file finds the records that entities refer to by name. Rows beyond a table's bound are left out.
#include "preview/formats/full_dxf_tables.h"

#include <algorithm>
#include <cmath>
#include <iterator>

static constexpr std::size_t kMostRows = 1 << 18;

// ---- Records

static bool IsEmbeddedObject(const DxfPair& pair) { return pair.code == 101; }

void DxfGroups::Read(DxfReader* reader) {
    form = reader->form;
    begin = reader->at;
    std::fill(std::begin(present), std::end(present), 0);
    behindKept = embedded = kNowhere;
    unsigned count = 0;
    bool open = true;
    for (;;) {
        const std::size_t before = reader->at;
        DxfPair& pair = kept[count];
        if (!reader->Next(&pair)) break;
        if (pair.code == 0) {
            reader->at = before;
            break;
        }
        if (!open) continue;
        if (IsEmbeddedObject(pair)) {
            open = false;
            embedded = reader->at;
            continue;
        }
        const auto code = static_cast<unsigned>(pair.code);
        const std::uint64_t bit = std::uint64_t{1} << (code & 63);
        const bool isNew = code < kCodes && !(present[code >> 6] & bit);
        if (isNew) {
            present[code >> 6] |= bit;
            place[code] = static_cast<std::uint16_t>(count);
        }
        if (count < kKept) {
            ++count;
        } else {
            if (behindKept == kNowhere) behindKept = before;
            if (isNew) ++count;
        }
    }
    keptCount = std::min(count, kKept);
}

int DxfGroups::Integer(int code, int missing) const {
    constexpr long long kMost = 1 << 30;
    if (!Has(code)) return missing;
    return static_cast<int>(std::clamp(DxfInteger(*form, code, Value(code)), -kMost, kMost));
}

bool DxfRecordWalk::Next(DxfPair* pair) {
    if (at < groups->keptCount) {
        *pair = groups->kept[at++];
        return true;
    }
    return groups->behindKept != kNowhere && NextInRecord(&reader, pair);
}

bool NextInRecord(DxfReader* reader, DxfPair* pair) {
    return reader->Next(pair) && pair->code != 0 && !IsEmbeddedObject(*pair);
}

// ---- Names

static std::uint32_t HashOfName(ByteView name) {
    std::uint32_t hash = 2166136261u;
    for (std::size_t i = 0; i < name.size; ++i) hash = (hash ^ (name.data[i] & ~0x20u)) * 16777619u;
    return hash;
}

void DxfNames::Add(const DxfForm& form, ByteView name, std::size_t begin) {
    if (rows.size() >= kMostRows) return;
    name = Trimmed(name);
    rows.push_back({HashOfName(name), static_cast<std::uint32_t>(begin),
                    static_cast<std::uint32_t>(name.data - form.file.data), static_cast<std::uint32_t>(name.size), 0,
                    0});
}

void DxfNames::Sort() {
    std::sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) {
        return a.hash != b.hash ? a.hash < b.hash : a.begin < b.begin;  // of two records the first one counts
    });
}

static ByteView NameOfRow(const DxfForm& form, const DxfNames::Row& row) {
    return {form.file.data + row.name, row.length};
}

const DxfNames::Row* DxfNames::Find(const DxfForm& form, ByteView name) const {
    constexpr int kMostTries = 8;  // names that share a hash are an attack
    name = Trimmed(name);
    const std::uint32_t hash = HashOfName(name);
    auto row =
        std::lower_bound(rows.begin(), rows.end(), hash, [](const Row& a, std::uint32_t b) { return a.hash < b; });
    for (int i = 0; i < kMostTries && row != rows.end() && row->hash == hash; ++i, ++row) {
        if (SameName(NameOfRow(form, *row), name)) return &*row;
    }
    return nullptr;
}

// ---- Line types

struct PenName {
    const char* name;
    unsigned pen;
};
// A name that begins with a row's name is that row.
static constexpr PenName kPenNames[] = {
    {"CONTINUOUS", 0}, {"BORDER", 3},     {"CENTER", 3},     {"DASHDOT", 3},    {"DASHED", 2},     {"DIVIDE", 4},
    {"DOT", 5},        {"HIDDEN", 6},     {"PHANTOM", 4},    {"ACAD_ISO02", 2}, {"ACAD_ISO03", 2}, {"ACAD_ISO04", 3},
    {"ACAD_ISO05", 4}, {"ACAD_ISO06", 4}, {"ACAD_ISO07", 5}, {"ACAD_ISO08", 3}, {"ACAD_ISO09", 4}, {"ACAD_ISO10", 3},
};

// The pen whose pattern is nearest: strokes much shorter than the longest count as dots.
static unsigned PenOfPattern(const DxfForm& form, std::size_t begin) {
    constexpr int kMostStrokes = 16;
    double strokes[kMostStrokes];
    int count = 0;
    DxfReader reader = {&form, begin};
    DxfPair pair;
    while (NextInRecord(&reader, &pair) && count < kMostStrokes) {
        if (pair.code != 49) continue;
        const double length = DxfNumber(form, 49, pair.value);
        if (length >= 0) strokes[count++] = length;
    }
    if (count == 0) return 0;
    const double longest = *std::max_element(strokes, strokes + count);
    const auto dots = std::count_if(strokes, strokes + count, [&](double stroke) { return stroke * 3 <= longest; });
    if (longest == 0) return 5;
    return dots == 0 ? 2 : dots == 1 ? 3 : 4;
}

// Null where the name tells nothing.
static const PenName* FindPenName(ByteView name) {
    for (const PenName& row : kPenNames) {
        const std::size_t length = std::strlen(row.name);
        if (name.size >= length && IsName({name.data, length}, row.name)) return &row;
    }
    return nullptr;
}

unsigned PenOfLineType(const DxfForm& form, const DxfNames& lineTypes, ByteView name) {
    if (const DxfNames::Row* const row = lineTypes.Find(form, name)) return row->value;
    const PenName* const known = FindPenName(name);
    return known ? known->pen : 0;
}

static std::uint32_t FlagsOfLayer(const DxfForm& form, const DxfNames& lineTypes, std::size_t begin) {
    DxfGroups layer;
    DxfReader reader = {&form, begin};
    layer.Read(&reader);
    std::uint32_t flags = 0;
    if (layer.Integer(62) < 0) flags |= kLayerOff;
    if (layer.Integer(70) & 1) flags |= kLayerFrozen;
    return flags | PenOfLineType(form, lineTypes, Trimmed(layer.Text(6)));
}

// ---- The walk

enum class Section { kNone, kHeader, kTables, kBlocks, kEntities, kOther };

static Section SectionOf(ByteView name) {
    name = Trimmed(name);
    if (IsName(name, "HEADER")) return Section::kHeader;
    if (IsName(name, "TABLES")) return Section::kTables;
    if (IsName(name, "BLOCKS")) return Section::kBlocks;
    if (IsName(name, "ENTITIES")) return Section::kEntities;
    return Section::kOther;
}

// The header's names of what a dimension style holds.
static constexpr struct {
    const char* name;
    int code;
} kDimensionNames[] = {{"$DIMSCALE", 40}, {"$DIMASZ", 41}, {"$DIMTAD", 77}, {"$DIMGAP", 147}};

void TakeDimensionValue(const DxfForm& form, int code, const DxfPair& value, DxfDimensionStyle* style) {
    const auto number = [&] { return DxfNumber(form, value.code, value.value); };
    switch (code) {
        case 40: style->scale = number(); break;
        case 41: style->arrow = number(); break;
        case 77: style->textAbove = number() != 0; break;
        case 147: style->gap = number(); break;
        case 341: style->leaderArrow = DxfHandle(value.value); break;
        default: break;
    }
}

static void TakeVariable(const DxfForm& form, ByteView name, const DxfPair& pair, DxfTables* out) {
    if (IsName(name, "$ACADVER") && pair.code == 1) {
        const ByteView text = Trimmed(pair.value);
        if (MatchAt(text, 0, "AC")) {
            out->version =
                static_cast<int>(DxfInteger({}, 70, {text.data + 2, std::min<std::size_t>(text.size - 2, 4)}));
        }
    } else if (IsName(name, "$DWGCODEPAGE") && pair.code == 3) {
        out->codePage = Trimmed(pair.value);
    } else if (IsName(name, "$INSUNITS") && pair.code == 70) {
        out->units = static_cast<int>(std::clamp(DxfInteger(form, pair.code, pair.value), 0ll, 999ll));
    } else if (IsName(name, "$TITLE") && pair.code == 1) {
        out->title = Trimmed(pair.value);
    } else if (MatchAt(name, 0, "$DIM")) {
        for (const auto& row : kDimensionNames) {
            if (IsName(name, row.name)) TakeDimensionValue(form, row.code, pair, &out->dimensionStyle);
        }
    }
}

static DxfNames* TableOf(ByteView kind, DxfTables* tables) {
    if (IsName(kind, "LAYER")) return &tables->layers;
    if (IsName(kind, "LTYPE")) return &tables->lineTypes;
    if (IsName(kind, "STYLE")) return &tables->styles;
    if (IsName(kind, "DIMSTYLE")) return &tables->dimensionStyles;
    return nullptr;
}

static std::uint32_t OwnerOfBlock(const DxfForm& form, std::size_t begin) {
    DxfReader reader = {&form, begin};
    DxfPair pair;
    while (NextInRecord(&reader, &pair)) {
        if (pair.code == 330) return DxfHandle(pair.value);
    }
    return 0;
}

// A row that is read again for each entity that refers to it may not be longer than any writer makes it.
static void DropLongRows(const DxfForm& form, DxfNames* names) {
    constexpr std::size_t kMostPairs = 256, kMostBytes = 8192;
    const auto isLong = [&](const DxfNames::Row& row) {
        DxfReader reader = {&form, row.begin};
        DxfPair pair;
        std::size_t pairs = 0;
        while (NextInRecord(&reader, &pair)) ++pairs;
        return pairs > kMostPairs || reader.at - row.begin > kMostBytes;
    };
    names->rows.erase(std::remove_if(names->rows.begin(), names->rows.end(), isLong), names->rows.end());
}

// What rows are worth, once all of them are known.
static void ResolveTables(const DxfForm& form, DxfTables* tables) {
    for (DxfNames* names :
         {&tables->layers, &tables->lineTypes, &tables->styles, &tables->dimensionStyles, &tables->blocks})
        names->Sort();
    DropLongRows(form, &tables->styles);
    DropLongRows(form, &tables->dimensionStyles);
    for (DxfNames::Row& row : tables->lineTypes.rows) {
        const PenName* const known = FindPenName(NameOfRow(form, row));
        row.value = known ? known->pen : PenOfPattern(form, row.begin);
    }
    for (DxfNames::Row& row : tables->layers.rows) row.value = FlagsOfLayer(form, tables->lineTypes, row.begin);
    tables->layerCount = tables->layers.rows.size();
    tables->blockCount = 0;
    for (DxfNames::Row& row : tables->blocks.rows) {
        row.owner = OwnerOfBlock(form, row.begin);
        if (!MatchAt(NameOfRow(form, row), 0, "*")) ++tables->blockCount;  // the file's own, as a user counts
    }
}

static std::size_t RowsOf(const DxfTables& tables) {
    std::size_t count = tables.moreEntities.size();
    for (const DxfNames* names :
         {&tables.layers, &tables.lineTypes, &tables.styles, &tables.dimensionStyles, &tables.blocks})
        count += names->rows.size();
    return count;
}

bool SurveyDxf(const DxfForm& form, std::size_t begin, const std::atomic<std::int32_t>& goOn, DxfTables* out) {
    constexpr std::size_t kMostSections = 64, kLongestName = 1024;
    constexpr int kMostLoose = 32;  // entities without a section around them that tell a file of nothing else
    const std::size_t rowsBefore = RowsOf(*out);
    Section section = begin == form.begin ? Section::kNone : Section::kOther;
    DxfReader reader = {&form, begin};
    DxfPair pair;
    ByteView variable;
    DxfNames* named = nullptr;  // where the record's name goes once it is read
    std::size_t record = 0;
    int loose = 0;
    bool expectSection = false;
    for (std::size_t before = reader.at; loose < kMostLoose && reader.NextOrRemark(&pair); before = reader.at) {
        if (pair.code == 0) {
            if (goOn.load(std::memory_order_relaxed) != 1) break;
            const ByteView kind = Trimmed(pair.value);
            named = nullptr;
            record = reader.at;
            if (IsName(kind, "EOF")) break;
            if (IsName(kind, "SECTION")) {
                out->hasSections = expectSection = true;
            } else if (IsName(kind, "ENDSEC")) {
                section = Section::kOther;
            } else if (section == Section::kTables) {
                named = TableOf(kind, out);
            } else if (section == Section::kBlocks) {
                if (IsName(kind, "BLOCK")) named = &out->blocks;
            } else if (section == Section::kNone) {
                if (loose++ == 0) out->entities = before;
            }
        } else if (pair.code == 2 && expectSection) {
            expectSection = false;
            section = SectionOf(pair.value);
            if (section != Section::kEntities) continue;
            if (begin == form.begin) {
                out->entities = reader.at;
                break;
            }
            if (out->moreEntities.size() < kMostSections)
                out->moreEntities.push_back(static_cast<std::uint32_t>(reader.at));
        } else if (pair.code == 2 && named) {
            // Each search may compare it several times.
            if (reader.at - before <= kLongestName) named->Add(form, pair.value, record);
            named = nullptr;
        } else if (pair.code == 999) {
            if (out->remarks == kNowhere) out->remarks = before;
        } else if (section == Section::kHeader) {
            if (pair.code == 9) variable = Trimmed(pair.value);
            else TakeVariable(form, variable, pair, out);
        }
    }
    if (RowsOf(*out) == rowsBefore) return false;
    ResolveTables(form, out);
    return true;
}
