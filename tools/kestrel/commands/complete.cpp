#include "kestrel/commands/commands.h"
#include "kestrel/settings/settings.h"

namespace cli {
namespace {

Report Complete(const std::string& prefix) {
    Report report;
    report.data["keys"] = nlohmann::ordered_json::array();
    for (const catalogue::Row* const row : MatchingSettings(prefix + "*")) {
        report.text += std::string(row->name) + '\n';
        report.data["keys"].push_back(row->name);
    }
    return report;
}

}  // namespace

void AddComplete(CLI::App& app, Chosen& chosen) {
    CLI::App* const command = app.add_subcommand("complete", "Print the settings that begin with a text");
    const auto prefix = std::make_shared<std::string>();
    command->add_option("KEYPREFIX", *prefix, "Beginning of a key [all settings]");
    command->footer("Meant for shells; see completion.bash.\n\nExample: kestrel complete fax.");
    command->callback([&chosen, prefix] {
        chosen = {"complete", [prefix](Context&) { return Complete(*prefix); }};
    });
}

}  // namespace cli
