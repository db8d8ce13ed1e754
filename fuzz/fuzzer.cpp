// Any one target under libFuzzer:
//
//   kestrel_fuzz --target=NAME [libFuzzer's options] [CORPUS...]
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

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
    static const std::filesystem::path folder = MakeOwnFolder();
    fuzz::Require(!folder.empty(), "a folder for the target's files");
    // The fuzzer comes back from its work by exit alone.
    std::atexit([] {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    chosen->feed({reinterpret_cast<const char*>(data), size});
    return 0;
}
