#include "kit/code_page.h"

#include <windows.h>

bool IsSystemLeadByte(std::uint8_t byte) { return IsDBCSLeadByte(byte) != 0; }
