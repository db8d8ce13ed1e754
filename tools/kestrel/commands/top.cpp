#include "kestrel/commands/top.h"

#include "kestrel/commands/commands.h"

namespace cli {

void AddTop(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("top", "Show all printers on the whole screen");
    const auto interval = std::make_shared<std::chrono::milliseconds>(1000);
    AddTimeOption(
        command, "--interval", [interval](std::chrono::milliseconds time) { *interval = time; },
        "Time between two questions to a printer [1s]");
    command.Note(
        "All printers of the product, or those of --printer. Keys: q ends, s changes the order (name, "
        "trouble, "
        "ink, rate), f shows all or those in trouble, d shows one whole, up and down choose it. EX/S counts "
        "the answers to this program's own questions.");
    command.Example("kestrel top");
    command.Example("kestrel -p 'Office*' top --interval 5s");
    command.OnUse([&chosen, interval] {
        chosen = {"top", [interval](Context& context) { return ShowTop(context, *interval); }, Reach::Itself};
    });
}

}  // namespace cli
