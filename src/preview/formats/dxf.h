// The ASCII form of DXF: extents and the entities POINT, LINE, ARC, CIRCLE and TEXT. The comment is the head of the
// file's text; it is made while the drawing is, so without a sink there is none.
#pragma once

#include "preview/formats/sink.h"

bool DecodeDxf(ByteView file, Comment* comment, DrawingSink* sink);  // see Decoder
