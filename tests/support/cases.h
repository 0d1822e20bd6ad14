// What tests try, kept as text: files beside the tests, in blocks under lines "[name]". What stands before the first
// block explains them.
#pragma once

#include <string>
#include <vector>

// The block of that name in a file below tests/.
std::string TextBlock(const std::string& file, const std::string& name);

// The blocks that hold a line "==": what is given above it, what is expected below it.
struct TextCase {
    std::string name, given, expected;
};
std::vector<TextCase> TextCases(const std::string& file);

// The rows of a block that is a table: cells between bars, without the quotes around them; the first row heads them.
std::vector<std::vector<std::string>> TableRows(const std::string& file, const std::string& name);
