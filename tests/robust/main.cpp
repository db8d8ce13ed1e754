// The main function of the robustness suites:
//
//   robust_tests [--long] [--seed N] [Google Test's options]
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "effort.h"
#include "own_folder.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    for (int i = 1; i < argc; ++i) {
        const std::string_view option = argv[i];
        if (option == "--long") effort.isLong = true;
        if (option == "--seed" && i + 1 < argc)
            effort.seed = static_cast<uint32_t>(std::strtoul(argv[++i], nullptr, 10));
    }
    const std::filesystem::path folder = MakeOwnFolder();
    std::printf("seed %u, %s\n", effort.seed, effort.isLong ? "long" : "short");
    const int result = RUN_ALL_TESTS();
    std::filesystem::remove_all(folder);
    return result;
}
