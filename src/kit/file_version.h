// File version resources.
#pragma once

#include <windows.h>

// The fixed file version of an executable or library; false, with `out` untouched, when it has none.
bool ReadFileVersion(const char* path, VS_FIXEDFILEINFO* out);
