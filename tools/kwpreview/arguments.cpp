#include "arguments.h"

#include "console.h"
#include "resource.h"

namespace {

struct Flag {
    const wchar_t* name;
    bool Options::*value;
};
constexpr Flag kFlags[] = {
    {L"--mono", &Options::mono},       {L"--frames", &Options::frames},      {L"--comment", &Options::comment},
    {L"--kind", &Options::kind},       {L"--strict", &Options::strict},      {L"--recursive", &Options::recursive},
    {L"--version", &Options::version}, {L"--help", &Options::help},          {L"-h", &Options::help},
    {L"/?", &Options::help},           {L"--basic-dxf", &Options::basicDxf},
};

// A number of pixels, digits alone; moves on behind it.
bool TakeSide(const wchar_t** at, long* out) {
    const wchar_t* end = *at;
    long value = 0;
    for (; *end >= L'0' && *end <= L'9' && value <= kMaxSide; ++end) value = value * 10 + (*end - L'0');
    if (value < kMinSide || value > kMaxSide) return false;
    *at = end;
    *out = value;
    return true;
}

bool ParseSize(const wchar_t* text, SIZE* out) {
    SIZE size = {};
    if (!TakeSide(&text, &size.cx) || (*text != L'x' && *text != L'X')) return false;
    ++text;
    if (!TakeSide(&text, &size.cy) || *text) return false;
    *out = size;
    return true;
}

bool TakeFlag(const std::wstring& argument, Options* options) {
    for (const Flag& flag : kFlags) {
        if (argument == flag.name) return options->*flag.value = true;
    }
    return false;
}

bool TakeValue(const std::wstring& option, const std::wstring& value, Options* options, std::wstring* complaint) {
    if (value.empty()) {
        *complaint = TextWith(IDS_MISSING_VALUE, {option});
        return false;
    }
    if (option == L"-o") {
        options->output = value;
        return true;
    }
    if (ParseSize(value.c_str(), &options->size)) return true;
    *complaint = TextWith(IDS_BAD_SIZE, {value, std::to_wstring(kMinSide), std::to_wstring(kMaxSide)});
    return false;
}

}  // namespace

bool ParseArguments(const std::vector<std::wstring>& arguments, Options* options, std::wstring* complaint) {
    bool optionsEnded = false;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::wstring& argument = arguments[i];
        if (!optionsEnded && TakeFlag(argument, options)) continue;
        if (!optionsEnded && (argument == L"-o" || argument == L"--size")) {
            ++i;
            const std::wstring value = i < arguments.size() ? arguments[i] : std::wstring();
            if (!TakeValue(argument, value, options, complaint)) return false;
        } else if (!optionsEnded && argument == L"--") {
            optionsEnded = true;
        } else if (!optionsEnded && argument[0] == L'-') {
            *complaint = TextWith(IDS_UNKNOWN_OPTION, {argument});
            return false;
        } else if (!argument.empty()) {
            options->inputs.emplace_back(argument);
        }
    }
    if (options->help || options->version || !options->inputs.empty()) return true;
    *complaint = Text(IDS_NO_INPUT);
    return false;
}
