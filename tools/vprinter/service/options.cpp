// The options, and the complaints about them.
#include "vprinter/service/options.h"

#include <fmt/core.h>

#include <algorithm>

#include "shared/command_line.h"
#include "shared/process.h"
#include "vprinter/faults/fault_kinds.h"
#include "vprinter/web/web_server.h"

namespace vprinter {
namespace {

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

std::string TakeWebAddress(const std::string& text, Options& options) {
    if (!web::IsThere()) return "this build has no panel; build it with libcpp-httplib-dev (KESTREL_WEB)";
    options.web = http::ReadAddress(text);
    return options.web ? "" : "expected an address and a port, such as 127.0.0.1:8631, instead of " + text;
}

std::string TakePace(const std::string& word, Options& options) {
    if (word != "real" && word != "fast") return "expected real or fast instead of " + word;
    options.pace = word == "real" ? Pace::Real : Pace::Fast;
    return {};
}

void DeclareReplay(const tools::Command& program, Options& options) {
    const tools::Option replay = program
                                     .AddOption("--replay", options.recordFile,
                                                "record of exchanges (`kestrel record`) to answer from")
                                     .TypeName("FILE");
    program
        .AddOption(
            "--pace", [&](const std::string& word) { return TakePace(word, options); },
            "with --replay: real, replies take as long as they took, or fast [fast]")
        .TypeName("PACE")
        .Needs(replay);
    const tools::Option once =
        program.AddFlag("--once", options.once, "with --replay: end when all is answered (the default)");
    once.Needs(replay);
    program.AddFlag("--loop", options.loops, "with --replay: begin again at the end")
        .Needs(replay)
        .Excludes(once);
}

void Declare(const tools::Command& program, Options& options) {
    program
        .AddOption("--port", options.ports,
                   "port name of a printer, at least one; repeat it for several printers")
        .OneEachTime()
        .TypeName("NAME")
        .Check(CheckPort);
    program.AddOption("--product", options.product, "product prefix, from which the channel names are formed")
        .TypeName("PREFIX")
        .ShowsDefault();
    program.AddOption("--model-name", options.modelName, "the name that the printer gives itself")
        .TypeName("NAME");
    program
        .AddOption("--from", options.dumpFile, "dump of a printer (`kestrel dump`), which this one then is")
        .TypeName("FILE");
    DeclareReplay(program, options);
    program
        .AddOption("--faults", options.faultsFile,
                   "JSON file of rules: what the printer does wrong, and when")
        .TypeName("FILE");
    program.AddFlag("--list-faults", options.listFaults, "print what a rule of --faults may hold, and end");
    program.AddFlag("--json", options.json, "with --list-faults: as JSON");
    program.AddOption("--state", options.stateFile, "JSON file that keeps the settings between runs")
        .TypeName("FILE");
    program
        .AddOption("--control", options.controlFile,
                   "JSON file that changes the printers while they run, whenever it is written")
        .TypeName("FILE");
    program
        .AddOption(
            "--trace", [&](const std::string& name) { return TakeTraceFormat(name, options); },
            "text, json or none (text on a terminal, json for a file, else none)")
        .TypeName("FORMAT");
    program
        .AddOption("--trace-file", options.traceFile, "file to append the trace to (default: error output)")
        .TypeName("FILE");
    program.AddFlag("--trace-secrets", options.showSecrets,
                    "show pass phrases and security keys in the trace");
    const tools::Option web =
        program
            .AddOption(
                "--web", [&](const std::string& text) { return TakeWebAddress(text, options); },
                web::IsThere()
                    ? "shows the printers in a browser, at this address; port 0 is one that is free"
                    : "panel for a browser; this build has none")
            .TypeName("ADDRESS:PORT");
    program
        .AddOption("--web-token", options.webTokenFile,
                   "file with the token that visitors must know; needed for an address that others reach")
        .TypeName("FILE")
        .Needs(web);
    program.AddFlag("--quiet", options.quiet, "print the ready line and errors only");
}

void Explain(const tools::Command& program) {
    program.Example("kestrel-vprinter --port USB001",
                    "one printer on port USB001; each exchange is shown while you look at it");
    program.Example("kestrel-vprinter --port USB001 --port USB002 --state printers.json",
                    "two printers whose settings outlive the program");
    program.Example(
        "kestrel-vprinter --port USB001 --control now.json",
        R"(write {"USB001": {"ink.black": 5, "status.error": "Paper_Jam"}} to now.json while it runs)");
    program.Example("kestrel-vprinter --port USB001 --from office.json",
                    "the printer that `kestrel dump -o office.json` has asked");
    program.Example(
        "kestrel-vprinter --port USB001 --faults slow.json --trace json --trace-file trace.jsonl",
        "a printer that misbehaves as slow.json says; every exchange becomes a line of trace.jsonl");
    program.Example("kestrel-vprinter --port USB001 --web 127.0.0.1:8631",
                    "a printer to look at: open http://127.0.0.1:8631/ in a browser");
    program.Note(
        "The line \"ready: USB001\" on the output says that all printers answer. SIGTERM and the interrupt "
        "key "
        "end the program.");
    program.Note("The forms of its files, and all that it answers, are in the document vprinter.md.");
    program.ExitCode(tools::kDone, "ended as asked");
    program.ExitCode(tools::kDeparted, "with --replay: a client has departed from the record");
    program.ExitCode(
        tools::kWrongUsage,
        "the command line, a dump, a record, a fault script, a state or a control file cannot be used");
    program.ExitCode(tools::kRunsAlready, "another virtual printer serves the port already");
    program.ExitCode(tools::kOwnFault, "a fault of this program or of the system");
}

void ChooseTraceFormat(const tools::Command& program, Options& options) {
    if (program.Has("--trace")) return;
    if (!options.traceFile.empty()) {
        options.traceFormat = TraceFormat::Json;
    } else if (!options.quiet && tools::IsTerminal(stderr)) {
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

std::optional<tools::ExitCode> ReadCommandLine(int argc, const char* const* argv, Options& options) {
    tools::CommandLine line(
        "Virtual printer: answers what the library asks of a language monitor and its device.",
        "kestrel-vprinter");
    Declare(line.Root(), options);
    Explain(line.Root());
    if (const auto end = line.ReadOrExplain(argc, argv)) return end;
    if (options.listFaults) {
        fmt::print("{}", options.json ? FaultFieldsJson().Dump(2) + '\n' : FaultFieldsText());
        return tools::kDone;
    }
    if (options.ports.empty()) {
        fmt::print(stderr,
                   "--port is required: the port name of a printer, such as USB001\n"
                   "Run with --help for more information.\n");
        return tools::kWrongUsage;
    }
    DropRepeatedPorts(options.ports);
    ChooseTraceFormat(line.Root(), options);
    return {};
}

}  // namespace vprinter
