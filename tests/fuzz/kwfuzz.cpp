// Feeds one target of targets.h: kwfuzz --target=NAME [libFuzzer's arguments]. tools/fuzz.sh runs it.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/targets.h"

static const FuzzTarget* target;

extern "C" int LLVMFuzzerInitialize(int* argumentCount, char*** arguments) {
    static constexpr char kOption[] = "--target=";
    static std::vector<char*> all;
    static std::string longest;
    for (int i = 0; i < *argumentCount; ++i) {
        char* const argument = (*arguments)[i];
        if (i == 0 || std::strncmp(argument, kOption, sizeof(kOption) - 1) != 0) {
            all.push_back(argument);
            continue;
        }
        for (std::size_t j = 0; j < kFuzzTargetCount; ++j) {
            if (std::strcmp(kFuzzTargets[j].name, argument + sizeof(kOption) - 1) == 0) target = &kFuzzTargets[j];
        }
    }
    if (!target) {
        for (std::size_t j = 0; j < kFuzzTargetCount; ++j) std::puts(kFuzzTargets[j].name);
        std::exit(2);
    }
    longest = "-max_len=" + std::to_string(target->longest);
    all.insert(all.begin() + 1, longest.data());
    *argumentCount = static_cast<int>(all.size());
    all.push_back(nullptr);
    *arguments = all.data();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    target->run({data, size});
    return 0;
}
