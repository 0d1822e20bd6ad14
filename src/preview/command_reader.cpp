// A command file is a text; the first well-formed line DIALOG_PREVIEW "path" names the drawing to preview.
#include "preview/command_reader.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "kit/paths.h"
#include "kit/sjis.h"
#include "kwdialogs.h"
#include "preview/dxf_reader.h"
#include "preview/file_type.h"
#include "preview/native_reader.h"
#include "preview/text_reader.h"

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
    if (closing == end || closing - at >= KW_MAX_PATH) return {};
    return std::string(at, closing);
}

// Takes the command file's text as the comment and returns the drawing's path.
std::string ReadCommandFile(const char* fileName, Comment* comment) {
    std::string path;
    const LoadedFile file(fileName);
    if (!file.data) return path;
    const ByteView text = file.AsText();
    LineWalk walk = {text.data, text.data + text.size};
    ByteView line;
    while (TakeLine(&walk, &line)) {
        AppendCommentLine(comment, line);
        if (path.empty()) path = PathOfLine(line);
    }
    return path;
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

// True for "C:part.dxf" in a command file on that drive, which the current directory's is when its path names none.
bool IsOnItsDrive(const char* fileName, const std::string& path) {
    char directory[KW_MAX_PATH] = "";
    const bool isNamed = fileName[0] && fileName[1] == ':';
    if (!isNamed && GetCurrentDirectoryA(sizeof(directory), directory) >= sizeof(directory)) return false;
    const char drive = isNamed || fileName[0] == '\\' ? fileName[0] : directory[0];
    return path.size() > 2 && path[2] != '\\' && path[2] != '/' && ((drive ^ path[0]) & ~0x20) == 0;
}

// A path taken relative to the folder of the command file, without touching the process's current directory.
std::string ResolveBeside(const char* fileName, const std::string& named) {
    const bool hasDrive = named.size() > 1 && named[1] == ':';
    if (hasDrive && !IsOnItsDrive(fileName, named)) return named;
    const std::string path = hasDrive ? named.substr(2) : named;
    const bool isRooted = path[0] == '\\' || path[0] == '/';
    if (isRooted && path[1] == path[0]) return path;
    if (isRooted) return fileName[0] && fileName[1] == ':' ? std::string(fileName, 2) + path : path;
    std::string folder(fileName, FindFileName(fileName));
    std::size_t at = 0;
    while (path.compare(at, 3, "..\\") == 0 && DropLastFolder(&folder)) at += 3;
    return folder + path.substr(at);
}

PreviewReader ReaderOf(FileTypeCode code) {
    switch (code) {
        case FT_LUMOS:
        case FT_QA: return ReadNativePreview;
        case FT_DXF: return ReadDxfPreview;
        case FT_EXF: return ReadTextDrawing;
        default: return nullptr;  // another command file too: nesting is not followed
    }
}

// Takes the command file's text as the comment. Empty, too, when the path is longer than a path can be.
std::string DrawingOf(const char* fileName, Comment* comment) {
    const std::string named = ReadCommandFile(fileName, comment);
    if (named.empty()) return {};
    const std::string path = ResolveBeside(fileName, named);
    return path.size() < KW_MAX_PATH ? path : std::string();
}

}  // namespace

std::string DrawingOfCommandFile(const char* fileName) {
    Comment none;
    return DrawingOf(fileName, &none);
}

HBITMAP PreviewCommandFile(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                           DWORD commentSize) {
    if (!fileName) return nullptr;
    Comment comment = ContinueComment(commentOut, commentSize);
    const std::string path = DrawingOf(fileName, &comment);
    if (path.empty()) return nullptr;
    const PreviewReader reader = ReaderOf(IdentifyFileType(path.c_str(), nullptr, 0));
    return reader ? reader(renderMode, path.c_str(), target, nullptr, 0) : nullptr;
}
