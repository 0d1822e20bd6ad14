// The native drawings of both editions. The comment is the title block.
#pragma once

#include <vector>

#include "preview/formats/sink.h"

bool DecodeNative(ByteView file, Comment* comment, DrawingSink* sink);  // see Decoder

// Where a long run of deleted continuations leads from a record, as long as the text whose chain it is stands before
// record `until`. One for each record; none until a chain is long enough to need them.
struct ChainSkip {
    unsigned to = 0, until = 0;
};
using ChainSkips = std::vector<ChainSkip>;

// Gathers the text that begins in a record and goes on in the records it links to.
//   number   1-based, as links are; `records` holds `count` of them
//   buffer   zeroed over `size` bytes, 256 in the decoder; receives the text without "|", "_", "[" and "]",
//            its half-width characters widened as far as the room reaches
//   skips    kept between texts of the same records
// Returns the text's length in bytes; 0 for a buffer of 14 bytes or less.
std::size_t GatherRecordText(unsigned number, unsigned count, ByteView records, char* buffer, std::size_t size,
                             ChainSkips* skips = nullptr);
