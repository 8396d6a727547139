// fuzz_main.cpp - one program for all targets, run by libFuzzer; the variable QV_FUZZ_TARGET names the one to run.
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "fuzz/targets.h"

namespace {

const QVFuzz::Target* Chosen() {
    const char* const name = std::getenv("QV_FUZZ_TARGET");
    for (const QVFuzz::Target& target : QVFuzz::Targets())
        if (name && std::string_view(name) == target.name) return &target;
    std::fprintf(stderr, "QV_FUZZ_TARGET names none of the targets:\n");
    for (const QVFuzz::Target& target : QVFuzz::Targets()) std::fprintf(stderr, "%s\n", target.name);
    std::exit(2);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const QVFuzz::Target& target = *Chosen();
    target.run({data, size});
    return 0;
}
