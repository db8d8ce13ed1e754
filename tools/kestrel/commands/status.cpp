#include <fmt/format.h>

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
    DeviceStatusRecord record{};
    const Library& library = context.GetPrinter().GetLibrary();
    const Waiting waiting("asking for the status", !context.Options().json);
    Demand<decltype(GetStatus)>(library, "GetStatus", {"cannot read the status", Exchange::kRead}, &record,
                                static_cast<std::uint32_t>(sizeof(record)));
    return ReadStatus(record);
}

Report Once(Context& context) {
    const DeviceStatus status = Ask(context);
    return {StatusText(status), StatusJson(status), {}};
}

// People see each change at once; the document has them all in the end.
Report Watch(Context& context, const StatusOptions& options) {
    Report report;
    nlohmann::ordered_json& changes = report.data["changes"] = nlohmann::ordered_json::array();
    const Clock::time_point start = Clock::now();
    const auto passed = [start] { return std::chrono::duration_cast<milliseconds>(Clock::now() - start); };
    do {
        nlohmann::ordered_json now;
        try {
            const DeviceStatus status = Ask(context);
            now = StatusJson(status);
            if (!context.Options().json && (changes.empty() || changes.back().at("status") != now)) {
                fmt::print("{}{}", changes.empty() ? "" : "\n", StatusText(status));
                std::fflush(stdout);
            }
        } catch (const Failure& failure) {
            report.failure = failure;
            return report;
        }
        if (changes.empty() || changes.back().at("status") != now)
            changes.push_back({{"afterMs", passed().count()}, {"status", now}});
        if (options.end && passed() >= *options.end) return report;
    } while (platform::WaitForUser(options.interval) == platform::WaitEnd::kTime);
    // The same end as that of an interrupt in the middle of a question.
    report.failure = Failure{ExitCode::kInterrupted, "interrupted", {}, {}, {}, {}};
    return report;
}

}  // namespace

void AddStatus(CLI::App& app, Chosen& chosen) {
    CLI::App* const command = app.add_subcommand("status", "Print the printer's state, inks and trays");
    const auto options = std::make_shared<StatusOptions>();
    CLI::Option* const watch =
        command->add_flag("--watch", options->watch, "Print it again at each change, until Ctrl-C");
    AddTimeOption(
        *command, "--interval", [options](milliseconds time) { options->interval = time; },
        "With --watch: time between two questions [2s]")
        ->needs(watch);
    AddTimeOption(
        *command, "--for", [options](milliseconds time) { options->end = time; },
        "With --watch: how long [until Ctrl-C]")
        ->needs(watch);
    command->footer(
        "The status monitor is started if it does not run. A status that is not known yet is waited for, up\n"
        "to 14 seconds.\n\nExample: kestrel status --watch --interval 1s");
    command->callback([&chosen, options] {
        chosen = {"status", [options](Context& context) {
                      return options->watch ? Watch(context, *options) : Once(context);
                  }};
    });
}

}  // namespace cli
