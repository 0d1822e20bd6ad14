// Text drawings: the line-oriented exchange format. The comment is the title lines; it is made while the drawing is, so
// without a sink there is none.
#pragma once

#include "preview/formats/sink.h"

bool DecodeTextDrawing(ByteView file, Comment* comment, DrawingSink* sink);  // see Decoder
