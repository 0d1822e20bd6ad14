#include "console.h"

#include <memory>

#include "kit/handles.h"

static bool outputFailed = false;

std::wstring Text(UINT id) {
    const wchar_t* text = nullptr;  // with a size of 0, the address of the resource itself
    const int length = LoadStringW(GetModuleHandleW(nullptr), id, reinterpret_cast<wchar_t*>(&text), 0);
    return {text, static_cast<std::size_t>(length)};
}

static std::wstring FormatWith(DWORD flags, const void* source, DWORD error, wchar_t** values) {
    wchar_t* allocated = nullptr;
    const DWORD length = FormatMessageW(flags | FORMAT_MESSAGE_ALLOCATE_BUFFER, source, error, 0,
                                        reinterpret_cast<wchar_t*>(&allocated), 0, reinterpret_cast<va_list*>(values));
    const UniqueLocal<wchar_t> owner(allocated);
    return length > 0 ? std::wstring(allocated, length) : std::wstring();
}

std::wstring TextWith(UINT id, const std::vector<std::wstring>& values) {
    std::vector<wchar_t*> pointers;
    pointers.reserve(values.size());
    for (const std::wstring& value : values) pointers.push_back(const_cast<wchar_t*>(value.c_str()));
    return FormatWith(FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ARGUMENT_ARRAY, Text(id).c_str(), 0, pointers.data());
}

std::wstring SystemMessage(DWORD error) {
    constexpr DWORD kOneLine = FORMAT_MESSAGE_MAX_WIDTH_MASK;
    std::wstring text =
        FormatWith(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | kOneLine, nullptr, error, nullptr);
    while (!text.empty() && text.back() == L' ') text.pop_back();
    return text.empty() ? std::to_wstring(error) : text;
}

std::wstring Widen(const std::string& text) {
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

static HANDLE HandleOf(std::FILE* stream) {
    return GetStdHandle(stream == stderr ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE);
}

bool IsConsole(std::FILE* stream) {
    DWORD mode;
    return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

static bool Write(std::FILE* stream, const std::wstring& text) {
    DWORD written = 0;
    if (IsConsole(stream)) {
        return WriteConsoleW(HandleOf(stream), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != 0;
    }
    const std::string bytes = ToUtf8(text);
    return std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size() && std::fflush(stream) == 0;
}

void Print(std::FILE* stream, const std::wstring& text) {
    if (!Write(stream, text) && stream == stdout) outputFailed = true;
}

bool OutputFailed() { return outputFailed; }
