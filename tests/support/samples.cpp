#include "support/samples.h"

#include <windows.h>

#include <random>

#include "support/drawings.h"
#include "support/temp_folder.h"

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

std::string BitmapFile(int width, int height, int bitsPerPixel, const std::string& palette, const std::string& pixels) {
    const auto offset = static_cast<DWORD>(sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER) + palette.size());
    const BITMAPFILEHEADER file = {0x4D42, offset + static_cast<DWORD>(pixels.size()), 0, 0, offset};  // "BM"
    const auto colors = static_cast<DWORD>(palette.size() / 4);
    const BITMAPINFOHEADER info = {sizeof(info), width, height, 1, static_cast<WORD>(bitsPerPixel), BI_RGB, 0, 0, 0,
                                   colors,       0};
    return Raw(file) + Raw(info) + palette + pixels;
}

static void CollectFiles(const std::string& folder, std::vector<std::pair<std::string, std::string>>* out) {
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA((folder + "/*").c_str(), &found);
    for (BOOL more = search != INVALID_HANDLE_VALUE; more; more = FindNextFileA(search, &found)) {
        const std::string child = folder + "/" + found.cFileName;
        if (found.cFileName[0] == '.') continue;
        if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) CollectFiles(child, out);
        else out->emplace_back(child, ReadWholeFile(child));
    }
    FindClose(search);
}

std::vector<std::pair<std::string, std::string>> SampleFiles() {
    std::string root = __FILE__;  // tests/support/samples.cpp of the checkout
    for (char& c : root) c = c == '\\' ? '/' : c;
    root.resize(root.rfind("/tests/"));
    std::vector<std::pair<std::string, std::string>> files;
    CollectFiles((root[0] == '/' ? "Z:" : "") + root + "/samples", &files);
    return files;
}

std::string WithFlippedBytes(std::string contents, std::uint32_t seed) {
    std::mt19937 random(seed);
    for (int i = 0; i < 8 && !contents.empty(); ++i)
        contents[random() % contents.size()] = static_cast<char>(random() & 0xFF);
    return contents;
}
