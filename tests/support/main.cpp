// The main function of a suite: every test has a folder of its own, so that nothing that one leaves can help
// or disturb another.
#include <gtest/gtest.h>

#include "own_folder.h"

namespace {

// No test may leave a file, a pipe or a folder open.
class NothingLeftOpen final : public testing::EmptyTestEventListener {
  public:
    void OnTestStart(const testing::TestInfo&) override { before_ = OpenFiles(); }
    void OnTestEnd(const testing::TestInfo&) override {
        for (const auto& [identity, file] : OpenFiles())
            EXPECT_TRUE(before_.contains(identity)) << "left open: " << file;
    }

  private:
    std::map<std::string, std::string> before_;
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new NothingLeftOpen);
    const OwnFolder folder;
    return RUN_ALL_TESTS();
}
