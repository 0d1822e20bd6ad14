// What a person wants to know of a DXF drawing before opening it.
#pragma once

#include "preview/formats/full_dxf_decoder.h"

// Appends the file's remarks and title, its version, unit and size, and what it holds. `box` may be null.
void AppendDxfComment(Comment* comment, const DxfDecoder& dxf, const WorldRect* box);
