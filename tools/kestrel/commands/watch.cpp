// kestrel watch: what changes at the printers, a line each.
#include <fmt/core.h>

#include <cstdio>

#include "kestrel/commands/commands.h"
#include "kestrel/fleet/observers.h"
#include "kestrel/installation/product_configuration.h"
#include "kestrel/platform.h"
#include "kestrel/printer/device_status.h"
#include "kestrel/settings/offers.h"
#include "kestrel/settings/settings.h"
#include "kestrel/text/text.h"
#include "shared/time_text.h"

namespace cli {
namespace {

using std::chrono::milliseconds;
using Facts = std::vector<std::pair<std::string, std::string>>;

struct WatchOptions {
    std::vector<std::string> names;
    milliseconds interval{2000};
    std::optional<milliseconds> end;  // none: until Ctrl-C
};

Facts SettingFacts(const Printer& printer, const std::vector<const catalogue::Row*>& rows) {
    Facts facts;
    for (const catalogue::Row* const row : rows) {
        const Value value = printer.Get(*row);
        facts.emplace_back(row->name, row->IsSecret() ? kSecretMask : FormatValue(*row, value));
    }
    return facts;
}

Facts StatusFacts(const Printer& printer) {
    const DeviceStatus status = AskDeviceStatus(printer);
    Facts facts = {{"state", std::string(status.word)}, {"text", status.text}};
    if (!status.details) return facts;
    for (const InkLevel& ink : status.details->inks) {
        facts.emplace_back(fmt::format("ink.{}", ink.name), fmt::format("{} %", ink.percent));
        facts.emplace_back(fmt::format("ink.{}.state", ink.name), ink.state);
    }
    facts.emplace_back("tray.upper", fmt::format("{} %", status.details->upperTray));
    facts.emplace_back("tray.lower", fmt::format("{} %", status.details->lowerTray));
    facts.emplace_back("tray.photo", status.details->photoTray ? "yes" : "no");
    facts.emplace_back("network", status.details->networkUp ? "up" : "down");
    return facts;
}

std::string EventLine(const std::string& printer, const SightEvent& event) {
    const std::string what = event.key.empty()
                                 ? event.answers ? "answers again" : "does not answer: " + event.now
                                 : fmt::format("{}: {} -> {}", event.key, event.old, event.now);
    return fmt::format("{} {} {}\n", tools::LocalTimeOfDay(std::chrono::system_clock::now()),
                       ForTerminal(printer), ForTerminal(what));
}

std::string EventJson(const std::string& printer, const SightEvent& event) {
    tools::Json json = {{"time", tools::UtcTime(std::chrono::system_clock::now())}, {"printer", printer}};
    if (event.key.empty()) {
        json["answers"] = event.answers;
        if (!event.answers) json["reason"] = event.now;
    } else {
        json["key"] = event.key;
        json["old"] = event.old;
        json["new"] = event.now;
    }
    return json.Dump() + '\n';
}

std::vector<std::string> NamesOf(const PrinterChoice& choice, const std::string& product) {
    if (choice.IsSeveral() || !choice.written.empty())
        return ChosenPrinters(choice, {InstalledPrinters(), ConfiguredDrivers(product)});
    return {std::string()};
}

Report Watch(Context& context, const WatchOptions& options) {
    const GlobalOptions& global = context.Options();
    std::vector<const catalogue::Row*> rows;
    for (const std::string& name : options.names)
        rows.push_back(&FindReadableSetting(name));
    const auto look = [rows](const Printer& printer) {
        return rows.empty() ? StatusFacts(printer) : SettingFacts(printer, rows);
    };
    const auto tell = [json = global.json](const std::string& printer, const SightEvent& event) {
        const std::string name = printer.empty() ? "printer" : printer;
        fmt::print("{}", json ? EventJson(name, event) : EventLine(name, event));
        std::fflush(stdout);
    };
    Report report;
    report.isTold = true;
    const Observers observers(context.GetLibrary(),
                              {global.product, global.timeoutMs, options.interval, look, tell},
                              NamesOf(global.printers, global.product));
    const milliseconds longest = std::chrono::hours(24);
    do {
        if (platform::WaitForUser(options.end.value_or(longest)) == platform::WaitEnd::Interrupt)
            report.failure = Failure{ExitCode::Interrupted, "interrupted", {}, {}, {}, {}};
    } while (!report.failure && !options.end);
    return report;
}

}  // namespace

void AddWatch(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("watch", "Print what changes, a line each, until Ctrl-C");
    const auto options = std::make_shared<WatchOptions>();
    command.AddOption("KEY", options->names, "Setting to watch [state, inks and trays]")
        .Offers(OfferReadable);
    AddTimeOption(
        command, "--interval", [options](milliseconds time) { options->interval = time; },
        "Time between two questions to a printer [2s]");
    AddTimeOption(
        command, "--for", [options](milliseconds time) { options->end = time; }, "How long [until Ctrl-C]");
    command.Note(
        "Nothing is told of what is found at first, but that a printer does not answer. With --json each "
        "line "
        "is a JSON document of its own. Secrets are masked: that one has changed is not told.");
    command.Example("kestrel --all watch");
    command.Example("kestrel -p Office watch fax.redials wireless.state --interval 500ms");
    command.OnUse([&chosen, options] {
        chosen = {"watch", [options](Context& context) { return Watch(context, *options); }, Reach::Itself};
    });
}

}  // namespace cli
