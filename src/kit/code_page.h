// The system's own code page, in which hosts, users and file systems give their texts. Drawings are always Shift_JIS:
// see kit/sjis.h.
#pragma once

#include <cstdint>

// True for the first byte of a two-byte character of the system's code page.
bool IsSystemLeadByte(std::uint8_t byte);
