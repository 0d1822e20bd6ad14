// Files that exist already: the project's samples.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "generate/files.h"

std::string ReadWholeFile(const std::string& path);

// The folder of this checkout.
std::string CheckoutFolder();

// Every file that the project's samples folder and its sub-folders hold: path and contents.
std::vector<std::pair<std::string, std::string>> SampleFiles();

// `contents` with a few bytes changed; the same for the same seed.
std::string WithFlippedBytes(std::string contents, std::uint32_t seed);
