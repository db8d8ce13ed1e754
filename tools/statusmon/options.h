// What the command line says.
#pragma once

#include <optional>

#include "shared/exit_codes.h"
#include "statusmon/settings.h"

namespace statusmon {

struct Options {
    bool stop = false;
    Settings settings;
};

/// Adds what the command line says to `options`. Nothing when there is something to do; otherwise what the
/// process ends with, and what the user has to know has been printed.
[[nodiscard]] std::optional<tools::ExitCode> ReadCommandLine(int argc, const char* const* argv,
                                                             Options& options);

}  // namespace statusmon
