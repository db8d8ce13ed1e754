// kestrel: the command-line client of the device-management library.
#include <algorithm>
#include <exception>
#include <string>
#include <vector>

#include "kestrel/command_line.h"
#include "kestrel/platform.h"

namespace cli {
namespace {

constexpr const char* kHelpAdvice = "run `kestrel --help`, or `kestrel COMMAND --help`";

Failure Interrupted() {
    return {ExitCode::kInterrupted, "interrupted", {}, {}, {}, {}};
}

// Ctrl-C ends an exchange that waits; also then --json gives its one document.
void PrepareForInterrupt(const GlobalOptions& options, const std::string& command) {
    const Report report{{}, nlohmann::ordered_json::object(), Interrupted()};
    const std::string document = options.json ? JsonDocument(command, report) : std::string();
    const std::string message =
        options.json ? std::string() : "\n" + FailureText(*report.failure, Paint(false));
    platform::EndOnInterrupt(document, message, static_cast<int>(ExitCode::kInterrupted));
}

Report RunGuarded(const Chosen& chosen, Context& context) {
    Report report;
    try {
        return chosen.work(context);
    } catch (const Failure& failure) {
        report.failure = failure;
    } catch (const std::exception& fault) {
        report.failure = Failure{ExitCode::kOwnFault,
                                 std::string("unexpected fault: ") + fault.what(),
                                 "report this together with the command line",
                                 {},
                                 {},
                                 {}};
    }
    return report;
}

int ReportParseEnd(const CLI::App& app, const CLI::ParseError& end, bool json, bool noColour) {
    if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) return app.exit(end);
    Report report;
    report.failure = UsageFailure(end.what(), kHelpAdvice);
    return Print("", report, json, noColour);
}

int Run(int argc, char** argv) {
    platform::KeepLineEnds();
    CLI::App app("", "kestrel");
    app.allow_windows_style_options(false);  // "/nowhere" is a path
    GlobalOptions options;
    Chosen chosen;
    DeclareCommandLine(app, options, chosen);

    std::vector<std::string> arguments = platform::Arguments(argc, argv);
    // A line that cannot be read still says how it wants its error.
    const bool json = std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
    std::reverse(arguments.begin(), arguments.end());  // the order that the parser takes
    try {
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& end) {
        return ReportParseEnd(app, end, json, options.noColour);
    }
    if (!chosen.work) {
        Report report;
        report.failure = UsageFailure("no command is given", kHelpAdvice);
        return Print("", report, options.json, options.noColour);
    }

    PrepareForInterrupt(options, chosen.name);
    Context context(options);
    const Report report = RunGuarded(chosen, context);
    const int exitStatus = Print(chosen.name, report, options.json, options.noColour);
    // Unloading the library closes its channel, and a client's close withdraws whatever request stands there
    // unread, also that of another program. That is wanted only for a request of our own that was given up.
    const bool gaveUp = report.failure && report.failure->exit == ExitCode::kNoAnswer;
    if (!gaveUp) platform::EndWithoutUnloading(exitStatus);
    return exitStatus;
}

}  // namespace
}  // namespace cli

int main(int argc, char** argv) {
    return cli::Run(argc, argv);
}
