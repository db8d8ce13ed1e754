// kestrel: the command-line client of the device-management library.
#include <fmt/core.h>

#include <algorithm>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "kestrel/command_line.h"
#include "kestrel/fleet/each_printer.h"
#include "kestrel/fleet/fleet_progress.h"
#include "kestrel/installation/product_configuration.h"
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

// Unloading the library closes its channel, and a client's close withdraws whatever request stands there
// unread, also that of another program. That is wanted only for a request of our own that was given up.
bool GaveUp(const Report& report) {
    return report.gaveUp || (report.failure && report.failure->exit == ExitCode::NoAnswer);
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

// The printers that the line means, and whether it means several; of one that names none, what the command
// says of them.
struct Meant final {
    std::vector<std::string> printers;
    bool isSeveral = false;
};
Meant PrintersMeant(const Chosen& chosen, const GlobalOptions& options) {
    const PrinterChoice own = chosen.prepare ? chosen.prepare() : PrinterChoice();
    const bool namesNone = options.printers.written.empty() && !options.printers.all;
    const PrinterChoice& choice = namesNone ? own : options.printers;
    if (chosen.reach == Reach::Itself || !choice.IsSeveral()) return {choice.written, false};
    if (chosen.reach != Reach::Several) {
        throw UsageFailure(fmt::format("`kestrel {}` is for one printer", chosen.name),
                           "name one with --printer, without --all and patterns");
    }
    return {ChosenPrinters(choice, {InstalledPrinters(), ConfiguredDrivers(options.product)}), true};
}

int RunForSeveral(const Chosen& chosen, const GlobalOptions& options,
                  const std::vector<std::string>& printers) {
    const Library library(options.product);  // stays as long as the threads, whose selections it keeps
    EachPrinter each;
    std::vector<PrinterReport> reports;
    {
        FleetProgress progress(printers.size(), !options.json);
        reports = each.Do(
            printers, options.jobs,
            [&](const std::string& printer) {
                GlobalOptions own = options;
                own.printers = {{printer}, false};
                own.isOneOfSeveral = true;
                Context context(own);
                return RunGuarded(chosen, context);
            },
            [&progress](size_t done, const std::string& printer) { progress.Show(done, printer); });
    }
    const int exitStatus = Print(chosen.name, reports, options.json, options.noColour);
    if (std::ranges::none_of(reports, [](const PrinterReport& printer) { return GaveUp(printer.report); }))
        platform::EndWithoutUnloading(exitStatus);
    return exitStatus;
}

int RunForOne(const Chosen& chosen, const GlobalOptions& options) {
    Context context(options);
    const Report report = RunGuarded(chosen, context);
    const int exitStatus = Print(chosen.name, report, options.json, options.noColour);
    if (!GaveUp(report)) platform::EndWithoutUnloading(exitStatus);
    return exitStatus;
}

// A line and what it says. The declared options fill the members: it stays where it is.
struct ReadLine final {
    ReadLine(const std::vector<std::string>& arguments, const std::vector<std::string>& commands) {
        DeclareCommandLine(line.Root(), options, chosen, commands);
        outcome = line.Read(arguments);
    }

    tools::CommandLine line{"", "kestrel"};
    GlobalOptions options;
    Chosen chosen;
    tools::CommandLine::Outcome outcome;
};

// To declare all commands takes a quarter of the instructions of a short one. What is wrong with a line is
// told with all of them known.
void Read(const std::vector<std::string>& arguments, std::optional<ReadLine>& read) {
    if (NamesItsCommand(arguments)) read.emplace(arguments, arguments);
    const bool isRead = read && read->outcome != tools::CommandLine::Outcome::Wrong;
    if (!isRead) read.emplace(arguments, std::vector<std::string>());
}

int Run(int argc, char** argv) {
    platform::KeepLineEnds();
    const std::vector<std::string> arguments = tools::Arguments(argc, argv);
    std::optional<ReadLine> read;
    Read(arguments, read);
    const GlobalOptions& options = read->options;
    const Chosen& chosen = read->chosen;
    switch (read->outcome) {
        case tools::CommandLine::Outcome::Read:
            break;
        case tools::CommandLine::Outcome::HelpShown:
            return static_cast<int>(ExitCode::Done);
        case tools::CommandLine::Outcome::Wrong:
            // A line that cannot be read still says how it wants its error.
            return ReportFailure(UsageFailure(read->line.Problem(), kHelpAdvice),
                                 std::ranges::find(arguments, "--json") != arguments.end(), options.noColour);
    }
    if (!chosen.work)
        return ReportFailure(UsageFailure("no command is given", kHelpAdvice), options.json,
                             options.noColour);

    PrepareForInterrupt(options, chosen.name);
    try {
        const Meant meant = PrintersMeant(chosen, options);
        if (meant.isSeveral) return RunForSeveral(chosen, options, meant.printers);
        GlobalOptions one = options;
        one.printers.written = meant.printers;
        return RunForOne(chosen, one);
    } catch (const Failure& failure) {
        return ReportFailure(failure, options.json, options.noColour);
    }
}

}  // namespace
}  // namespace cli

int main(int argc, char** argv) {
    return cli::Run(argc, argv);
}
