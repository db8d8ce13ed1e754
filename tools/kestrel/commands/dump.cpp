// kestrel dump: everything that a printer says, in one file.
#include <fmt/core.h>

#include "kestrel/commands/commands.h"
#include "kestrel/output/progress.h"
#include "kestrel/printer/printer_dump.h"
#include "shared/file.h"

namespace cli {
namespace {

struct DumpOptions {
    std::string file;  // empty: standard output
    bool secrets = false;
};

Report Dump(Context& context, const DumpOptions& options) {
    const Printer& printer = context.GetPrinter();
    const WaitLine line("asking the printer", context.ShowsProgress());
    const PrinterDump dump = DumpPrinter(printer, options.secrets, context.Options().timeoutMs,
                                         [&](std::string_view name) { line.Show(std::string(name)); });
    const std::string text = dump.document.Dump(2) + '\n';
    Report report;
    if (options.file.empty()) {
        report.text = text;
        report.data["dump"] = dump.document;
    } else {
        if (const auto error = tools::RewriteFile(options.file, text)) {
            throw ValueFailure(
                fmt::format("the file {} cannot be written: {}", options.file, error.message()),
                "check the folder and the free space");
        }
        report.text =
            fmt::format("{} answers kept in {}, {} of them errors\n", dump.asked, options.file, dump.failed);
        report.data["file"] = options.file;
    }
    report.data["asked"] = dump.asked;
    report.data["errors"] = dump.failed;
    return report;
}

}  // namespace

void AddDump(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("dump", "Keep everything that the printer says");
    const auto options = std::make_shared<DumpOptions>();
    command.AddOption("-o,--output", options->file, "File to write [standard output]").TypeName("FILE");
    command.AddFlag("--secrets", options->secrets, "Keep security keys and the pass phrase too");
    command.Note(
        "`kestrel-vprinter --from FILE` is that printer. What the printer does not answer is kept as its "
        "error. Nothing is changed or searched; the clock is kept as its distance from this computer's.");
    command.Example("kestrel dump -o office.json");
    command.OnUse([&chosen, options] {
        chosen = {"dump", [options](Context& context) { return Dump(context, *options); }};
    });
}

}  // namespace cli
