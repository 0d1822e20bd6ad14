#include "dlgctrl/expression.h"

#include <cmath>
#include <cstdint>
#include <cstring>

#include "kit/numbers.h"

namespace {

constexpr double kTolerance = 1e-8;  // two values that differ by no more are equal
constexpr double kRadiansPerDegree = 0.017453292519943295;
constexpr double kDegreesPerRadian = 57.29577951308232;
constexpr int kMostNested = 128;  // parentheses in parentheses; as many as fit a field
constexpr std::size_t kNameLength = 8;
constexpr char kHalfWidthDegree = '\xDF';

// Between two tokens `at` stands at the next one: each taker skips the blanks behind what it took.
struct Parser {
    const char* at;  // at the closing zero, but not necessarily the text's own, after an error
    const char* end;
    int nested;
    int error;
    const char* errorAt;
};

double Expression(Parser& in);

// The first error counts. Nothing is accepted from then on, so every level returns.
double Fail(Parser& in, int error) {
    if (in.error == 0) {
        in.error = error;
        in.errorAt = in.at;
    }
    in.at = in.end = "";
    return 0;
}

void SkipBlanks(Parser& in) {
    while (*in.at == ' ' || *in.at == '\t') ++in.at;
}

bool Accept(Parser& in, char token) {
    if (*in.at != token) return false;
    ++in.at;
    SkipBlanks(in);
    return true;
}

bool Accept(Parser& in, const char* token) {
    if (*in.at != *token) return false;
    const std::size_t length = std::strlen(token);
    if (std::strncmp(in.at, token, length) != 0) return false;
    in.at += length;
    SkipBlanks(in);
    return true;
}

bool Expect(Parser& in, char token) {
    if (Accept(in, token)) return true;
    Fail(in, kSyntaxError);
    return false;
}

// ASCII only, whatever the locale.
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }
bool IsLetter(char c) { return Lower(c) >= 'a' && Lower(c) <= 'z'; }

// ---- Numbers

// decimal = as strtod reads it
inline double Decimal(Parser& in) {
    const ByteView rest = {reinterpret_cast<const std::uint8_t*>(in.at), static_cast<std::size_t>(in.end - in.at)};
    std::size_t used = 0;
    const double value = ParseDecimal(rest, &used);
    if (used == 0) return Fail(in, kSyntaxError);  // a lone point
    in.at += used;
    return value;
}

// hexadecimal = any ( "x" | "X" ) { digit }
// Deliberate: the first character does not have to be "0". Else a user who types 1x10 would get 1, no longer 16. The
// value wraps at 32 bits and is signed.
double Hexadecimal(Parser& in) {
    std::uint32_t value = 0;
    for (in.at += 2;; ++in.at) {
        const char c = Lower(*in.at);
        if (IsDigit(c)) value = value * 16 + static_cast<std::uint32_t>(c - '0');
        else if (c >= 'a' && c <= 'f') value = value * 16 + static_cast<std::uint32_t>(c - 'a' + 10);
        else return static_cast<std::int32_t>(value);
    }
}

// A part of an angle: digits and the mark that has to follow at once.
double AnglePart(Parser& in, char mark) {
    const double value = Decimal(in);
    if (*in.at != mark) return Fail(in, kSyntaxError);
    ++in.at;
    return value;
}

// number = ( hexadecimal | decimal ) [ ( ":" | degree ) decimal "'" [ decimal '"' ] ]
inline double Number(Parser& in) {
    double value = in.at[1] == 'x' || in.at[1] == 'X' ? Hexadecimal(in) : Decimal(in);
    if ((*in.at == ':' || *in.at == kHalfWidthDegree) && IsDigit(in.at[1])) {
        ++in.at;
        value += AnglePart(in, '\'') / 60;
        if (IsDigit(*in.at)) value += AnglePart(in, '"') / 3600;
    }
    SkipBlanks(in);
    return value;
}

// ---- Names

struct Name {
    const char* name;
    int argumentCount;  // 0: a constant, without parentheses
    double (*value)(double a, double b);
};
constexpr Name kNames[] = {
    {"abs", 1, [](double a, double) { return std::fabs(a); }},
    {"acos", 1, [](double a, double) { return std::acos(a) * kDegreesPerRadian; }},
    {"asin", 1, [](double a, double) { return std::asin(a) * kDegreesPerRadian; }},
    {"atan", 1, [](double a, double) { return std::atan(a) * kDegreesPerRadian; }},
    {"atan2", 2, [](double a, double b) { return std::atan2(a, b) * kDegreesPerRadian; }},
    {"cos", 1, [](double a, double) { return std::cos(a * kRadiansPerDegree); }},
    {"hypot", 2, [](double a, double b) { return std::sqrt(a * a + b * b); }},
    {"pai", 0, [](double, double) { return 3.141592653589793; }},
    {"sin", 1, [](double a, double) { return std::sin(a * kRadiansPerDegree); }},
    {"sqrt", 1, [](double a, double) { return std::sqrt(a); }},
    {"tan", 1, [](double a, double) { return std::tan(a * kRadiansPerDegree); }},
};

// Takes letters and digits, all of them, and looks the first few up; null when nothing has that name.
const Name* TakeName(Parser& in) {
    char text[kNameLength + 1] = "";
    for (std::size_t i = 0; IsLetter(*in.at) || IsDigit(*in.at); ++i, ++in.at) {
        if (i < kNameLength) text[i] = Lower(*in.at);
    }
    SkipBlanks(in);
    for (const Name& row : kNames) {
        if (row.name[0] == text[0] && std::strcmp(row.name, text) == 0) return &row;
    }
    return nullptr;
}

// named = constant | function "(" expression [ "," expression ] ")"
double Named(Parser& in) {
    const char* const begin = in.at;
    const Name* const row = TakeName(in);
    if (!row) {
        in.at = begin;
        return Fail(in, kUnknownName);
    }
    double arguments[2] = {};
    for (int i = 0; i < row->argumentCount; ++i) {
        if (!Expect(in, i == 0 ? '(' : ',')) return 0;
        arguments[i] = Expression(in);
    }
    if (row->argumentCount > 0 && !Expect(in, ')')) return 0;
    return row->value(arguments[0], arguments[1]);
}

// ---- Levels, from the highest precedence to the lowest
//
// Inline, because most numbers pass through all of them with nothing to do there.

// operand = "(" expression ")" | number | named
inline double Operand(Parser& in) {
    if (Accept(in, '(')) {
        const double value = Expression(in);
        return Expect(in, ')') ? value : 0;
    }
    if (IsDigit(*in.at) || *in.at == '.') return Number(in);
    if (IsLetter(*in.at)) return Named(in);
    return Fail(in, kSyntaxError);
}

// unary = { "-" | "+" } operand
inline double Unary(Parser& in) {
    bool negative = false;
    while (*in.at == '-' || *in.at == '+') {
        negative ^= *in.at == '-';
        ++in.at;
        SkipBlanks(in);
    }
    const double value = Operand(in);
    return negative ? -value : value;
}

// multiplicative = unary { ( "*" | "/" ) unary }
inline double Multiplicative(Parser& in) {
    double value = Unary(in);
    for (;;) {
        if (Accept(in, '*')) value *= Unary(in);
        else if (Accept(in, '/')) value /= Unary(in);
        else return value;
    }
}

// additive = multiplicative { ( "+" | "-" ) multiplicative }
inline double Additive(Parser& in) {
    double value = Multiplicative(in);
    for (;;) {
        if (Accept(in, '+')) value += Multiplicative(in);
        else if (Accept(in, '-')) value -= Multiplicative(in);
        else return value;
    }
}

bool Equal(double a, double b) { return std::fabs(a - b) <= kTolerance; }
bool Differ(double a, double b) { return std::fabs(a - b) > kTolerance; }

struct Comparator {
    const char* token;
    bool (*holds)(double a, double b);
};
constexpr Comparator kComparators[] = {
    // the longer ones first
    {"==", Equal},
    {"!=", Differ},
    {"<>", Differ},
    {"><", Differ},
    {"<=", [](double a, double b) { return a - b - kTolerance <= 0; }},
    {">=", [](double a, double b) { return a - b + kTolerance >= 0; }},
    {"=", Equal},
    // Deliberate: without tolerance. With it, users could no longer tell two values apart that "=" takes as equal.
    {"<", [](double a, double b) { return a < b; }},
    {">", [](double a, double b) { return a > b; }},
};

const Comparator* TakeComparator(Parser& in) {
    const char first = *in.at;
    if (first != '=' && first != '<' && first != '>' && first != '!') return nullptr;
    for (const Comparator& row : kComparators) {
        if (Accept(in, row.token)) return &row;
    }
    return nullptr;
}

// comparison = additive { comparator additive }
inline double Comparison(Parser& in) {
    double value = Additive(in);
    while (const Comparator* const comparator = TakeComparator(in)) value = comparator->holds(value, Additive(in));
    return value;
}

// logical = comparison { ( "&&" | "||" ) comparison }
// Deliberate: both at one level, left to right. By the usual precedence 1 || 0 && 0, which gives users 0, would be 1.
inline double Logical(Parser& in) {
    double value = Comparison(in);
    for (;;) {
        const bool before = value != 0;
        if (Accept(in, "&&")) value = (Comparison(in) != 0) && before;
        else if (Accept(in, "||")) value = (Comparison(in) != 0) || before;
        else return value;
    }
}

// expression = logical [ "?" logical ":" logical ]
double Expression(Parser& in) {
    if (++in.nested > kMostNested) return Fail(in, kSyntaxError);
    double value = Logical(in);
    if (Accept(in, '?')) {
        const double whenTrue = Logical(in);
        const double whenFalse = Expect(in, ':') ? Logical(in) : 0;
        value = value != 0 ? whenTrue : whenFalse;
    }
    --in.nested;
    return value;
}

}  // namespace

int evaluateExpression(const char** position, double* result, int* error) {
    Parser in = {*position, *position + std::strlen(*position), 0, 0, nullptr};
    SkipBlanks(in);
    const double value = Expression(in);
    *result = in.error ? 0 : value;
    *position = in.error ? in.errorAt : in.at;
    if (error) *error = in.error;
    return in.error == 0;
}
