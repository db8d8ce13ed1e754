// kestrel monitor: the status monitor's windows, and when it shows them.
#include <fmt/core.h>

#include <array>

#include "kestrel/commands/commands.h"

namespace cli {
namespace {

struct Window {
    const char* name;
    const char* function;
    const char* shown;
    const char* help;
    bool ofPrinter;
};
constexpr std::array<Window, 3> kWindows = {{
    {"show", "ShowStatusMonitor", "the status window", "Open the status window; starts the monitor", true},
    {"maintenance", "ShowMaintenance", "the maintenance window",
     "Open the maintenance window; starts the monitor", true},
    {"about", "ShowAboutBox", "the about box", "Open the about box of a monitor that runs", false},
}};

Report Show(Context& context, const Window& window) {
    const Library& library = window.ofPrinter ? context.GetPrinter().GetLibrary() : context.GetLibrary();
    Demand<kestrel_bool()>(library, window.function,
                           {fmt::format("the status monitor does not open {}", window.shown)});
    return {fmt::format("the status monitor has opened {}\n", window.shown), {{"window", window.name}}, {}};
}

// The mode belongs to the product whose configuration a selection has loaded.
Report Mode(Context& context, const std::string& wanted) {
    const Library& library = context.GetPrinter().GetLibrary();
    if (!wanted.empty()) {
        Demand<decltype(SetStatusMonitorDisplayMode)>(
            library, "SetStatusMonitorDisplayMode",
            {"cannot store the display mode",
             Exchange::Write,
             {ExitCode::OwnFault, "the registry refuses it", "check the rights on the user's registry"}},
            wanted == "always" ? 1 : 0);
    }
    const bool always =
        library.Find<decltype(GetStatusMonitorDisplayMode)>("GetStatusMonitorDisplayMode")() != 0;
    const char* const word = always ? "always" : "off";
    return {fmt::format("{}\n", word), {{"mode", word}}, {}};
}

void DeclareMode(const tools::Command& monitor, Chosen& chosen) {
    const tools::Command command =
        monitor.AddSubcommand("mode", "Print or set whether the status window is always shown");
    const auto wanted = std::make_shared<std::string>();
    command.AddOption("MODE", *wanted, "always or off [print it]").OneOf({"always", "off"});
    command.Example("kestrel monitor mode off");
    command.OnUse([&chosen, wanted] {
        chosen = {"monitor mode", [wanted](Context& context) { return Mode(context, *wanted); }};
    });
}

}  // namespace

void AddMonitor(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("monitor", "Let the status monitor open its windows");
    command.RequireSubcommand();
    for (const Window& window : kWindows) {
        const tools::Command open = command.AddSubcommand(window.name, window.help);
        open.Note("Six seconds are allowed, and the start takes one more; --timeout does not count here.");
        open.Example(fmt::format("kestrel monitor {}", window.name));
        open.OnUse([&chosen, &window] {
            chosen = {fmt::format("monitor {}", window.name),
                      [&window](Context& context) { return Show(context, window); }};
        });
    }
    DeclareMode(command, chosen);
}

}  // namespace cli
