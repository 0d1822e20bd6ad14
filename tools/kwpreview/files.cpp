#include "files.h"

#include <windows.h>

#include <shlwapi.h>

#include <algorithm>
#include <set>

#include "kit/handles.h"

static std::wstring Lower(std::wstring text) {
    CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    return text;
}

std::wstring FullPath(const FilePath& path) {
    std::wstring full(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full;
}

std::wstring PathKey(const FilePath& path) { return Lower(FullPath(path)); }

bool IsFolder(const FilePath& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool HasPngExtension(const FilePath& path) { return Lower(path.extension().wstring()) == L".png"; }

static void SortByName(std::vector<FilePath>* names) {
    std::sort(names->begin(), names->end(), [](const FilePath& a, const FilePath& b) { return Lower(a) < Lower(b); });
}

// A sub-folder that leads elsewhere, perhaps in a circle, is none.
static bool IsSubfolder(const WIN32_FIND_DATAW& found) {
    const std::wstring name = found.cFileName;
    return !(found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) && name != L"." && name != L"..";
}

static void AddFiles(const FilePath& folder, const FilePath& pattern, bool recursive, std::vector<Input>* files) {
    WIN32_FIND_DATAW found;
    std::vector<FilePath> names, subfolders;
    const UniqueFind search(FindFirstFileW((folder / L"*").c_str(), &found));
    if (search.get() == INVALID_HANDLE_VALUE) return;
    do {
        if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            if (recursive && IsSubfolder(found)) subfolders.emplace_back(found.cFileName);
        } else if (PathMatchSpecW(found.cFileName, pattern.c_str()) && !HasPngExtension(found.cFileName)) {
            names.emplace_back(found.cFileName);
        }
    } while (FindNextFileW(search.get(), &found));
    SortByName(&names);
    SortByName(&subfolders);
    for (const FilePath& name : names) files->push_back({folder / name});
    for (const FilePath& name : subfolders) AddFiles(folder / name, pattern, recursive, files);
}

static std::vector<Input> Expand(const FilePath& argument, bool recursive) {
    const bool isPattern = argument.filename().wstring().find_first_of(L"*?") != std::wstring::npos;
    if (!isPattern && !IsFolder(argument)) return {{argument}};
    std::vector<Input> files;
    if (isPattern) AddFiles(argument.parent_path(), argument.filename(), recursive, &files);
    else AddFiles(argument, L"*", recursive, &files);
    if (files.empty()) files.push_back({argument, isPattern ? InputProblem::noMatch : InputProblem::emptyFolder});
    return files;
}

std::vector<Input> FindInputs(const std::vector<FilePath>& arguments, bool recursive) {
    std::vector<Input> inputs;
    std::set<std::wstring> known;
    for (const FilePath& argument : arguments) {
        for (Input& input : Expand(argument, recursive)) {
            if (known.insert(PathKey(input.path)).second) inputs.push_back(std::move(input));
        }
    }
    return inputs;
}
