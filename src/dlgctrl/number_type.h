// The numeric value types: what each makes of a number or a text. Knows no Windows.
#pragma once

#include <string>

// A numeric value type. Numbers travel as double, which holds every value of every type.
struct NumberType {
    double (*load)(const void* variable);
    void (*store)(void* variable, double number);  // narrows
    double (*leading)(const char* text);           // the number at a text's start, as the type stores it
    double (*limit)(double number, double minimum, double maximum);  // with bounds of the type
    double (*shown)(double number);                            // what a field shows of a number that has been typed
    std::string (*format)(const char* format, double number);  // null format: the type's own
};

// Signed integers of 8, 16 and 32 bits, float, double: the order of the host's constants.
extern const NumberType kNumberTypes[5];

// The number that a text begins with; 0 when it begins with none.
double LeadingNumber(const char* text);

// What a field shows when a user has typed `text` and leaves it: the value of the expression, forced into the range, in
// the format of the field.
std::string CheckedText(const NumberType& type, const char* text, double minimum, double maximum, const char* format);
