// kestrel complete: names of settings for a shell's completion.
#include "kestrel/commands/commands.h"
#include "kestrel/settings/settings.h"

namespace cli {
namespace {

Report Complete(const std::string& prefix) {
    Report report;
    report.data["keys"] = tools::Json::EmptyArray();
    for (const catalogue::Row* const row : MatchingSettings(prefix + "*")) {
        report.text += std::string(row->name) + '\n';
        report.data["keys"].Append(row->name);
    }
    return report;
}

}  // namespace

void AddComplete(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("complete", "Print the settings that begin with a text");
    const auto prefix = std::make_shared<std::string>();
    command.AddOption("KEYPREFIX", *prefix, "Beginning of a key [all settings]");
    command.Footer("Meant for shells; see completion.bash.\n\nExample: kestrel complete fax.");
    command.OnUse([&chosen, prefix] {
        chosen = {"complete", [prefix](Context&) { return Complete(*prefix); }};
    });
}

}  // namespace cli
