// kestrel diff: the settings of two printers, dumps or wanted files.
#include <fmt/core.h>

#include <filesystem>

#include "kestrel/commands/commands.h"
#include "kestrel/fleet/differences.h"
#include "kestrel/output/progress.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

struct DiffOptions {
    std::string left;
    std::string right;
};

bool IsFile(const std::string& name) {
    std::error_code error;
    return std::filesystem::is_regular_file(name, error);
}

Failure Of(const std::string& printer, Failure failure) {
    failure.text = printer + ": " + failure.text;
    return failure;
}

SettingSide SideOf(Context& context, const std::string& name, const std::string& other) {
    if (IsFile(name)) return SideOfFile(LoadWantedState(name), IsFile(other) ? std::string() : other);
    const GlobalOptions& options = context.Options();
    const Printer printer(context.GetLibrary(), options.product, name, options.timeoutMs);
    const WaitLine line("asking " + ForTerminal(name), context.ShowsProgress());
    SettingSide side = SideOfPrinter(printer, [&line](std::string_view setting) { line.Show(setting); });
    if (side.failure) throw Of(name, *side.failure);
    return side;
}

std::string Shown(const catalogue::Row& row, const std::optional<Value>& value) {
    if (!value) return "-";
    return row.IsSecret() ? std::string(kSecretMask) : ForTerminal(FormatValue(row, *value));
}

tools::Json ShownJson(const catalogue::Row& row, const std::optional<Value>& value) {
    if (!value) return nullptr;
    return row.IsSecret() ? tools::Json(kSecretMask) : JsonValue(row, *value);
}

Report Diff(Context& context, const DiffOptions& options) {
    const SettingSide left = SideOf(context, options.left, options.right);
    const SettingSide right = SideOf(context, options.right, options.left);
    const Comparison comparison = Compare(left, right);

    Report report;
    tools::Json& differences = report.data["differences"] = tools::Json::EmptyArray();
    std::vector<std::vector<std::string>> rows = {
        {"KEY", ForTerminal(options.left), ForTerminal(options.right)}};
    for (const Difference& difference : comparison.differences) {
        const catalogue::Row& row = *difference.row;
        rows.push_back({std::string(row.name), Shown(row, difference.left), Shown(row, difference.right)});
        differences.Append({{"key", row.name},
                            {"left", ShownJson(row, difference.left)},
                            {"right", ShownJson(row, difference.right)}});
    }
    report.data["compared"] = comparison.compared;
    if (comparison.differences.empty()) {
        report.text = fmt::format("no difference in {} settings\n", comparison.compared);
    } else {
        report.text = AlignedTable(rows, context.ResultPaint());
        report.exitStatus = static_cast<int>(ExitCode::Differs);
    }
    return report;
}

}  // namespace

void AddDiff(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("diff", "Compare settings of printers, dumps and wanted files");
    const auto options = std::make_shared<DiffOptions>();
    command.AddOption("LEFT", options->left, "Installed printer, dump or wanted file")
        .Required()
        .Offers(OfferPrinters);
    command.AddOption("RIGHT", options->right, "What it is compared with").Required().Offers(OfferPrinters);
    command.Note(
        "What is the name of a file is that file, everything else a printer. Exit code 9 when there are "
        "differences. Settings that can be changed are compared, of a wanted file those that it has; - "
        "stands "
        "for what was not told, and secrets are not shown.");
    command.Example("kestrel diff Office office.json");
    command.OnUse([&chosen, options] {
        chosen = {"diff", [options](Context& context) { return Diff(context, *options); }};
    });
}

}  // namespace cli
