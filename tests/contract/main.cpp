#include <gtest/gtest.h>

#include "own_home.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const OwnHome home;
    return RUN_ALL_TESTS();
}
