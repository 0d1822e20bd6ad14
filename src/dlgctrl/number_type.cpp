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

// Deliberate: set-up and write-back take any difference for a range. Bounds that are closer than this leave alone what
// a user types until it is stored; by the same rule here the field would jump as soon as the user leaves it.
constexpr double kLeastRange = 1e-6;

// The low bits of an integer, or the nearest value of a float type.
template <typename T>
T Narrow(double number) {
    if constexpr (std::is_integral_v<T>) return static_cast<T>(TruncToInt32(number));
    else return SaturateTo<T>(number);
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

// The range holds before the number is narrowed and once more behind it, so what is shown can be stored; but a minimum
// above the maximum would then give way to that.
template <typename T, typename AsShown>
double ShownInRange(double number, double minimum, double maximum) {
    using Widest = std::conditional_t<std::is_integral_v<T>, std::int32_t, T>;
    const double shown = Shown<AsShown>(LimitAs<Widest>(number, minimum, maximum));
    return minimum > maximum ? shown : LimitAs<T>(shown, minimum, maximum);
}

template <typename T, typename AsShown>
constexpr NumberType TypeOf(std::string (*format)(const char* format, double number)) {
    return {Load<T>, Store<T>, Leading<T>, LimitAs<T>, Shown<AsShown>, ShownInRange<T, AsShown>, format};
}

std::string Integer(const char* format, double number) { return FormatInteger(format, TruncToInt32(number)); }

}  // namespace

// Deliberate: a field of 8 bits shows 16 and narrows when it is stored. With 8 shown, a user of a host without a range
// would see 300 become 44 on leaving the field, not when the dialog is opened again.
const NumberType kNumberTypes[5] = {
    TypeOf<std::int8_t, std::int16_t>(Integer),  TypeOf<std::int16_t, std::int16_t>(Integer),
    TypeOf<std::int32_t, std::int32_t>(Integer), TypeOf<float, float>(FormatReal),
    TypeOf<double, double>(FormatReal),
};

double LeadingNumber(const char* text) {
    return SaturateTo<double>(ParseDecimal({reinterpret_cast<const std::uint8_t*>(text), std::strlen(text)}));
}

// What is no expression counts as the number that it begins with, or 0; so does what has no finite value, like sqrt(-1)
// and 1/0.
static double ValueOf(const char* text) {
    double value = 0;
    const char* position = text;
    return evaluateExpression(&position, &value) && std::isfinite(value) ? value : LeadingNumber(text);
}

std::string CheckedText(const NumberType& type, const char* text, double minimum, double maximum, const char* format) {
    const double value = ValueOf(text);
    const bool hasRange = std::fabs(maximum - minimum) > kLeastRange;
    return type.format(format, hasRange ? type.shownInRange(value, minimum, maximum) : type.shown(value));
}
