// kestrel apply: a printer's settings as a file wants them.
#include <fmt/core.h>

#include "kestrel/commands/commands.h"
#include "kestrel/fleet/change.h"
#include "kestrel/settings/settings.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

struct ApplyOptions {
    std::string file;
    WantedState wanted;  // of the file
    ChangeOptions change;
};

std::string Shown(const catalogue::Row& row, const Value& value) {
    return row.IsSecret() ? std::string(kSecretMask) : ForTerminal(FormatValue(row, value));
}

tools::Json ShownJson(const catalogue::Row& row, const Value& value) {
    return row.IsSecret() ? tools::Json(kSecretMask) : JsonValue(row, value);
}

void Tell(Report& report, const ChangeResult& result, bool isDry) {
    tools::Json& changes = report.data["changes"] = tools::Json::EmptyArray();
    for (size_t i = 0; i < result.done; ++i) {
        const SettingChange& change = result.changes[i];
        const catalogue::Row& row = *change.row;
        report.text +=
            fmt::format("{}: {} -> {}\n", row.name, Shown(row, change.old), Shown(row, change.wanted));
        changes.Append(
            {{"key", row.name}, {"old", ShownJson(row, change.old)}, {"new", ShownJson(row, change.wanted)}});
    }
    for (const catalogue::Row* const row : result.putBack) {
        report.text += fmt::format("{}: put back\n", row->name);
        report.data["putBack"].Append(row->name);
    }
    report.data["same"] = result.same;
    report.data["dryRun"] = isDry;
    const char* const verb = isDry ? "would change" : "changed";
    report.text += fmt::format("{} {}, {} as wanted\n", result.done, verb, result.same);
}

// What a script that reads the error alone must know.
Failure WithWhatWasDone(Failure failure, const ChangeResult& result) {
    if (result.done == 0) return failure;
    std::string names;
    for (size_t i = 0; i < result.done; ++i)
        names += (i == 0 ? "" : ", ") + std::string(result.changes[i].row->name);
    failure.text += fmt::format(
        "; {}: {}", result.putBack.empty() ? "changed before it and left so" : "changed before it", names);
    return failure;
}

Report Apply(Context& context, const ApplyOptions& options) {
    const std::vector<WantedSetting> wanted = options.wanted.For(context.Options().printers.One());
    Report report;
    ChangeResult result;
    if (!wanted.empty()) result = BringToState(context.GetPrinter(), wanted, options.change);
    Tell(report, result, options.change.isDry);
    if (options.wanted.leftOut != 0) report.data["leftOut"] = options.wanted.leftOut;
    if (result.failure) report.failure = WithWhatWasDone(*result.failure, result);
    if (options.change.isDry && result.done != 0) report.exitStatus = static_cast<int>(ExitCode::Differs);
    return report;
}

// Printers that the file names, for a command line that names none.
PrinterChoice PrintersOf(const WantedState& wanted) {
    PrinterChoice choice;
    for (const WantedPart& part : wanted.parts)
        if (!part.printers.empty()) choice.written.push_back(part.printers);
    return choice;
}

}  // namespace

void AddApply(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("apply", "Bring settings to the state that a file wants");
    const auto options = std::make_shared<ApplyOptions>();
    command.AddOption("FILE", options->file, "Wanted settings, or a dump").Required();
    const tools::Option dry = command.AddFlag("--dry-run", options->change.isDry,
                                              "Only say what would change; exit code 9 if anything");
    command
        .AddFlag("--rollback", options->change.rollsBack,
                 "When a value is refused, put back what was changed before")
        .Excludes(dry);
    command.Note(
        "Lines `fax.redials = 3`; those under a heading [Office*] are for the printers of that name or "
        "pattern "
        "alone. A command line without printers means those of the headings. Lines with # are comments. The "
        "same as JSON: {\"settings\": {\"fax.redials\": 3}, \"printers\": {\"Office*\": {...}}}.");
    command.Note(
        "All values are checked before the first is sent. Every setting is read first; what differs is "
        "changed and read back. A refused value ends the work for that printer alone.");
    command.Example("kestrel -p 'Office*' apply wanted.txt --dry-run");
    command.OnUse([&chosen, options] {
        chosen = {"apply", [options](Context& context) { return Apply(context, *options); }, Reach::Several,
                  [options] {
                      options->wanted = LoadWantedState(options->file);
                      return PrintersOf(options->wanted);
                  }};
    });
}

}  // namespace cli
