#include "support/cases.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/samples.h"

// Calls `use` with the name and the lines of each block.
template <typename Use>
static void ForEachBlock(const std::string& file, Use use) {
    const std::string all = "\n" + ReadWholeFile(CheckoutFolder() + "/tests/" + file) + "\n[";
    for (std::size_t at = all.find("\n["), next = 0; (next = all.find("\n[", at + 1)) != std::string::npos; at = next) {
        const std::size_t end = all.find("]\n", at);
        use(all.substr(at + 2, end - at - 2), all.substr(end + 2, next - end - 2));
    }
}

static std::string WithoutLineEnd(std::string text) {
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

std::string TextBlock(const std::string& file, const std::string& name) {
    std::string text = "no block of that name";
    ForEachBlock(file, [&](const std::string& block, const std::string& lines) {
        if (block == name) text = WithoutLineEnd(lines);
    });
    return text;
}

std::vector<TextCase> TextCases(const std::string& file) {
    std::vector<TextCase> cases;
    ForEachBlock(file, [&](const std::string& name, const std::string& lines) {
        const std::size_t bar = ("\n" + lines).find("\n==\n");
        if (bar == std::string::npos) return;
        cases.push_back({name, WithoutLineEnd(lines.substr(0, bar)), WithoutLineEnd(lines.substr(bar + 3))});
    });
    EXPECT_FALSE(cases.empty()) << file;
    return cases;
}

static std::string CellOf(const std::string& cell) {
    const std::size_t begin = cell.find_first_not_of(' '), end = cell.find_last_not_of(' ');
    const std::string text = begin == std::string::npos ? "" : cell.substr(begin, end + 1 - begin);
    return text.size() > 1 && text.front() == '"' ? text.substr(1, text.size() - 2) : text;
}

std::vector<std::vector<std::string>> TableRows(const std::string& file, const std::string& name) {
    std::vector<std::vector<std::string>> rows;
    std::istringstream lines(TextBlock(file, name));
    for (std::string line; std::getline(lines, line);) {
        rows.emplace_back();
        std::istringstream cells(line);
        for (std::string cell; std::getline(cells, cell, '|');) rows.back().push_back(CellOf(cell));
    }
    rows.erase(rows.begin());
    EXPECT_FALSE(rows.empty()) << file << " " << name;
    return rows;
}
