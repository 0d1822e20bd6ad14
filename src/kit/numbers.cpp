#include "kit/numbers.h"

#include <charconv>
#include <limits>
#include <system_error>

static bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The blanks that the standard conversion skips.
static bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// Whether a number that is out of range is too large rather than too small: the position of its first digit that is not
// zero, counted from the decimal point, plus its exponent.
static bool IsTooLarge(const char* at, const char* end) {
    long long position = 0;
    bool significant = false, fraction = false;
    for (; at != end && (IsDigit(*at) || *at == '.'); ++at) {
        if (*at == '.') {
            fraction = true;
        } else if (significant || *at != '0') {
            significant = true;
            if (!fraction) ++position;
        } else if (fraction) {
            --position;
        }
    }
    if (at == end) return position > 0;
    long long exponent = 0;
    const bool negative = ++at != end && *at == '-';
    if (at != end && (*at == '-' || *at == '+')) ++at;
    for (; at != end && IsDigit(*at) && exponent < 1'000'000'000; ++at) exponent = exponent * 10 + (*at - '0');
    return position + (negative ? -exponent : exponent) > 0;
}

double ParseDecimal(ByteView text, std::size_t* used) {
    const char* const begin = reinterpret_cast<const char*>(text.data);
    const char* const end = begin + text.size;
    const char* at = begin;
    if (used) *used = 0;
    while (at != end && IsSpace(*at)) ++at;
    const bool negative = at != end && *at == '-';
    if (at != end && (*at == '-' || *at == '+')) ++at;
    if (at == end || !(IsDigit(*at) || *at == '.')) return 0;  // "inf" and "nan" are no numbers here

    double value = 0;
    const std::from_chars_result result = std::from_chars(at, end, value);
    if (result.ec == std::errc::invalid_argument) return 0;  // a lone point
    if (result.ec == std::errc::result_out_of_range) {
        value = IsTooLarge(at, result.ptr) ? std::numeric_limits<double>::infinity() : 0;
    }
    if (used) *used = static_cast<std::size_t>(result.ptr - begin);
    return negative ? -value : value;
}
