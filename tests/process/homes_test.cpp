// What the status monitor leaves in a home that nobody has used yet, when it is the first program there.
#include "installed_status_monitor.h"

namespace {

namespace fs = std::filesystem;

class FirstInAHome : public InstalledStatusMonitor {
  protected:
    FirstInAHome() { fs::create_directory(fresh_); }
    ~FirstInAHome() override { fs::remove_all(fresh_); }

    // Started as the library starts it, with its output nowhere, by an account of an open-handed umask.
    [[nodiscard]] ProgramResult Run(const std::string& variable) const {
        const std::string environment = "umask 022; unset WINPORT_HOME XDG_STATE_HOME; XDG_RUNTIME_DIR='" +
                                        fresh_.string() + "'; export XDG_RUNTIME_DIR " + variable + "='" +
                                        fresh_.string() + "'; ";
        return RunProgram({"/bin/sh", "-c",
                           environment + "'" + program_.string() + "' --exit-after 1 >/dev/null && '" +
                               KESTREL_CLIENT + "' printers 2>&1"});
    }
    static fs::perms ModeOf(const fs::path& path) { return fs::status(path).permissions(); }

    const fs::path fresh_ = home_ / "fresh";
};

TEST_F(FirstInAHome, Its_log_locks_no_account_out_of_the_registry) {
    const ProgramResult result = Run("HOME");
    EXPECT_EQ(0, result.code) << result.output;
    EXPECT_EQ(fs::perms(0700), ModeOf(fresh_ / ".local/state/winport"));
    EXPECT_EQ(fs::perms(0600), ModeOf(fresh_ / ".local/state/winport/ZRIJ9900MUI.log"));
}

TEST_F(FirstInAHome, Its_log_locks_no_account_out_of_a_home_that_they_share) {
    fs::permissions(fresh_, fs::perms(01777));
    const ProgramResult result = Run("WINPORT_HOME");
    EXPECT_EQ(0, result.code) << result.output;
    EXPECT_EQ(fs::perms(01777), ModeOf(fresh_ / "state") & ~fs::perms::set_gid);

    // Another account's trap.
    fs::remove(fresh_ / "state/ZRIJ9900MUI.log");
    fs::create_symlink(fresh_ / "victim", fresh_ / "state/ZRIJ9900MUI.log");
    EXPECT_EQ(0, Run("WINPORT_HOME").code);
    EXPECT_FALSE(fs::exists(fresh_ / "victim"));
}

TEST_F(InstalledStatusMonitor, Started_by_the_library_has_the_environment_of_its_account) {
    fs::remove(program_);
    std::ofstream(program_) << "#!/bin/sh\necho \"$USER,$PROBE,\" >'" << (home_ / "told").string() << "'\n";
    fs::permissions(program_, fs::perms(0700));
    setenv("USER", "nobody", 1);
    setenv("PROBE", "the caller's", 1);
    WithPrinter([] { EXPECT_EQ(1460u, Ended(ShowStatusMonitor())); });
    const std::string told = FileText(home_ / "told");
    EXPECT_TRUE(told.ends_with(",,\n") && !told.starts_with("nobody")) << told;
    fs::remove(program_);
}

}  // namespace
