// What the command line says.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "http/address.h"
#include "shared/exit_codes.h"
#include "vprinter/replay/replay.h"
#include "vprinter/trace/trace.h"

namespace vprinter {

struct Options {
    std::vector<std::string> ports;
    std::string product = KESTREL_PRODUCT;
    std::string modelName;
    std::string dumpFile;
    std::string recordFile;  // to replay
    Pace pace = Pace::Fast;
    bool once = false;
    bool loops = false;
    std::string faultsFile;
    std::string stateFile;
    std::string controlFile;
    TraceFormat traceFormat = TraceFormat::None;
    std::string traceFile;
    std::optional<http::Address> web;  // nothing: no panel
    std::string webTokenFile;
    bool showSecrets = false;
    bool quiet = false;
    bool listFaults = false;
    bool json = false;
};

/// Nothing when there is something to do; otherwise what the process ends with, and what the user has to know
/// has been printed.
[[nodiscard]] std::optional<tools::ExitCode> ReadCommandLine(int argc, const char* const* argv,
                                                             Options& options);

}  // namespace vprinter
