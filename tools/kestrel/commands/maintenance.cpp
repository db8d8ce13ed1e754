// kestrel maintenance: what the printer does to itself.
#include <fmt/core.h>

#include <array>

#include "kestrel/commands/commands.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

enum class Argument { None, No, Yes };

struct Action {
    std::string_view name;
    const char* function;
    Argument argument;
    std::string_view meaning;
};
constexpr std::array<Action, 7> kActions = {{
    {"calibrate", "CalibrateHead", Argument::None, "calibrate the print head"},
    {"test-page", "PrintTestPage", Argument::None, "print a test page"},
    {"clean", "CleanHead", Argument::No, "clean the print head"},
    {"deep-clean", "CleanHead", Argument::Yes, "clean the print head thoroughly"},
    {"check-nozzles", "CheckNozzle", Argument::None, "print the nozzle check pattern"},
    {"align", "AlignHead", Argument::None, "align the print head"},
    {"vtoe", "VTOE", Argument::None, "run the VTOE procedure"},
}};

std::vector<tools::Explained> ActionWords() {
    std::vector<tools::Explained> words;
    words.reserve(kActions.size());
    for (const Action& action : kActions)
        words.push_back({std::string(action.name), std::string(action.meaning)});
    return words;
}

const Action& FindAction(std::string_view name) {
    for (const Action& action : kActions) {
        if (action.name == LowerAscii(name)) return action;
    }
    std::string names;
    for (const Action& action : kActions)
        names += fmt::format("{}{}", names.empty() ? "" : ", ", action.name);
    throw UsageFailure(fmt::format("there is no maintenance action \"{}\"", name), "choose one of " + names);
}

bool Start(const Library& library, const Action& action) {
    if (action.argument == Argument::None) return library.Find<kestrel_bool()>(action.function)() != 0;
    const kestrel_bool argument = action.argument == Argument::Yes ? 1 : 0;
    return library.Find<kestrel_bool(kestrel_bool)>(action.function)(argument) != 0;
}

Report Maintain(Context& context, const std::string& name) {
    const Action& action = FindAction(name);
    const Library& library = context.GetPrinter().GetLibrary();
    if (!Start(library, action)) {
        throw FailureOfLastCall(library, Attempt{fmt::format("cannot {}", action.meaning)});
    }
    return {fmt::format("{}: done\n", action.name), {{"action", action.name}}, {}};
}

}  // namespace

void AddMaintenance(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("maintenance", "Run a maintenance action");
    const auto name = std::make_shared<std::string>();
    command.AddOption("ACTION", *name, "What to do").Required().Explains(ActionWords());
    command.Note("The library allows five seconds for an action; --timeout does not count here.");
    command.Example("kestrel maintenance check-nozzles");
    command.OnUse([&chosen, name] {
        chosen = {"maintenance", [name](Context& context) { return Maintain(context, *name); },
                  Reach::Several};
    });
}

}  // namespace cli
