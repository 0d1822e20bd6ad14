// Arithmetic that a user may type into a numeric field.
#pragma once

constexpr int kSyntaxError = 1001;
constexpr int kUnknownName = 1003;

// Evaluates the expression at the start of a text: + - * / and parentheses, comparisons, && and ||, a ? b : c, decimal
// and hexadecimal numbers, angles in degrees, minutes and seconds (12:30'36"), functions of angles in degrees. The
// grammar stands in the source. The decimal point is '.' in every locale.
//
// 1 with the value in `result` and the position behind the expression and the blanks that follow, whatever comes then.
// 0 when it has an error: `result` is 0, the position stands at the error, and `error`, when wanted, tells which.
int evaluateExpression(const char** position, double* result, int* error = nullptr);
