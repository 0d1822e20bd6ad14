#include "preview/formats/command.h"

#include <algorithm>
#include <cstring>

#include "kit/paths.h"
#include "kit/sjis.h"

namespace {

constexpr char kKeyword[] = "DIALOG_PREVIEW";

// The path that a line names, between double quotes and behind one separating byte; empty when the line is no such
// line, is malformed, or its path is longer than a path can be.
std::string PathOfLine(ByteView line) {
    constexpr std::size_t kQuotesAt = sizeof(kKeyword);  // the keyword and the separator
    if (!MatchAt(line, 0, kKeyword) || line.size <= kQuotesAt) return {};
    const auto* at = line.data + kQuotesAt;
    const auto* const end = line.data + line.size;
    while (at < end && *at == '"') ++at;
    const auto* const closing = std::find(at, end, '"');
    if (closing == end || static_cast<std::size_t>(closing - at) >= kMaxPath) return {};
    return std::string(at, closing);
}

// Takes the last folder off a path that ends in a separator; false when there is none to take.
bool DropLastFolder(std::string* folder) {
    if (folder->empty()) return false;
    const std::string unended = folder->substr(0, folder->size() - 1);
    const char* const name = FindFileName(unended.c_str());
    if (!*name || std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0) return false;
    folder->resize(static_cast<std::size_t>(name - unended.c_str()));
    return true;
}

bool HasDrive(const char* path) { return path[0] && path[1] == ':'; }
bool IsSeparator(char c) { return c == '\\' || c == '/'; }

// Whether a path like "C:part.dxf" counts from the command file's folder: when that lies on the same drive.
bool IsOnItsDrive(const char* commandFile, const std::string& path, char currentDrive) {
    const char drive = HasDrive(commandFile) || IsSeparator(commandFile[0]) ? commandFile[0] : currentDrive;
    return path.size() > 2 && !IsSeparator(path[2]) && ((drive ^ path[0]) & ~0x20) == 0;
}

std::string Beside(const char* commandFile, const std::string& named, char currentDrive) {
    const bool hasDrive = HasDrive(named.c_str());
    if (hasDrive && !IsOnItsDrive(commandFile, named, currentDrive)) return named;
    std::string path = hasDrive ? named.substr(2) : named;
    const bool isRooted = IsSeparator(path[0]);
    if (isRooted && path[1] == path[0]) return path;
    if (isRooted) return HasDrive(commandFile) ? std::string(commandFile, 2) + path : path;
    std::string folder(commandFile, FindFileName(commandFile));
    std::size_t at = 0;
    while (path.compare(at, 3, "..\\") == 0 && DropLastFolder(&folder)) at += 3;
    return folder + path.substr(at);
}

}  // namespace

std::string TakeCommandFile(ByteView file, Comment* comment) {
    std::string path;
    LineWalk walk = {file.data, file.data + file.size};
    ByteView line;
    while (TakeLine(&walk, &line)) {
        AppendCommentLine(comment, line);
        if (path.empty()) path = PathOfLine(line);
    }
    return path;
}

std::string ResolveBeside(const char* commandFile, const std::string& path, char currentDrive) {
    if (path.empty()) return path;
    const std::string resolved = Beside(commandFile, path, currentDrive);
    return resolved.size() < kMaxPath ? resolved : std::string();
}
