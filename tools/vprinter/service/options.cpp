#include "vprinter/service/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "shared/process.h"

namespace vprinter {
namespace {

constexpr const char* kExamples = R"(Examples:
  kestrel-vprinter --port USB001
      one printer on port USB001; each exchange is shown while you look at it
  kestrel-vprinter --port USB001 --port USB002 --state printers.json
      two printers whose settings outlive the program
  kestrel-vprinter --port USB001 --control now.json
      write {"USB001": {"ink.black": 5, "status.error": "Paper_Jam"}} to now.json while it runs
  kestrel-vprinter --port USB001 --faults slow.json --trace json --trace-file trace.jsonl
      a printer that misbehaves as slow.json says; every exchange becomes a line of trace.jsonl

The line "ready: USB001" on the output says that all printers answer. SIGTERM and the interrupt key end
the program.

Exit codes:
  0   ended as asked
  2   the command line, a fault script, a state or a control file cannot be used
  4   another virtual printer serves the port already
  70  a fault of this program or of the system)";

struct FormatName {
    const char* name;
    TraceFormat format;
};

constexpr FormatName kFormatNames[] = {
    {"text", TraceFormat::Text}, {"json", TraceFormat::Json}, {"none", TraceFormat::None}};

std::string CheckPort(const std::string& port) {
    if (port.empty()) return "a port has a name, such as USB001";
    if (port.find(',') != std::string::npos) return "one port at a time: repeat --port instead of " + port;
    return {};
}

std::string TakeTraceFormat(const std::string& name, Options& options) {
    for (const FormatName& row : kFormatNames) {
        if (name != row.name) continue;
        options.traceFormat = row.format;
        return {};
    }
    return "expected text, json or none instead of " + name;
}

void Declare(CLI::App& app, Options& options) {
    app.add_option("--port", options.ports, "port name of a printer; repeat it for several printers")
        ->required()
        ->allow_extra_args(false)
        ->type_name("NAME")
        ->check(CLI::Validator(CheckPort, ""));
    app.add_option("--product", options.product, "product prefix, from which the channel names are formed")
        ->type_name("PREFIX")
        ->capture_default_str();
    app.add_option("--model-name", options.modelName, "the name that the printer gives itself")
        ->type_name("NAME");
    app.add_option("--faults", options.faultsFile,
                   "JSON file of rules: what the printer does wrong, and when")
        ->type_name("FILE");
    app.add_option("--state", options.stateFile, "JSON file that keeps the settings between runs")
        ->type_name("FILE");
    app.add_option("--control", options.controlFile,
                   "JSON file that changes the printers while they run, whenever it is written")
        ->type_name("FILE");
    app.add_option("--trace", "text, json or none (text on a terminal, json for a file, else none)")
        ->type_name("FORMAT")
        ->check(CLI::Validator([&](const std::string& name) { return TakeTraceFormat(name, options); }, ""));
    app.add_option("--trace-file", options.traceFile, "file to append the trace to (default: error output)")
        ->type_name("FILE");
    app.add_flag("--trace-secrets", options.showSecrets, "show pass phrases and security keys in the trace");
    app.add_flag("--quiet", options.quiet, "print the ready line and errors only");
}

void ChooseTraceFormat(const CLI::App& app, Options& options) {
    if (app.count("--trace") > 0) return;
    if (!options.traceFile.empty()) {
        options.traceFormat = TraceFormat::Json;
    } else if (!options.quiet && tools::ErrorOutputIsTerminal()) {
        options.traceFormat = TraceFormat::Text;
    }
}

void DropRepeatedPorts(std::vector<std::string>& ports) {
    auto end = ports.end();
    for (auto port = ports.begin(); port != end; ++port)
        end = std::remove(port + 1, end, *port);
    ports.erase(end, ports.end());
}

}  // namespace

bool ReadCommandLine(int argc, const char* const* argv, Options& options, int& exitCode) {
    CLI::App app{"Virtual printer: answers what the library asks of a language monitor and its device.",
                 "kestrel-vprinter"};
    app.allow_windows_style_options(false);  // a path may begin with "/"
    app.footer(kExamples);
    Declare(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        exitCode = app.exit(error) == 0 ? kDone : kWrongUsage;
        return false;
    }
    DropRepeatedPorts(options.ports);
    ChooseTraceFormat(app, options);
    return true;
}

}  // namespace vprinter
