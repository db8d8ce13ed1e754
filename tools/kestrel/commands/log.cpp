// kestrel log: a page of a record or a trace.
#include "kestrel/commands/commands.h"
#include "kestrel/log/page.h"
#include "shared/user_error.h"

namespace cli {
namespace {

Report Log(const std::string& file) {
    try {
        const tools::ExchangeLog log = tools::LoadExchangeLog(file);
        Report report;
        report.text = LogPage(log);
        report.data = {{"exchanges", log.exchanges.size()}, {"page", report.text}};
        return report;
    } catch (const tools::UserError& error) {
        throw UsageFailure(error.what(), "name a file that was written by this version's programs");
    }
}

}  // namespace

void AddLog(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("log", "Print a page for the browser that shows a record or a trace");
    const auto file = std::make_shared<std::string>();
    command
        .AddOption("FILE", *file, "Record of `kestrel record`, or trace of `kestrel-vprinter --trace json`")
        .Required();
    command.Note(
        "The page is one file and asks for nothing from anywhere. It shows the file's secrets, if the "
        "file has them.");
    command.Example("kestrel log office.jsonl > office.html");
    command.OnUse([&chosen, file] { chosen = {"log", [file](Context&) { return Log(*file); }}; });
}

}  // namespace cli
