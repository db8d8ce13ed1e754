// kestrel status: the printer's state, once or at each change.
#include <fmt/core.h>

#include <cstdio>

#include "kestrel/commands/commands.h"
#include "kestrel/output/waiting.h"
#include "kestrel/platform.h"
#include "kestrel/printer/device_status.h"

namespace cli {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

struct StatusOptions {
    bool watch = false;
    milliseconds interval{2000};
    std::optional<milliseconds> end;  // none: until Ctrl-C
};

DeviceStatus Ask(Context& context) {
    const Library& library = context.GetPrinter().GetLibrary();
    const Waiting waiting("asking for the status", context.ShowsProgress());
    return AskForStatus(library);
}

Report Once(Context& context) {
    const DeviceStatus status = Ask(context);
    return {StatusText(status), StatusJson(status), {}};
}

// People see each change at once; the document has them all in the end.
Report Watch(Context& context, const StatusOptions& options) {
    Report report;
    tools::Json& changes = report.data["changes"] = tools::Json::EmptyArray();
    const Clock::time_point start = Clock::now();
    const auto passed = [start] { return std::chrono::duration_cast<milliseconds>(Clock::now() - start); };
    do {
        tools::Json now;
        try {
            const DeviceStatus status = Ask(context);
            now = StatusJson(status);
            if (!context.Options().json &&
                (changes.Items().empty() || changes.Items().back().At("status") != now)) {
                fmt::print("{}{}", changes.Items().empty() ? "" : "\n", StatusText(status));
                std::fflush(stdout);
            }
        } catch (const Failure& failure) {
            report.failure = failure;
            return report;
        }
        if (changes.Items().empty() || changes.Items().back().At("status") != now)
            changes.Append({{"afterMs", passed().count()}, {"status", now}});
        if (options.end && passed() >= *options.end) return report;
    } while (platform::WaitForUser(options.interval) == platform::WaitEnd::Time);
    // The same end as that of an interrupt in the middle of a question.
    report.failure = Failure{ExitCode::Interrupted, "interrupted", {}, {}, {}, {}};
    return report;
}

}  // namespace

void AddStatus(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("status", "Print the printer's state, inks and trays");
    const auto options = std::make_shared<StatusOptions>();
    const tools::Option watch =
        command.AddFlag("--watch", options->watch, "Print it again at each change, until Ctrl-C");
    AddTimeOption(
        command, "--interval", [options](milliseconds time) { options->interval = time; },
        "With --watch: time between two questions [2s]")
        .Needs(watch);
    AddTimeOption(
        command, "--for", [options](milliseconds time) { options->end = time; },
        "With --watch: how long [until Ctrl-C]")
        .Needs(watch);
    command.Note(
        "The status monitor is started if it does not run. A status that is not known yet is waited for, up "
        "to 14 seconds.");
    command.Example("kestrel status --watch --interval 1s");
    command.OnUse([&chosen, options] {
        chosen = {
            "status",
            [options](Context& context) { return options->watch ? Watch(context, *options) : Once(context); },
            options->watch ? Reach::OnePrinter : Reach::Several};
    });
}

}  // namespace cli
