// kestrel list: settings with their types, values and what they may be.
#include <fmt/core.h>

#include "kestrel/commands/commands.h"
#include "kestrel/output/progress.h"
#include "kestrel/settings/offers.h"
#include "kestrel/settings/settings.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

struct ListOptions {
    std::string pattern;
    bool showSecrets = false;
};

struct Listed {
    const catalogue::Row* row;
    std::optional<Value> value;      // of a readable setting that was read
    std::optional<Failure> failure;  // why it was not
};

// Ends early, with the reason in the last entry, when going on is hopeless.
std::vector<Listed> ReadAll(Context& context, const std::vector<const catalogue::Row*>& rows) {
    const Printer& printer = context.GetPrinter();
    Progress progress(rows.size(), context.ShowsProgress());
    std::vector<Listed> list;
    for (const catalogue::Row* const row : rows) {
        progress.Step(row->name);
        Listed& listed = list.emplace_back(Listed{row, {}, {}});
        if (!row->CanRead()) continue;
        try {
            listed.value = printer.Get(*row);
        } catch (const Failure& failure) {
            listed.failure = failure;
            if (IsHopeless(failure)) break;
        }
    }
    return list;
}

std::string ShownValue(const Listed& listed, bool showSecrets) {
    if (listed.failure) return "?";
    if (!listed.value) return "-";
    const bool masked = !showSecrets && listed.row->IsSecret();
    return masked ? std::string(kSecretMask) : ForTerminal(FormatValue(*listed.row, *listed.value));
}

// What `set` takes; the words also of a setting that can only be read, to know what to expect.
std::string AllowedColumn(const catalogue::Row& row) {
    return row.CanWrite() || FormOf(row) == ValueForm::Word ? AllowedValues(row) : std::string();
}

tools::Json ListedJson(const Listed& listed, bool showSecrets) {
    const catalogue::Row& row = *listed.row;
    tools::Json json = {{"key", row.name},
                        {"type", TypeName(row)},
                        {"readable", row.CanRead()},
                        {"writable", row.CanWrite()}};
    for (const catalogue::EnumEntry& entry : row.words)
        json["words"].Append(entry.name);
    if (listed.value) {
        const bool masked = !showSecrets && row.IsSecret();
        json["value"] = masked ? tools::Json(kSecretMask) : JsonValue(row, *listed.value);
        if (masked) json["masked"] = true;
    }
    if (listed.failure) json["error"] = listed.failure->text;
    return json;
}

Report List(Context& context, const ListOptions& options) {
    const std::vector<const catalogue::Row*> matching = MatchingSettings(options.pattern);
    if (matching.empty()) {
        throw UsageFailure(fmt::format("no setting matches \"{}\"", options.pattern),
                           NearNamesAdvice(options.pattern));
    }

    Report report;
    report.data["settings"] = tools::Json::EmptyArray();
    std::vector<std::vector<std::string>> rows = {{"KEY", "TYPE", "ACCESS", "VALUE", "ALLOWED"}};
    for (const Listed& listed : ReadAll(context, matching)) {
        const catalogue::Row& row = *listed.row;
        rows.push_back({std::string(row.name), std::string(TypeName(row)), AccessName(row),
                        ShownValue(listed, options.showSecrets), AllowedColumn(row)});
        report.data["settings"].Append(ListedJson(listed, options.showSecrets));
        if (listed.failure && !report.failure) report.failure = listed.failure;
    }
    report.text = AlignedTable(rows, context.ResultPaint());
    return report;
}

}  // namespace

void AddList(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("list", "Print settings with type, value and allowed values");
    const auto options = std::make_shared<ListOptions>();
    command.AddOption("PATTERN", options->pattern, "Part of a key, or a pattern with * and ? [all settings]")
        .Offers(OfferSettings);
    command.AddFlag("--show-secrets", options->showSecrets, "Print keys and pass phrases instead of a mask");
    command.Note("A value of - cannot be read, one of ? could not be read this time.");
    command.Example("kestrel list 'fax.*'");
    command.OnUse([&chosen, options] {
        chosen = {"list", [options](Context& context) { return List(context, *options); }, Reach::Several};
    });
}

}  // namespace cli
