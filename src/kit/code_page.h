// The system's own code page, in which hosts, users and file systems give their texts, and the pages of other systems.
// Drawings are always Shift_JIS: see kit/sjis.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kit/bytes.h"

// True for the first byte of a two-byte character of the system's code page.
bool IsSystemLeadByte(std::uint8_t byte);

// Converts text of a Windows code page (1252, 932, ...). Gives the number of units, at most `room`; 0 when the page is
// not known. What is no character of the page becomes a replacement.
std::size_t TextToUnicode(unsigned page, ByteView text, char16_t* out, std::size_t room);

// Converts to the system's code page. Gives the number of bytes, at most `room`.
std::size_t UnicodeToSystem(const char16_t* text, std::size_t length, char* out, std::size_t room);
