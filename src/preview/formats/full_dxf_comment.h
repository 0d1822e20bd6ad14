// What a person wants to know of a DXF drawing before opening it.
#pragma once

#include "preview/formats/full_dxf_tables.h"
#include "preview/formats/full_dxf_unicode.h"
#include "preview/formats/sink.h"

// Appends the file's remarks and title, its version, unit and size, and what it holds. `box` may be null.
void AppendDxfComment(Comment* comment, const DxfForm& form, const DxfTables& tables, const DxfEncoding& encoding,
                      const WorldRect* box);
