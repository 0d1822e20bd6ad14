// Values as text, by printf formats that come from a host.
//
// A format may hold text of any length around one conversion that suits the value, and nothing else that reads an
// argument; one that does not suit is as good as none. The decimal point is '.' in every locale.
#pragma once

#include <string>

constexpr int kRealFormatSize = 16;

// Room for any number: the 309 digits of the largest, a sign, a point, and the longest precision or width.
constexpr int kNumberSize = 309 + 2 + 1000 + 1;

// A null format means the default.
std::string FormatInteger(const char* format, int value);
std::string FormatText(const char* format, const char* text);

// A real number: by its own format, or, when that is null or empty, by the module's, trimmed to the module's decimals.
std::string FormatReal(const char* format, double value);

// The module-wide real-number format and number of decimals that trimming leaves (-1 at start: no trimming). At most 16
// bytes of the format are kept, without a terminator when it is that long; null restores "%.3lf". Both return 1.
int SetRealFormat(const char* format, int decimals);
// Either may be null; the buffer, of 16 bytes, gets a terminator only when the format leaves room for it.
int GetRealFormat(char* format, int* decimals);

// Cuts zeros off the end of a fraction, down to so many decimals; the point stays. False when the text has no point.
// What ends in an exponent or a unit has no zeros to cut.
bool TrimDecimals(std::string* text, int decimals);

// Drops the first half of a two-byte character that a cut has left at the end.
void DropSplitCharacter(std::string* text);
