// kestrel get: values of settings.
#include <fmt/core.h>

#include "kestrel/commands/commands.h"
#include "kestrel/settings/offers.h"
#include "kestrel/settings/settings.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

// A single setting gives its bare value; several give lines of name and value.
// All names are looked up before the first exchange. Asked by its name, also a secret is shown.
Report Get(Context& context, const std::vector<std::string>& names) {
    std::vector<const catalogue::Row*> rows;
    rows.reserve(names.size());
    for (const std::string& name : names)
        rows.push_back(&FindReadableSetting(name));

    Report report;
    tools::Json& values = report.data["values"] = tools::Json::EmptyObject();
    for (const catalogue::Row* const row : rows) {
        try {
            const Value value = context.GetPrinter().Get(*row);
            const std::string shown = ForTerminal(FormatValue(*row, value));
            report.text += rows.size() == 1 ? shown + '\n' : fmt::format("{} {}\n", row->name, shown);
            values[std::string(row->name)] = JsonValue(*row, value);
        } catch (const Failure& failure) {
            report.failure = failure;
            break;
        }
    }
    return report;
}

}  // namespace

void AddGet(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("get", "Print the value of one or more settings");
    const auto names = std::make_shared<std::vector<std::string>>();
    command.AddOption("KEY", *names, "Setting, such as fax.redials").Required().Offers(OfferReadable);
    command.Note("One KEY prints the bare value, several print lines of key and value.");
    command.Example("kestrel get fax.redials fax.mode");
    command.OnUse([&chosen, names] {
        chosen = {"get", [names](Context& context) { return Get(context, *names); }, Reach::Several};
    });
}

}  // namespace cli
