// Options by table: what each is called, what it fills and which action needs it.
#include "rundll32/command_line.h"

#include <fmt/core.h>

#include <algorithm>
#include <optional>
#include <string_view>

#include "rundll32/refusal.h"
#include "rundll32/text.h"
#include "shared/process.h"

namespace printui {

namespace {

struct ActionRow {
    std::string_view option;
    Action action;
    const char* help;
};

constexpr ActionRow kActions[] = {
    {"/ia", Action::InstallDriver, "install the driver of model /m from the file /f"},
    {"/if", Action::InstallPrinter, "install a printer of model /m on port /r, and its driver from /f"},
    {"/y", Action::MakeDefault, "make printer /n the default printer"},
};

struct TextRow {
    std::string_view option;
    std::string CommandLine::*member;
    const char* help;
};

constexpr TextRow kTexts[] = {
    {"/f", &CommandLine::infPath, "set-up information (INF) file"},
    {"/m", &CommandLine::model, "printer model, as the file names it"},
    {"/r", &CommandLine::port, "port name"},
    {"/b", &CommandLine::baseName, "name of the new printer (without it: the model)"},
    {"/n", &CommandLine::printer, "name of an installed printer"},
};

struct FlagRow {
    std::string_view option;
    bool CommandLine::*member;
    const char* help;
};

constexpr FlagRow kFlags[] = {
    {"/u", &CommandLine::keepDriver, "keep the model's driver when it is installed already"},
    {"/q", &CommandLine::quiet, "no messages"},
};

struct Need {
    Action action;
    std::string CommandLine::*member;
};

constexpr Need kNeeds[] = {
    {Action::InstallDriver, &CommandLine::infPath},  {Action::InstallDriver, &CommandLine::model},
    {Action::InstallPrinter, &CommandLine::infPath}, {Action::InstallPrinter, &CommandLine::model},
    {Action::InstallPrinter, &CommandLine::port},    {Action::MakeDefault, &CommandLine::printer},
};

Refusal UsageRefusal(std::string text) {
    return {std::move(text), "Call it without arguments for the list of options.", 2};
}

template <typename Row, size_t kCount>
const Row* FindRow(const Row (&rows)[kCount], std::string_view option) {
    const auto found =
        std::find_if(std::begin(rows), std::end(rows), [&](const Row& row) { return row.option == option; });
    return found != std::end(rows) ? found : nullptr;
}

// "printui.dll,PrintUIEntry", with or without the ending, wherever the library lies.
void CheckEntry(const std::string& word) {
    std::string entry = LowerAscii(word);
    entry.erase(0, entry.find_last_of("\\/") + 1);
    if (entry == "printui.dll,printuientry" || entry == "printui,printuientry") return;
    throw UsageRefusal(
        fmt::format("\"{}\" is not known; printui.dll,PrintUIEntry is the one entry there is.", word));
}

void CheckNeeds(const CommandLine& line) {
    for (const Need& need : kNeeds) {
        if (need.action != line.action || !(line.*need.member).empty()) continue;
        const auto row = std::find_if(std::begin(kTexts), std::end(kTexts),
                                      [&](const TextRow& text) { return text.member == need.member; });
        throw UsageRefusal(fmt::format("{} (the {}) is missing.", row->option, row->help));
    }
}

}  // namespace

CommandLine ParseCommandLine(const std::vector<std::string>& words, bool& quiet) {
    quiet =
        std::any_of(words.begin(), words.end(), [](const auto& word) { return LowerAscii(word) == "/q"; });
    CheckEntry(words.front());
    CommandLine line;
    std::optional<Action> action;
    for (auto word = words.begin() + 1; word != words.end(); ++word) {
        const std::string option = LowerAscii(*word);
        if (const ActionRow* row = FindRow(kActions, option)) {
            if (action) throw UsageRefusal("more than one of /ia, /if and /y is given.");
            action = row->action;
        } else if (const FlagRow* flag = FindRow(kFlags, option)) {
            line.*flag->member = true;
        } else if (const TextRow* text = FindRow(kTexts, option)) {
            if (word + 1 == words.end()) throw UsageRefusal(fmt::format("nothing follows {}.", *word));
            line.*text->member = *++word;
        } else {
            throw UsageRefusal(fmt::format("the option \"{}\" is not known.", *word));
        }
    }
    if (!action) throw UsageRefusal("none of /ia, /if and /y is given.");
    line.action = *action;
    CheckNeeds(line);
    return line;
}

std::string UsageText() {
    std::string text = "Usage: rundll32 printui.dll,PrintUIEntry ACTION OPTIONS\n\n";
    const auto add = [&](const auto& rows, const char* value) {
        for (const auto& row : rows)
            text += fmt::format("  {:<10} {}\n", fmt::format("{}{}", row.option, value), row.help);
    };
    add(kActions, "");
    text += '\n';
    add(kTexts, " TEXT");
    add(kFlags, "");
    return text;
}

tools::CommandText Description() {
    tools::CommandText text;
    text.name = "rundll32";
    text.about = "Installs printer drivers and printers, called as on Windows";
    tools::OptionText& entry = text.options.emplace_back();
    entry.names = {"printui.dll,PrintUIEntry"};
    entry.about = "the entry of the printer user interface, the only one there is";
    entry.isArgument = entry.isRequired = true;
    const auto add = [&](const auto& rows, const char* value) {
        for (const auto& row : rows) {
            tools::OptionText& option = text.options.emplace_back();
            option.names = {std::string(row.option)};
            option.value = value;
            option.about = row.help;
        }
    };
    add(kActions, "");
    add(kTexts, "TEXT");
    add(kFlags, "");
    text.notes = {"One of /ia, /if and /y is given. Options are taken without case."};
    text.examples = {{"rundll32 printui.dll,PrintUIEntry /if /b Office /f zr.inf /r USB001 /m \"ZR 9900\"",
                      "install a printer"},
                     {"rundll32 printui.dll,PrintUIEntry /y /n Office", "make it the default printer"}};
    text.exitCodes = {{"0", "done"}, {"1", "not done, for the reason that is printed"}, {"2", "wrong usage"}};
    text.variables = tools::CommonVariables();
    return text;
}

}  // namespace printui
