#include "support/samples.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

std::string Dxf(const std::string& pairs) {
    std::string text;
    for (std::size_t at = 0; at < pairs.size();) {
        const std::size_t end = std::min(pairs.find('|', at), pairs.size()), blank = pairs.find(' ', at);
        text += std::string(3 - std::min<std::size_t>(blank - at, 3), ' ') + pairs.substr(at, blank - at) + "\r\n" +
                pairs.substr(blank + 1, end - blank - 1) + "\r\n";
        at = end + 1;
    }
    return text;
}

std::string DxfDrawing(int width, int height, const std::string& entities) {
    return Dxf("0 SECTION|2 HEADER|9 $EXTMIN|10 0|20 0|9 $EXTMAX|10 " + std::to_string(width) + "|20 " +
               std::to_string(height) + "|0 ENDSEC|0 SECTION|2 ENTITIES|" + entities + "|0 ENDSEC|0 EOF");
}

std::string BytesAt(std::size_t size, std::initializer_list<std::pair<std::size_t, std::string>> parts) {
    std::string bytes(size, '\0');
    for (const auto& part : parts) bytes.replace(part.first, part.second.size(), part.second);
    return bytes;
}

std::string BitmapFile(int width, int height, int bitsPerPixel, const std::string& palette, const std::string& pixels,
                       int compression) {
    const auto colors = static_cast<std::uint32_t>(palette.size() / 4);
    const auto offset = static_cast<std::uint32_t>(14 + 40 + palette.size());
    const std::uint32_t file[] = {offset + static_cast<std::uint32_t>(pixels.size()), 0, offset};
    const std::int32_t info[] = {40, width, height, 1 | bitsPerPixel << 16, compression, 0, 0, 0};
    const std::uint32_t used[] = {colors, 0};
    return "BM" + Raw(file) + Raw(info) + Raw(used) + palette + pixels;
}

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
