#include "console.h"

#include <io.h>

#include <memory>

#include "frame/services.h"
#include "kit/handles.h"

std::string Text(UINT id) {
    char text[512];
    CopyResString(id, text, sizeof(text));
    return text;
}

static std::string FormatWith(DWORD flags, const void* source, DWORD error, char** values) {
    char* allocated = nullptr;
    const DWORD length = FormatMessageA(flags | FORMAT_MESSAGE_ALLOCATE_BUFFER, source, error, 0,
                                        reinterpret_cast<char*>(&allocated), 0, reinterpret_cast<va_list*>(values));
    const UniqueLocal<char> owner(allocated);
    return length > 0 ? std::string(allocated, length) : std::string();
}

std::string TextWith(UINT id, const std::vector<std::string>& values) {
    std::vector<char*> pointers;
    pointers.reserve(values.size());
    for (const std::string& value : values) pointers.push_back(const_cast<char*>(value.c_str()));
    return FormatWith(FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ARGUMENT_ARRAY, Text(id).c_str(), 0, pointers.data());
}

std::string SystemMessage(DWORD error) {
    constexpr DWORD kOneLine = FORMAT_MESSAGE_MAX_WIDTH_MASK;
    std::string text =
        FormatWith(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | kOneLine, nullptr, error, nullptr);
    while (!text.empty() && text.back() == ' ') text.pop_back();
    return text.empty() ? std::to_string(error) : text;
}

static HANDLE HandleOf(std::FILE* stream) {
    return GetStdHandle(stream == stderr ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE);
}

bool IsConsole(std::FILE* stream) {
    DWORD mode;
    return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

static std::wstring Widen(const std::string& text) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');  // never more characters than bytes
    wide.resize(static_cast<std::size_t>(
        MultiByteToWideChar(CP_ACP, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()))));
    return wide;
}

static std::string ToUtf8(const std::wstring& wide) {
    std::string text(wide.size() * 3, '\0');  // never more bytes for a UTF-16 unit
    text.resize(
        static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()),
                                                     text.data(), static_cast<int>(text.size()), nullptr, nullptr)));
    return text;
}

void Print(std::FILE* stream, const std::string& text) {
    if (text.empty()) return;
    const std::wstring wide = Widen(text);
    DWORD written = 0;
    if (IsConsole(stream)) {
        WriteConsoleW(HandleOf(stream), wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
        return;
    }
    const std::string bytes = ToUtf8(wide);
    std::fwrite(bytes.data(), 1, bytes.size(), stream);
    std::fflush(stream);
}
