// Numbers: decimal text to double whatever the host's locale, and double to integer as the x86 converts.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "kit/bytes.h"

// Toward zero; NaN and what does not fit give the processor's "integer indefinite", the lowest value.
inline std::int32_t TruncToInt32(double value) {
    return value > -2147483649.0 && value < 2147483648.0 ? static_cast<std::int32_t>(value) : INT32_MIN;
}
inline std::int64_t TruncToInt64(double value) {
    return value >= -9223372036854775808.0 && value < 9223372036854775808.0 ? static_cast<std::int64_t>(value)
                                                                            : INT64_MIN;
}

// Toward zero; what does not fit gives the nearest value that does, and what is no number gives 0.
template <typename T>
T SaturateTo(double value) {
    constexpr auto lowest = static_cast<double>(std::numeric_limits<T>::lowest());
    constexpr auto highest = static_cast<double>(std::numeric_limits<T>::max());
    if (value <= lowest) return std::numeric_limits<T>::lowest();
    if (value >= highest) return std::numeric_limits<T>::max();
    return value == value ? static_cast<T>(value) : T{0};
}

// The low 32 bits, as a signed number.
inline std::int32_t LowInt32(std::int64_t value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(value)));
}

// Sums that wrap at 32 bits, for pixels that lie far outside.
inline std::int32_t WrappingAdd(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
inline std::int32_t WrappingSubtract(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

// Converts the decimal number at the start of `text`, after blanks and a sign; `used`, when wanted, receives the number
// of bytes up to its end. What is not numeric gives 0 and uses nothing; too large gives infinity, too small 0.
// The decimal point is '.' in every locale.
double ParseDecimal(ByteView text, std::size_t* used = nullptr);
