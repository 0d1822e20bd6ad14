#include "preview/command_reader.h"

#include "kwdialogs.h"
#include "preview/dispatch.h"
#include "preview/formats/command.h"

static_assert(kMaxPath == KW_MAX_PATH);

static std::string DrawingOf(const char* fileName, Comment* comment) {
    const LoadedFile file(fileName);
    return file.data ? ResolveBeside(fileName, TakeCommandFile(file.AsText(), comment)) : std::string();
}

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
    const PreviewReader reader = CommandReaderFor(IdentifyFileType(path.c_str(), nullptr, 0));
    return reader ? reader(renderMode, path.c_str(), target, nullptr, 0) : nullptr;
}
