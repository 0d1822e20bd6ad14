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

static constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                          1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// Converts a plain number of up to fifteen digits: they make an exact integer, and its division by an exact power of
// ten rounds once, so the result is right to the last bit. It takes a third of the general conversion's time, which
// counts for drawings with millions of coordinates. Null when the number is of another form.
static const char* ParsePlain(const char* at, const char* end, double* value) {
    constexpr std::ptrdiff_t kMostDigits = 15;
    const char* const begin = at;
    const char* const limit = end - at > kMostDigits + 1 ? at + kMostDigits + 1 : end;  // the digits and a point
    std::int64_t digits = 0;
    while (at != limit && IsDigit(*at)) digits = digits * 10 + (*at++ - '0');
    std::ptrdiff_t count = at - begin, fraction = 0;
    if (at != limit && *at == '.') {
        const char* const first = ++at;
        while (at != limit && IsDigit(*at)) digits = digits * 10 + (*at++ - '0');
        fraction = at - first;
        count += fraction;
    }
    if (count == 0 || count > kMostDigits) return nullptr;
    if (at != end && (IsDigit(*at) || *at == 'e' || *at == 'E')) return nullptr;
    *value = static_cast<double>(digits) / kPowersOfTen[fraction];
    return at;
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
    if (const char* stop = ParsePlain(at, end, &value)) {
        if (used) *used = static_cast<std::size_t>(stop - begin);
        return negative ? -value : value;
    }
    const std::from_chars_result result = std::from_chars(at, end, value);
    if (result.ec == std::errc::invalid_argument) return 0;  // a lone point
    if (result.ec == std::errc::result_out_of_range) {
        value = IsTooLarge(at, result.ptr) ? std::numeric_limits<double>::infinity() : 0;
    }
    if (used) *used = static_cast<std::size_t>(result.ptr - begin);
    return negative ? -value : value;
}
