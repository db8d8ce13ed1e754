// kestrel record: runs a program whose exchanges with printers are kept.
#include <fmt/core.h>

#include <filesystem>

#include "kestrel/commands/commands.h"
#include "kestrel/platform.h"
#include "shared/line_file.h"

namespace cli {
namespace {

struct RecordOptions {
    std::string file;
    std::vector<std::string> words;
    bool secrets = false;
};

// The library in that program writes, and cannot say that it could not.
Report Record(const RecordOptions& options) {
    const std::string path = std::filesystem::absolute(options.file).string();
    if (!tools::LineFile(stderr).Open(path)) {
        throw ValueFailure(fmt::format("the file {} cannot be written", path),
                           "check the folder and the free space");
    }
    const std::optional<int> status = platform::RunProgram(
        options.words,
        {{"KESTREL_RECORD", path}, {"KESTREL_RECORD_SECRETS", options.secrets ? "1" : std::string()}});
    if (!status) {
        throw UsageFailure(fmt::format("the program {} cannot be started", options.words.front()),
                           "write its name and arguments behind --, as in a shell");
    }
    Report report;
    report.data = {{"file", path}};
    report.exitStatus = *status;
    return report;
}

}  // namespace

void AddRecord(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("record", "Run a program and keep its exchanges with printers");
    const auto options = std::make_shared<RecordOptions>();
    command.AddOption("FILE", options->file, "File to append to, a line for each exchange").Required();
    command.AddOption("COMMAND", options->words, "Program and its arguments, behind --").Required();
    command.AddFlag("--secrets", options->secrets, "Keep security keys and the pass phrase too");
    command.Note(
        "The exit code is that of the program. `kestrel-vprinter --replay FILE` answers from the file, "
        "and `kestrel log FILE` makes a page of it.");
    command.Note(
        "The environment variable KESTREL_RECORD=FILE does the same for any program that loads the "
        "library, and KESTREL_RECORD_SECRETS=1 keeps secrets.");
    command.Example("kestrel record office.jsonl -- kestrel -p Office list");
    command.OnUse([&chosen, options] {
        chosen = {"record", [options](Context&) { return Record(*options); }};
    });
}

}  // namespace cli
