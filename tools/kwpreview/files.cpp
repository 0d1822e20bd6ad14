#include "files.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <set>

#include "frame/services.h"
#include "kit/handles.h"
#include "kit/paths.h"

static std::string Lower(std::string text) {
    CharLowerBuffA(text.data(), static_cast<DWORD>(text.size()));
    return text;
}

std::string PathKey(const std::string& path) {
    char full[4 * MAX_PATH];
    const DWORD length = GetFullPathNameA(path.c_str(), sizeof(full), full, nullptr);
    return Lower(length > 0 && length < sizeof(full) ? full : path);
}

// The names of the files that a pattern matches, sorted.
static std::vector<std::string> MatchingNames(const std::string& pattern) {
    std::vector<std::string> names;
    WIN32_FIND_DATAA found;
    const UniqueFind search(FindFirstFileA(pattern.c_str(), &found));
    if (search.get() == INVALID_HANDLE_VALUE) return names;
    do {
        const bool isFolder = found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY;
        if (!isFolder && _stricmp(FindExtension(found.cFileName), ".png") != 0) names.emplace_back(found.cFileName);
    } while (FindNextFileA(search.get(), &found));
    std::sort(names.begin(), names.end(),
              [](const std::string& a, const std::string& b) { return Lower(a) < Lower(b); });
    return names;
}

static std::vector<Input> FilesOf(const std::string& folder, const char* pattern) {
    std::vector<Input> files;
    for (const std::string& name : MatchingNames(JoinPath(folder.c_str(), pattern))) {
        files.push_back({JoinPath(folder.c_str(), name.c_str())});
    }
    return files;
}

static std::vector<Input> Expand(const std::string& argument) {
    const char* const name = FindFileName(argument.c_str());
    // Neither character can be the second byte of another one.
    const bool isPattern = std::strpbrk(name, "*?");
    if (!isPattern && !IsDirectoryPath(argument.c_str())) return {{argument}};
    std::vector<Input> files = isPattern ? FilesOf(std::string(argument.c_str(), name), name) : FilesOf(argument, "*");
    if (files.empty()) files.push_back({argument, isPattern ? InputProblem::noMatch : InputProblem::emptyFolder});
    return files;
}

std::vector<Input> FindInputs(const std::vector<std::string>& arguments) {
    std::vector<Input> inputs;
    std::set<std::string> known;
    for (const std::string& argument : arguments) {
        for (Input& input : Expand(argument)) {
            if (known.insert(PathKey(input.path)).second) inputs.push_back(std::move(input));
        }
    }
    return inputs;
}
