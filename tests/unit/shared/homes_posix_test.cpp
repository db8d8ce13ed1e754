// Where the tools look for winport's homes, and what they say of them.
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "kestrel/platform.h"
#include "statusmon/platform.h"

namespace {

namespace fs = std::filesystem;

// An environment variable that is another one for a while, or none.
class Variable final {
  public:
    Variable(const char* name, const std::string& value) : name_(name) {
        if (const char* const before = std::getenv(name)) before_ = before;
        value.empty() ? unsetenv(name) : setenv(name, value.c_str(), 1);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable() { before_ ? setenv(name_, before_->c_str(), 1) : unsetenv(name_); }

  private:
    const char* name_;
    std::optional<std::string> before_;
};

TEST(Homes, A_log_without_a_HOME_belongs_to_the_home_of_the_account) {
    const Variable noHome("WINPORT_HOME", "");
    const Variable noState("XDG_STATE_HOME", "");
    const Variable nowhere("HOME", "");
    EXPECT_EQ(fs::path(getpwuid(geteuid())->pw_dir) / ".local/state/winport", statusmon::StateFolder());
}

TEST(Homes, Setup_warns_of_one_that_every_account_can_enter) {
    const fs::path home = fs::path(std::getenv("KESTREL_TEST_FOLDER")) / "open";
    fs::create_directory(home);
    const Variable shared("WINPORT_HOME", home);
    for (const auto& [mode, isOpen] :
         {std::pair(0755, true), {0711, true}, {01777, true}, {0770, false}, {0700, false}}) {
        fs::permissions(home, static_cast<fs::perms>(mode));
        EXPECT_EQ(isOpen, !cli::platform::OpenHomeWarning().empty()) << std::oct << mode;
    }
    const Variable own("WINPORT_HOME", "");
    EXPECT_EQ("", cli::platform::OpenHomeWarning());
}

}  // namespace
