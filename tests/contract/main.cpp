#include <gtest/gtest.h>

#include "child.h"
#include "own_folder.h"

int main(int argc, char** argv) {
    if (const auto exitCode = RunAsChild(argc, argv)) return *exitCode;
    testing::InitGoogleTest(&argc, argv);
    const OwnFolder home;
    return RUN_ALL_TESTS();
}
