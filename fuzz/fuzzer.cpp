// Any one target under libFuzzer:
//
//   kestrel_fuzz --target=NAME [libFuzzer's options] [CORPUS...]
#include <cstdint>
#include <string_view>

#include "own_folder.h"
#include "targets.h"

namespace {

const fuzz::Target* chosen = nullptr;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    constexpr std::string_view kOption = "--target=";
    for (int i = 1; i < *argc; ++i) {
        const std::string_view argument = (*argv)[i];
        if (argument.starts_with(kOption)) chosen = fuzz::FindTarget(argument.substr(kOption.size()));
    }
    fuzz::Require(chosen != nullptr, "--target names a target");
    static const OwnFolder folder;  // goes by exit alone, by which the fuzzer comes back
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    chosen->feed({reinterpret_cast<const char*>(data), size});
    return 0;
}
