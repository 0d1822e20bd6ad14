// Half-width to full-width characters of the Japanese code page.
#pragma once

#include <cstdint>

// The two-byte form (lead byte in the high half) of a single-byte character of code page 932; blanks and bytes without
// a form of their own give the ideographic space 0x8140. Does not depend on the machine's locale.
std::uint16_t ToFullWidth(std::uint8_t byte);
