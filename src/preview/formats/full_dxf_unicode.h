// The texts of a DXF file in Unicode.
#pragma once

#include <string>

#include "preview/formats/full_dxf_tables.h"

struct DxfEncoding {
    unsigned page = 1252;
    bool tryUtf8 = false;  // UTF-8 where the bytes are valid as such
};

DxfEncoding EncodingOf(const DxfForm& form, const DxfTables& tables);

// Appends a text, with "\U+XXXX" and "\M+nXXXX" as the characters that they name. Very long texts are cut.
void AppendUnicode(const DxfEncoding& encoding, ByteView text, std::u16string* out);

// What the "%%" and "^" codes of a line of text mean, in place. The switches for underlining are taken out and told.
struct DxfLineMarks {
    bool underlined = false, overlined = false, struckOut = false;
};
DxfLineMarks ResolveLineCodes(std::u16string* text);
