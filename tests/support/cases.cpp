#include "support/cases.h"

#include <gtest/gtest.h>

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
