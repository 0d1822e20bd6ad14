// Feeds one target of targets.h: kwfuzz --target=NAME [libFuzzer's arguments]. tools/fuzz.sh runs it.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "fuzz/targets.h"

static const FuzzTarget* target;

// The target's argument, the first one, makes room for the length of its inputs.
extern "C" int LLVMFuzzerInitialize(const int* argumentCount, char*** arguments) {
    const std::string wanted = *argumentCount > 1 ? (*arguments)[1] : "";
    for (std::size_t i = 0; i < kFuzzTargetCount; ++i) {
        if (wanted == std::string("--target=") + kFuzzTargets[i].name) target = &kFuzzTargets[i];
    }
    if (!target) {
        for (std::size_t i = 0; i < kFuzzTargetCount; ++i) std::puts(kFuzzTargets[i].name);
        std::exit(2);
    }
    static std::string longest = "-max_len=" + std::to_string(target->longest);
    (*arguments)[1] = longest.data();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    target->run({data, size});
    return 0;
}
