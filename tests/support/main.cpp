// The main function of a suite: every test has a folder of its own, so that nothing that one leaves can help
// or disturb another.
#include <gtest/gtest.h>

#include "own_folder.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const std::filesystem::path folder = MakeOwnFolder();
    if (folder.empty()) return 1;
    const int result = RUN_ALL_TESTS();
    std::filesystem::remove_all(folder);
    return result;
}
