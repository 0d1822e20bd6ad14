// A system that is not Windows is taken for a Japanese one, so that tests and fuzzing there meet two-byte characters.
#include "kit/code_page.h"
#include "kit/sjis.h"

bool IsSystemLeadByte(std::uint8_t byte) { return IsLeadByte(byte); }
