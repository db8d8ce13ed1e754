// kestrel set: a setting's new value, read back on demand.
#include <fmt/core.h>

#include "kestrel/commands/commands.h"
#include "kestrel/settings/offers.h"
#include "kestrel/settings/settings.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

struct SetOptions {
    std::string name;
    std::string written;
    bool verify = false;
};

Report Set(Context& context, const SetOptions& options) {
    const catalogue::Row& row = FindWritableSetting(options.name);
    if (options.verify && !row.CanRead()) {
        throw UsageFailure(fmt::format("{} cannot be read back", row.name), "leave --verify out");
    }
    const Value value = ParseValue(row, options.written);
    context.GetPrinter().Set(row, value);
    if (options.verify) context.GetPrinter().Verify(row, value);

    Report report;
    report.data = {{"key", row.name}};
    if (!row.IsSecret()) report.data["value"] = JsonValue(row, value);
    report.data["verified"] = options.verify;
    return report;
}

}  // namespace

void AddSet(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("set", "Change a setting");
    const auto options = std::make_shared<SetOptions>();
    command.AddOption("KEY", options->name, "Setting, such as fax.redials").Required().Offers(OfferWritable);
    command.AddOption("VALUE", options->written, "yes/no, a number, a word, a dotted address or a text")
        .Required()
        .Offers(OfferValuesOfKey);
    command.AddFlag("--verify", options->verify, "Read the setting back and compare");
    command.Note(
        "`kestrel list KEY` shows the allowed words. A text that begins with a dash follows after --.");
    command.Example("kestrel set fax.redials 3 --verify");
    command.OnUse([&chosen, options] {
        chosen = {"set", [options](Context& context) { return Set(context, *options); }, Reach::Several};
    });
}

}  // namespace cli
