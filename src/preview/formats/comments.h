// Files that have no picture to draw but a text worth showing. These decoders draw nothing and give false.
#pragma once

#include "preview/formats/sink.h"

// The text itself, its line breaks as they stand.
bool DecodeTextComment(ByteView file, Comment* comment, DrawingSink* sink);

// The title blocks of the two native kinds that are not drawn; a file shorter than its last slot gives none.
bool DecodeQjComment(ByteView file, Comment* comment, DrawingSink* sink);
bool DecodeQfComment(ByteView file, Comment* comment, DrawingSink* sink);
