// The main function of a suite: every test has a folder of its own, so that nothing that one leaves can help
// or disturb another.
#include <gtest/gtest.h>

#include "own_folder.h"

namespace {

class OwnFolder final : public testing::Environment {
  public:
    void SetUp() override {
        folder_ = MakeOwnFolder();
        ASSERT_FALSE(folder_.empty()) << "no folder for the test's files";
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

  private:
    std::filesystem::path folder_;
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::AddGlobalTestEnvironment(new OwnFolder);
    return RUN_ALL_TESTS();
}
