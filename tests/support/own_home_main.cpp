// The main function of a suite: every test has a home of its own, so that nothing that one leaves can help or
// disturb another.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace {

class OwnHome final : public testing::Environment {
  public:
    void SetUp() override {
        // Where kernel objects lie by default too: in memory.
        std::string pattern = "/dev/shm/kestrel-test-XXXXXX";
        folder_ = mkdtemp(pattern.data());
        setenv("WINPORT_HOME", folder_.c_str(), 1);
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

  private:
    std::filesystem::path folder_;
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::AddGlobalTestEnvironment(new OwnHome);
    return RUN_ALL_TESTS();
}
