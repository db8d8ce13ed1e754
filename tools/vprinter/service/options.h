// What the command line says.
#pragma once

#include <string>
#include <vector>

#include "vprinter/trace/trace.h"

namespace vprinter {

/// What the process ends with, one meaning each.
enum ExitCode : int {
    kDone = 0,
    kWrongUsage = 2,     // the command line, or a file that it names, cannot be used
    kServedAlready = 4,  // a living virtual printer serves one of the printers
    kOwnFault = 70,
};

struct Options {
    std::vector<std::string> ports;
    std::string product = KESTREL_PRODUCT;
    std::string modelName;
    std::string faultsFile;
    std::string stateFile;
    std::string controlFile;
    TraceFormat traceFormat = TraceFormat::None;
    std::string traceFile;
    bool showSecrets = false;
    bool quiet = false;
};

/// True when there is something to do; otherwise the process ends with `exitCode`, and what the user has to
/// know has been printed.
[[nodiscard]] bool ReadCommandLine(int argc, const char* const* argv, Options& options, int& exitCode);

}  // namespace vprinter
