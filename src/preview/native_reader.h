// The native drawings of both editions. See PreviewReader for the contract; the comment is the title block, and it is
// given without a target too.
#pragma once

#include "preview/reader.h"

HBITMAP ReadNativePreview(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                          DWORD commentSize);

// Gathers the text that begins in a record and goes on in the records it links to.
//   number   1-based, as links are; `records` holds `count` of them
//   buffer   zeroed over `size` bytes, 256 in the reader; receives the text without "|", "_", "[" and "]",
//            its half-width characters widened as far as the room reaches
// Returns the text's length in bytes; 0 for a buffer of 14 bytes or less.
std::size_t GatherRecordText(unsigned number, unsigned count, ByteView records, char* buffer, std::size_t size);
