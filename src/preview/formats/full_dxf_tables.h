// What a DXF file says before and beside its entities: header, layers, line types, styles and blocks. A table holds
// places in the file, and a row is read again where it is needed.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "preview/formats/full_dxf_tokens.h"

constexpr std::size_t kNowhere = SIZE_MAX;

// The groups of one record, each code's first value. Codes from 256 up are nobody's; those behind an embedded object's
// mark belong to that object.
struct DxfGroups {
    const DxfForm* form = nullptr;
    std::size_t begin = 0;            // of its pairs, behind the one that names it
    std::size_t embedded = kNowhere;  // of those of an embedded object
    bool Has(int code) const { return present[code >> 6] >> (code & 63) & 1; }
    ByteView Text(int code) const { return Has(code) ? Value(code) : ByteView{}; }
    double Number(int code, double missing = 0) const {
        return Has(code) ? DxfNumber(*form, code, Value(code)) : missing;
    }
    int Integer(int code, int missing = 0) const;  // clamped to +-2^30

    // Reads a record's pairs and leaves the reader before the next record.
    void Read(DxfReader* reader);

private:
    friend struct DxfRecordWalk;
    static constexpr unsigned kCodes = 256, kKept = 512;
    ByteView Value(int code) const { return kept[place[code]].value; }
    std::uint64_t present[kCodes / 64] = {};
    std::uint16_t place[kCodes];
    DxfPair kept[kKept + kCodes + 1];  // the first pairs, so that a walk need not split them off again; behind them
                                       // what the others have first, and the one that is being read
    unsigned keptCount = 0;
    std::size_t behindKept = 0;  // where the pairs that are not kept begin; kNowhere: there are none
};

// The pairs of a record again, for what it holds more than once. It needs the groups as they were read.
struct DxfRecordWalk {
    explicit DxfRecordWalk(const DxfGroups& record) : groups(&record), reader{record.form, record.behindKept} {}
    bool Next(DxfPair* pair);  // false at the record's end

private:
    const DxfGroups* groups;
    unsigned at = 0;
    DxfReader reader;
};

// The same without groups, for a record that is read for one value.
bool NextInRecord(DxfReader* reader, DxfPair* pair);

// Records by name.
struct DxfNames {
    struct Row {
        std::uint32_t hash;
        std::uint32_t begin;   // of the record's pairs
        std::uint32_t name;    // where it stands, without blanks around it
        std::uint32_t length;  // of the name
        std::uint32_t value;   // what the table's owner makes of it
        std::uint32_t owner;   // of a block: the handle by which others name it too
    };
    std::vector<Row> rows;  // sorted by hash once the table is whole

    void Add(const DxfForm& form, ByteView name, std::size_t begin);
    void Sort();
    const Row* Find(const DxfForm& form, ByteView name) const;
};

enum LayerFlag : std::uint32_t { kLayerPen = 15, kLayerOff = 16, kLayerFrozen = 32 };

// The pen of a line type, which some files name without having it in their table.
unsigned PenOfLineType(const DxfForm& form, const DxfNames& lineTypes, ByteView name);

// What a dimension style rules of what is drawn here. Lengths are to be multiplied by the scale.
struct DxfDimensionStyle {
    double scale = 1;
    double arrow = 0.18, gap = 0.09;
    bool textAbove = false;         // the line
    std::uint32_t leaderArrow = 0;  // the owner of its block
};
// Takes a value by its code in a style; what else a style holds is left alone.
void TakeDimensionValue(const DxfForm& form, int code, const DxfPair& value, DxfDimensionStyle* style);

struct DxfTables {
    DxfNames layers;     // value: LayerFlag
    DxfNames lineTypes;  // value: pen
    DxfNames styles;
    DxfNames dimensionStyles;
    DxfNames blocks;

    int version = 0;  // the number in "AC1015"; 0: not stated
    ByteView codePage, title;
    int units = 0;                     // $INSUNITS
    DxfDimensionStyle dimensionStyle;  // the header's, where a style does not say otherwise
    std::size_t remarks = kNowhere;    // the first one's pair

    bool hasSections = false;
    std::size_t entities = kNowhere;          // where they begin
    std::vector<std::uint32_t> moreEntities;  // where further sections of them do
    std::size_t layerCount = 0, blockCount = 0;
};

// Goes through the file from `begin`: from its first pair to the entities, or from behind these to the end. False when
// nothing has come in. Ends early when `goOn` is no longer 1.
bool SurveyDxf(const DxfForm& form, std::size_t begin, const std::atomic<std::int32_t>& goOn, DxfTables* out);
