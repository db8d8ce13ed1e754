// The status monitor of an installed product, started by the test or by the library.
#pragma once

#include "installed_printer.h"

class InstalledStatusMonitor : public InstalledPrinter {
  protected:
    InstalledStatusMonitor() : program_(setup_.At("statusMonitor").Text()) {
        std::filesystem::remove(LogFile());
    }
    ~InstalledStatusMonitor() override {
        if (std::filesystem::exists(program_)) {
            EXPECT_NE(70, StopMonitor());
        }
    }

    [[nodiscard]] ChildProcess Launch(Words options) const {
        options.insert(options.begin(), program_.string());
        return ChildProcess(options);
    }
    void StartMonitor(const Words& options = {}) {
        monitor_ = Launch(options);
        ASSERT_EQ("ready: ZRIJ9900MUI", monitor_.ReadLine());
    }
    // 0 when one ran.
    int StopMonitor() const { return Launch({"--stop"}).Wait(); }
    // What the one that the test has started said until then.
    std::string EndMonitor() {
        EXPECT_EQ(0, StopMonitor());
        EXPECT_EQ(0, monitor_.Wait());
        return monitor_.ReadAll();
    }

    [[nodiscard]] std::filesystem::path SettingsFile() const {
        return std::filesystem::path(program_).replace_extension(".json");
    }
    // For the one that the library starts; it does not stay if all else fails.
    void Configure() const { std::ofstream(SettingsFile()) << R"({"exitAfter": 60000})"; }
    // What that one has logged.
    [[nodiscard]] std::string Log() const { return FileText(LogFile()); }

    // The log stays where the system lets the test choose no place of its own; it is begun anew then.
    [[nodiscard]] std::filesystem::path LogFile() const {
        const char* const shared = std::getenv("LOCALAPPDATA");
        return (shared != nullptr ? std::filesystem::path(shared) : home_ / "state") / "ZRIJ9900MUI.log";
    }

    std::filesystem::path program_;
    ChildProcess monitor_;
};
