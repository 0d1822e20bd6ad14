#include "arguments.h"

#include <charconv>
#include <cstring>

#include "console.h"
#include "resource.h"

namespace {

struct Flag {
    const char* name;
    bool Options::*value;
};
constexpr Flag kFlags[] = {
    {"--mono", &Options::mono}, {"--frames", &Options::frames},      {"--comment", &Options::comment},
    {"--kind", &Options::kind}, {"--help", &Options::help},          {"-h", &Options::help},
    {"/?", &Options::help},     {"--basic-dxf", &Options::basicDxf},
};

// A number of pixels, digits alone; moves on behind it.
bool TakeSide(const char** at, long* out) {
    const char* const end = *at + std::strlen(*at);
    if (**at == '-') return false;
    const auto [next, error] = std::from_chars(*at, end, *out);
    if (error != std::errc() || *out < kMinSide || *out > kMaxSide) return false;
    *at = next;
    return true;
}

bool ParseSize(const char* text, SIZE* out) {
    SIZE size = {};
    if (!TakeSide(&text, &size.cx) || (*text != 'x' && *text != 'X')) return false;
    ++text;
    if (!TakeSide(&text, &size.cy) || *text) return false;
    *out = size;
    return true;
}

bool TakeFlag(const std::string& argument, Options* options) {
    for (const Flag& flag : kFlags) {
        if (argument == flag.name) return options->*flag.value = true;
    }
    return false;
}

bool TakeValue(const std::string& option, const char* value, Options* options, std::string* complaint) {
    if (!value || !*value) {
        *complaint = TextWith(IDS_MISSING_VALUE, {option});
        return false;
    }
    if (option == "-o") {
        options->folder = value;
        return true;
    }
    if (ParseSize(value, &options->size)) return true;
    *complaint = TextWith(IDS_BAD_SIZE, {value, std::to_string(kMinSide), std::to_string(kMaxSide)});
    return false;
}

}  // namespace

bool ParseArguments(int count, const char* const* arguments, Options* options, std::string* complaint) {
    bool optionsEnded = false;
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        if (!optionsEnded && TakeFlag(argument, options)) continue;
        if (!optionsEnded && (argument == "-o" || argument == "--size")) {
            ++i;
            if (!TakeValue(argument, i < count ? arguments[i] : nullptr, options, complaint)) return false;
        } else if (!optionsEnded && argument == "--") {
            optionsEnded = true;
        } else if (!optionsEnded && argument[0] == '-') {
            *complaint = TextWith(IDS_UNKNOWN_OPTION, {argument});
            return false;
        } else if (!argument.empty()) {
            options->inputs.push_back(argument);
        }
    }
    if (options->help || !options->inputs.empty()) return true;
    *complaint = Text(IDS_NO_INPUT);
    return false;
}
