#include "dlgctrl/number_type.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "dlgctrl/expression.h"
#include "dlgctrl/value_format.h"
#include "kit/numbers.h"

namespace {

constexpr double kLeastRange = 1e-6;  // Deliberate: set-up and write-back take any difference for a range

// The low bits of an integer, or the nearest value of a float type.
template <typename T>
T Narrow(double number) {
    if constexpr (std::is_integral_v<T>) return static_cast<T>(TruncToInt32(number));
    else return static_cast<T>(number);
}

template <typename T>
double Load(const void* variable) {
    T value;
    std::memcpy(&value, variable, sizeof(value));
    return value;
}

template <typename T>
void Store(void* variable, double number) {
    const T value = Narrow<T>(number);
    std::memcpy(variable, &value, sizeof(value));
}

// Saturates at 32 bits.
double LeadingInteger(const char* text) {
    return static_cast<double>(std::clamp<long long>(std::strtoll(text, nullptr, 10), INT32_MIN, INT32_MAX));
}

template <typename T>
double Leading(const char* text) {
    if constexpr (std::is_integral_v<T>) return Narrow<T>(LeadingInteger(text));
    else return Narrow<T>(LeadingNumber(text));
}

// A minimum above the maximum is stronger.
double Limit(double number, double minimum, double maximum) {
    if (minimum > number) return minimum;
    return number > maximum ? maximum : number;
}

template <typename T>
double LimitAs(double number, double minimum, double maximum) {
    return Limit(number, SaturateTo<T>(minimum), SaturateTo<T>(maximum));
}

template <typename T>
double Shown(double number) {
    return Narrow<T>(number);
}

std::string Integer(const char* format, double number) { return FormatInteger(format, TruncToInt32(number)); }

}  // namespace

// Deliberate: a field of 8 bits shows 16; it narrows when it is stored.
const NumberType kNumberTypes[5] = {
    {Load<std::int8_t>, Store<std::int8_t>, Leading<std::int8_t>, LimitAs<std::int8_t>, Shown<std::int16_t>, Integer},
    {Load<std::int16_t>, Store<std::int16_t>, Leading<std::int16_t>, LimitAs<std::int16_t>, Shown<std::int16_t>,
     Integer},
    {Load<std::int32_t>, Store<std::int32_t>, Leading<std::int32_t>, LimitAs<std::int32_t>, Shown<std::int32_t>,
     Integer},
    {Load<float>, Store<float>, Leading<float>, LimitAs<float>, Shown<float>, FormatReal},
    {Load<double>, Store<double>, Leading<double>, LimitAs<double>, Shown<double>, FormatReal},
};

double LeadingNumber(const char* text) {
    return ParseDecimal({reinterpret_cast<const std::uint8_t*>(text), std::strlen(text)});
}

// What is no expression counts as the number that it begins with, or 0; so does what has no value, like sqrt(-1).
static double ValueOf(const char* text) {
    double value = 0;
    const char* position = text;
    return evaluateExpression(&position, &value) && !std::isnan(value) ? value : LeadingNumber(text);
}

std::string CheckedText(const NumberType& type, const char* text, double minimum, double maximum, const char* format) {
    double value = ValueOf(text);
    if (std::fabs(maximum - minimum) > kLeastRange) value = Limit(value, minimum, maximum);
    return type.format(format, type.shown(value));
}
