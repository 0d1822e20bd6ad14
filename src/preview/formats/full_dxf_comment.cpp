#include "preview/formats/full_dxf_comment.h"

#include <charconv>
#include <cstdio>
#include <iterator>
#include <string>

#include "kit/code_page.h"
#include "resources/resource.h"

struct VersionRow {
    int number;
    const char* name;
};
// The years, and before them the releases, by which the versions go.
static constexpr VersionRow kVersions[] = {
    {1006, "R10"},  {1009, "R12"},  {1012, "R13"},  {1014, "R14"},  {1015, "2000"},
    {1018, "2004"}, {1021, "2007"}, {1024, "2010"}, {1027, "2013"}, {1032, "2018"},
};
static constexpr const char* kUnits[] = {"",  "in", "ft", "mi", "mm",  "cm", "m",  "km", "uin", "mil", "yd",
                                         "A", "nm", "um", "dm", "dam", "hm", "Gm", "au", "ly",  "pc"};

// A line of the file, in the user's code page.
static void AppendFileText(Comment* comment, const DxfEncoding& encoding, const char* label, ByteView text) {
    std::u16string wide;
    AppendUnicode(encoding, text, &wide);
    std::string line = label;
    const std::size_t before = line.size(), room = wide.size() * 2;  // pages have one or two bytes a character
    line.resize(before + room);
    line.resize(before + UnicodeToSystem(wide.data(), wide.size(), &line[before], room));
    AppendCommentLine(comment, {reinterpret_cast<const std::uint8_t*>(line.data()), line.size()});
}

static void AppendLine(Comment* comment, unsigned label, const char* value) {
    char text[kLabelSize], line[256];
    CopyLabel(*comment, label, text);
    const int length = std::snprintf(line, sizeof(line), "%s %s", text, value);
    AppendCommentLine(comment, {reinterpret_cast<const std::uint8_t*>(line), static_cast<std::size_t>(length)});
}

static void AppendCount(Comment* comment, unsigned label, std::size_t count) {
    AppendLine(comment, label, std::to_string(count).c_str());
}

// Six digits or whole units, with a point in every locale.
static char* PutNumber(char* at, char* end, double value) {
    if (value >= 1e6) return std::to_chars(at, end, value, std::chars_format::fixed, 0).ptr;
    return std::to_chars(at, end, value, std::chars_format::general, 6).ptr;
}

static void AppendRemarks(Comment* comment, const DxfForm& form, std::size_t at, const DxfEncoding& encoding) {
    constexpr int kMostRemarks = 64;
    DxfReader reader = {&form, at};
    DxfPair pair;
    for (int i = 0; i < kMostRemarks && reader.NextOrRemark(&pair) && pair.code == 999; ++i) {
        AppendFileText(comment, encoding, "", pair.value);
    }
}

static void AppendVersion(Comment* comment, int number) {
    char text[64];
    const auto* row = kVersions;
    while (row != std::end(kVersions) && row->number != number) ++row;
    if (row == std::end(kVersions)) std::snprintf(text, sizeof(text), "DXF AC%d", number);
    else std::snprintf(text, sizeof(text), "DXF AC%d (%s)", number, row->name);
    AppendLine(comment, IDS_DXF_VERSION, text);
}

void AppendDxfComment(Comment* comment, const DxfDecoder& dxf, const WorldRect* box) {
    const DxfTables& tables = dxf.tables;
    const DxfEncoding& encoding = dxf.encoding;
    if (tables.remarks != kNowhere) AppendRemarks(comment, dxf.form, tables.remarks, encoding);
    if (tables.title.size) {
        char label[kLabelSize];
        CopyLabel(*comment, IDS_DXF_TITLE, label);
        AppendFileText(comment, encoding, (std::string(label) + ' ').c_str(), tables.title);
    }
    if (tables.version) AppendVersion(comment, tables.version);
    if (tables.units > 0 && tables.units < static_cast<int>(std::size(kUnits))) {
        AppendLine(comment, IDS_DXF_UNIT, kUnits[tables.units]);
    }
    if (box) {
        char size[96];
        char* at = PutNumber(size, std::end(size), box->maxX - box->minX);
        for (const char c : {' ', 'x', ' '}) *at++ = c;
        *PutNumber(at, std::end(size) - 1, box->maxY - box->minY) = '\0';
        AppendLine(comment, IDS_DXF_SIZE, size);
    }
    AppendCount(comment, IDS_DXF_ENTITIES, dxf.entityCount);
    AppendCount(comment, IDS_DXF_LAYERS, tables.layerCount);
    AppendCount(comment, IDS_DXF_BLOCKS, tables.blockCount);
}
