#include "support/samples.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

std::string ReadWholeFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string CheckoutFolder() {
    std::string root = __FILE__;  // tests/support/samples.cpp of the checkout
    std::replace(root.begin(), root.end(), '\\', '/');
    root.resize(root.rfind("/tests/"));
#ifdef _WIN32
    if (root[0] == '/') root = "Z:" + root;  // built elsewhere, run by Wine
#endif
    return root;
}

std::vector<std::pair<std::string, std::string>> SampleFiles() {
    std::vector<std::pair<std::string, std::string>> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(CheckoutFolder() + "/samples")) {
        if (entry.is_regular_file())
            files.emplace_back(entry.path().generic_string(), ReadWholeFile(entry.path().string()));
    }
    return files;
}

std::string WithFlippedBytes(std::string contents, std::uint32_t seed) {
    std::mt19937 random(seed);
    for (int i = 0; i < 8 && !contents.empty(); ++i)
        contents[random() % contents.size()] = static_cast<char>(random() & 0xFF);
    return contents;
}
