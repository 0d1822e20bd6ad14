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

std::string Beside(const char* commandFile, const std::string& path) {
    const bool hasDrive = path.size() > 1 && path[1] == ':';
    const bool isRooted = path[0] == '\\' || path[0] == '/';
    if (hasDrive || (isRooted && path[1] == path[0])) return path;
    if (isRooted) return commandFile[0] && commandFile[1] == ':' ? std::string(commandFile, 2) + path : path;
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

std::string ResolveBeside(const char* commandFile, const std::string& path) {
    if (path.empty()) return path;
    const std::string resolved = Beside(commandFile, path);
    return resolved.size() < kMaxPath ? resolved : std::string();
}
