// Backup drawings. The comment is the title block.
#pragma once

#include "preview/formats/sink.h"

bool DecodeBackup(ByteView file, Comment* comment, DrawingSink* sink);  // see Decoder
