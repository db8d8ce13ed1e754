// kestrel: the command-line client of the device-management library.
#include <algorithm>
#include <exception>
#include <string>
#include <vector>

#include "kestrel/command_line.h"
#include "kestrel/platform.h"
#include "shared/process.h"

namespace cli {
namespace {

constexpr const char* kHelpAdvice = "run `kestrel --help`, or `kestrel COMMAND --help`";

Failure Interrupted() {
    return {ExitCode::Interrupted, "interrupted", {}, {}, {}, {}};
}

// Ctrl-C ends an exchange that waits; also then --json gives its one document.
void PrepareForInterrupt(const GlobalOptions& options, const std::string& command) {
    const Report report{{}, tools::Json::EmptyObject(), Interrupted()};
    const std::string document = options.json ? JsonDocument(command, report) : std::string();
    const std::string message =
        options.json ? std::string() : "\n" + FailureText(*report.failure, Paint(false));
    platform::EndOnInterrupt(document, message, static_cast<int>(ExitCode::Interrupted));
}

Report RunGuarded(const Chosen& chosen, Context& context) {
    Report report;
    try {
        return chosen.work(context);
    } catch (const Failure& failure) {
        report.failure = failure;
    } catch (const std::exception& fault) {
        report.failure = Failure{ExitCode::OwnFault,
                                 std::string("unexpected fault: ") + fault.what(),
                                 "report this together with the command line",
                                 {},
                                 {},
                                 {}};
    }
    return report;
}

int ReportFailure(const Failure& failure, bool json, bool noColour) {
    Report report;
    report.failure = failure;
    return Print("", report, json, noColour);
}

int Run(int argc, char** argv) {
    platform::KeepLineEnds();
    tools::CommandLine line("", "kestrel");
    GlobalOptions options;
    Chosen chosen;
    DeclareCommandLine(line.Root(), options, chosen);

    const std::vector<std::string> arguments = tools::Arguments(argc, argv);
    switch (line.Read(arguments)) {
        case tools::CommandLine::Outcome::Read:
            break;
        case tools::CommandLine::Outcome::HelpShown:
            return static_cast<int>(ExitCode::Done);
        case tools::CommandLine::Outcome::Wrong:
            // A line that cannot be read still says how it wants its error.
            return ReportFailure(UsageFailure(line.Problem(), kHelpAdvice),
                                 std::ranges::find(arguments, "--json") != arguments.end(), options.noColour);
    }
    if (!chosen.work)
        return ReportFailure(UsageFailure("no command is given", kHelpAdvice), options.json,
                             options.noColour);

    PrepareForInterrupt(options, chosen.name);
    Context context(options);
    const Report report = RunGuarded(chosen, context);
    const int exitStatus = Print(chosen.name, report, options.json, options.noColour);
    // Unloading the library closes its channel, and a client's close withdraws whatever request stands there
    // unread, also that of another program. That is wanted only for a request of our own that was given up.
    const bool gaveUp = report.gaveUp || (report.failure && report.failure->exit == ExitCode::NoAnswer);
    if (!gaveUp) platform::EndWithoutUnloading(exitStatus);
    return exitStatus;
}

}  // namespace
}  // namespace cli

int main(int argc, char** argv) {
    return cli::Run(argc, argv);
}
