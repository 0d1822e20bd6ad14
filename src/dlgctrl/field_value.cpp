#include "dlgctrl/field_value.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "dlgctrl/dlgitem.h"
#include "dlgctrl/expression.h"
#include "dlgctrl/value_format.h"
#include "kit/numbers.h"

// ---- Value types

namespace {

constexpr int kFieldTextSize = 256;  // a longer text is cut
constexpr int kStepTextSize = 128;

// Deliberate: set-up and write-back take any difference for a range. Bounds that are closer than this leave alone what
// a user types until it is stored; by the same rule here the field would jump as soon as the user leaves it.
constexpr double kLeastRange = 1e-6;

// Always finite: what is too large counts as the largest number.
double LeadingNumber(const char* text) {
    return SaturateTo<double>(ParseDecimal({reinterpret_cast<const std::uint8_t*>(text), std::strlen(text)}));
}

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

template <typename T>
double Leading(const char* text) {
    if constexpr (std::is_integral_v<T>) return Narrow<T>(std::strtol(text, nullptr, 10));
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

std::string Integer(const char* format, double number) { return FormatInteger(format, TruncToInt32(number)); }

// Deliberate: a field of 8 bits shows 16 and narrows when it is stored. With 8 shown, a user of a host without a range
// would see 300 become 44 on leaving the field, not when the dialog is opened again.
constexpr NumberType kNumberTypes[] = {
    {KW_VALUE_INT8, Load<std::int8_t>, Store<std::int8_t>, Leading<std::int8_t>, LimitAs<std::int8_t>,
     Shown<std::int16_t>, ShownInRange<std::int8_t, std::int16_t>, Integer},
    {KW_VALUE_INT16, Load<std::int16_t>, Store<std::int16_t>, Leading<std::int16_t>, LimitAs<std::int16_t>,
     Shown<std::int16_t>, ShownInRange<std::int16_t, std::int16_t>, Integer},
    {KW_VALUE_INT32, Load<std::int32_t>, Store<std::int32_t>, Leading<std::int32_t>, LimitAs<std::int32_t>,
     Shown<std::int32_t>, ShownInRange<std::int32_t, std::int32_t>, Integer},
    {KW_VALUE_FLOAT, Load<float>, Store<float>, Leading<float>, LimitAs<float>, Shown<float>,
     ShownInRange<float, float>, FormatReal},
    {KW_VALUE_DOUBLE, Load<double>, Store<double>, Leading<double>, LimitAs<double>, Shown<double>,
     ShownInRange<double, double>, FormatReal},
};

}  // namespace

const NumberType* FindNumberType(DWORD valueType) {
    for (const NumberType& type : kNumberTypes) {
        if (type.valueType == valueType) return &type;
    }
    return nullptr;
}

// ---- The check

// What is no expression counts as the number that it begins with, or 0; so does what has no finite value, like sqrt(-1)
// and 1/0.
static double ValueOf(const char* text) {
    double value = 0;
    const char* position = text;
    return evaluateExpression(&position, &value) && std::isfinite(value) ? value : LeadingNumber(text);
}

static bool CheckField(HWND dialog, int index) {
    const DialogItem item = *ItemOf(dialog, index);
    if (KindOf(item) != KW_KIND_EDIT) return true;
    const HWND field = GetDlgItem(dialog, item.controlId);
    if (!field || !item.value) return false;
    const NumberType* const type = FindNumberType(ValueTypeOf(item));
    if (!type) return true;

    char text[kFieldTextSize] = "";
    GetWindowTextA(field, text, sizeof(text));
    const double value = ValueOf(text);
    const bool hasRange = std::fabs(item.maximum - item.minimum) > kLeastRange;
    const double shown = hasRange ? type->shownInRange(value, item.minimum, item.maximum) : type->shown(value);
    SetWindowTextA(field, type->format(item.text, shown).c_str());
    return true;
}

int CheckFields(HWND dialog, int index) { return HandleItems(dialog, index, CheckField); }

// ---- Spin steps

static int FindBySpinButton(HWND dialog, HWND spinButton) {
    for (int i = 0; i < ItemCountOf(dialog); ++i) {
        if (HandlesOf(dialog, i)->spinButton == spinButton) return i;
    }
    return -1;
}

void StepField(HWND dialog, NMUPDOWN* step) {
    const int index = FindBySpinButton(dialog, step->hdr.hwndFrom);
    const DialogItem* const item = ItemOf(dialog, index);
    if (!item || KindOf(*item) != KW_KIND_EDIT) return;
    const int delta = step->iDelta;
    step->iDelta = 0;  // the button's own position never moves
    const HWND field = GetDlgItem(dialog, item->controlId);

    char text[kStepTextSize] = "";
    GetWindowTextA(field, text, sizeof(text));
    double value = LeadingNumber(text);
    if (delta >= 1) value += 1;
    else if (delta < 0) value -= 1;
    SetWindowTextA(field, FormatReal(nullptr, value).c_str());
    CheckFields(dialog, index);
    FocusField(field);
}

void FocusField(HWND field) {
    if (!IsWindow(field)) return;
    SetFocus(field);
    SendMessageA(field, EM_SETSEL, 0, -1);
}
