#include "preview/command_reader.h"

#include "kit/guard.h"
#include "kwdialogs.h"
#include "preview/dispatch.h"
#include "preview/formats/command.h"

static_assert(kMaxPath == KW_MAX_PATH);

// The drive of the current directory; 0 when that has none.
static char CurrentDrive() {
    char directory[KW_MAX_PATH] = "";
    const DWORD length = GetCurrentDirectoryA(sizeof(directory), directory);
    return length < sizeof(directory) && directory[0] && directory[1] == ':' ? directory[0] : '\0';
}

static std::string DrawingOf(const char* fileName, Comment* comment) {
    const LoadedFile file(fileName);
    if (!file.data) return {};
    return ResolveBeside(fileName, TakeCommandFile(file.AsText(), comment), CurrentDrive());
}

std::string DrawingOfCommandFile(const char* fileName) {
    Comment none;
    return DrawingOf(fileName, &none);
}

HBITMAP PreviewCommandFile(DWORD renderMode, const char* fileName, const RECT* target, char* commentOut,
                           DWORD commentSize) {
    if (!fileName) return nullptr;
    Comment comment = ContinueComment(commentOut, commentSize);
    const std::string path = Guarded(std::string(), [&] { return DrawingOf(fileName, &comment); });
    if (path.empty()) return nullptr;
    const PreviewReader reader = CommandReaderFor(IdentifyFileType(path.c_str(), nullptr, 0));
    return reader ? reader(renderMode, path.c_str(), target, nullptr, 0) : nullptr;
}
