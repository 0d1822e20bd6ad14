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

// Powers of ten that a double holds exactly.
static constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,
                                          1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19};
static constexpr std::uint32_t kSmallPowers[] = {1,      10,      100,      1000,      10000,
                                                 100000, 1000000, 10000000, 100000000, 1000000000};

// Appends a run of digits to `number`, nine at a time: these fit the processor's own multiplication. What does not fit
// 64 bits wraps.
static inline const char* TakeDigits(const char* at, const char* end, std::uint64_t* number) {
    constexpr std::ptrdiff_t kGroup = 9;
    for (;;) {
        const char* const begin = at;
        const char* const limit = end - at > kGroup ? at + kGroup : end;
        std::uint32_t group = 0;
        while (at != limit && IsDigit(*at)) group = group * 10 + static_cast<std::uint32_t>(*at++ - '0');
        *number = *number * kSmallPowers[at - begin] + group;
        if (at - begin < kGroup) return at;
    }
}

// A number as the exact sum of two with half its digits.
struct Halves {
    double high, low;
    explicit Halves(double number) : high(number * 134217729.0 - (number * 134217729.0 - number)), low(number - high) {}
};

// digits / power to the last bit, where `power` is exact and `digits` below 2^63: the quotient of the upper digits, and
// what it leaves over, which is exact, with the lower ones divided in its turn. False when it cannot be told which
// neighbour of that sum is right.
static bool DivideLong(std::int64_t digits, double power, double* value) {
    constexpr std::int64_t kLower = 0x7FF;  // a double holds what is above
    const auto most = static_cast<double>(digits & ~kLower), others = static_cast<double>(digits & kLower);
    const double quotient = most / power, product = quotient * power;
    const Halves q(quotient), p(power);
    const double productError = ((q.high * p.high - product) + q.high * p.low + q.low * p.high) + q.low * p.low;
    const double correction = (((most - product) - productError) + others) / power;
    const double doubt = correction * 0x1p-45;
    *value = quotient + (correction - doubt);
    return *value == quotient + (correction + doubt);
}

// Converts a plain number. Where its digits make an integer that a double holds, the division by an exact power of ten
// rounds once, so the result is right to the last bit; most coordinates are such numbers, with up to sixteen digits,
// and take two thirds of the general conversion's time. Null when the number is of another form.
static const char* ParsePlain(const char* at, const char* end, double* value) {
    constexpr std::ptrdiff_t kMostDigits = 18;  // below 2^63
    constexpr std::uint64_t kMostExact = std::uint64_t{1} << 53;
    std::uint64_t digits = 0;
    const char* const whole = at;
    at = TakeDigits(at, end, &digits);
    std::ptrdiff_t count = at - whole, fraction = 0;
    if (at != end && *at == '.') {
        const char* const first = ++at;
        at = TakeDigits(at, end, &digits);
        fraction = at - first;
        count += fraction;
    }
    if (count == 0 || count > kMostDigits) return nullptr;
    if (at != end && (*at == 'e' || *at == 'E')) return nullptr;
    if (digits > kMostExact) {
        return DivideLong(static_cast<std::int64_t>(digits), kPowersOfTen[fraction], value) ? at : nullptr;
    }
    // In halves, which a processor of 32 bits converts in half the time; the sum is exact.
    constexpr double kHigh = 4294967296.0;
    const double integer = static_cast<double>(static_cast<std::int32_t>(digits >> 32)) * kHigh +
                           static_cast<double>(static_cast<std::uint32_t>(digits));
    *value = integer / kPowersOfTen[fraction];
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
