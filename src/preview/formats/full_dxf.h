// All of DXF that shows in two dimensions: text and binary form, from the oldest versions to today's, whatever wrote
// them. The drawing is measured first and then fitted, so what a header says of its extents does not matter. The
// comment is made with and without a sink.
#pragma once

#include "preview/formats/sink.h"

bool DecodeFullDxf(ByteView file, Comment* comment, DrawingSink* sink);  // see Decoder
