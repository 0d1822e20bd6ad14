// Paths in 8-bit text; double-byte characters are never split.
#pragma once

#include <string>

// A path's file name: what stands behind its last separator (backslash, slash or colon).
const char* FindFileName(const char* path);

// The extension of a path's file name, its dot included; an empty string at the path's end when it has none.
const char* FindExtension(const char* path);

// The last backslash of a path that is not the second byte of a character; null when there is none.
const char* FindLastBackslash(const char* path);

// `name` inside `folder`. An empty folder, or a name with a drive or a leading separator, leaves the name as it is.
std::string JoinPath(const char* folder, const char* name);
