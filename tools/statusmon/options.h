// What the command line says.
#pragma once

#include "statusmon/settings.h"

namespace statusmon {

/// What the process ends with, one meaning each.
enum ExitCode : int {
    kDone = 0,
    kWrongUsage = 2,      // the command line, the settings file or the log cannot be used
    kNotRunning = 3,      // --stop, and no status monitor runs
    kRunningAlready = 4,  // another status monitor of the product runs
    kOwnFault = 70,
};

struct Options {
    bool stop = false;
    Settings settings;
};

/// Adds what the command line says to `options`. True when there is something to do; otherwise the process
/// ends with `exitCode`, and what the user has to know has been printed.
[[nodiscard]] bool ReadCommandLine(int argc, const char* const* argv, Options& options, int& exitCode);

}  // namespace statusmon
