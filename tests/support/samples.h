// Small files, made where they are needed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

// The bytes of a number, as a file has them.
template <typename T>
std::string Raw(const T& number) {
    return {reinterpret_cast<const char*>(&number), sizeof(number)};
}

// DXF text from group pairs: "0 LINE|10 5" becomes "  0\r\nLINE\r\n 10\r\n5\r\n".
std::string Dxf(const std::string& pairs);

// The same inside a header with the extents (0,0)-(width,height) and an entities section.
std::string DxfDrawing(int width, int height, const std::string& entities);

// `size` zero bytes with texts put at their offsets.
std::string BytesAt(std::size_t size, std::initializer_list<std::pair<std::size_t, std::string>> parts);

// A Windows bitmap file with a header of 40 bytes; rows bottom up, padded by the caller, or runs.
std::string BitmapFile(int width, int height, int bitsPerPixel, const std::string& palette, const std::string& pixels,
                       int compression = 0);

std::string ReadWholeFile(const std::string& path);

// The folder of this checkout.
std::string CheckoutFolder();

// Every file that the project's samples folder and its sub-folders hold: path and contents.
std::vector<std::pair<std::string, std::string>> SampleFiles();

// `contents` with a few bytes changed; the same for the same seed.
std::string WithFlippedBytes(std::string contents, std::uint32_t seed);
