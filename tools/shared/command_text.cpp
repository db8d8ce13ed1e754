// The two forms in which a command line is described: for programs, and at the end of the help.
#include "shared/command_text.h"

#include <fmt/core.h>

#include <algorithm>
#include <sstream>

#include "shared/json.h"

namespace tools {
namespace {

constexpr size_t kHelpWidth = 100;

Json ToJson(const std::vector<Explained>& rows) {
    Json json = Json::EmptyArray();
    for (const Explained& row : rows)
        json.Append({{"text", row.text}, {"about", row.about}});
    return json;
}

Json ToJson(const OptionText& option) {
    return {{"names", option.names},
            {"value", option.value},
            {"about", option.about},
            {"initial", option.initial},
            {"argument", option.isArgument},
            {"required", option.isRequired},
            {"repeatable", option.isRepeatable},
            {"environment", option.environment},
            {"words", ToJson(option.words)}};
}

Json ToJson(const CommandText& command) {
    Json options = Json::EmptyArray();
    for (const OptionText& option : command.options)
        options.Append(ToJson(option));
    Json subcommands = Json::EmptyArray();
    for (const CommandText& subcommand : command.subcommands)
        if (!subcommand.isHidden) subcommands.Append(ToJson(subcommand));
    return {{"name", command.name},
            {"about", command.about},
            {"needsSubcommand", command.needsSubcommand},
            {"options", std::move(options)},
            {"subcommands", std::move(subcommands)},
            {"notes", command.notes},
            {"examples", ToJson(command.examples)},
            {"exitCodes", ToJson(command.exitCodes)},
            {"variables", ToJson(command.variables)},
            {"files", ToJson(command.files)}};
}

std::string Wrapped(const std::string& paragraph) {
    std::string text;
    size_t column = 0;
    std::istringstream words(paragraph);
    for (std::string word; words >> word;) {
        const bool fits = column + word.size() < kHelpWidth;
        if (column > 0) text += fits ? ' ' : '\n';
        column = (fits ? column + 1 : 0) + word.size();
        text += word;
    }
    return text + '\n';
}

std::string Table(const char* title, const std::vector<Explained>& rows) {
    size_t width = 0;
    for (const Explained& row : rows)
        width = std::max(width, row.text.size());
    std::string text = rows.empty() ? std::string() : fmt::format("{}:\n", title);
    for (const Explained& row : rows)
        text += fmt::format("  {:<{}}  {}\n", row.text, width, row.about);
    return text;
}

std::string ExamplesText(const std::vector<Explained>& examples) {
    if (examples.size() == 1 && examples.front().about.empty())
        return fmt::format("Example: {}\n", examples.front().text);
    std::string text = examples.empty() ? std::string() : "Examples:\n";
    for (const Explained& example : examples)
        text += fmt::format("  {}\n      {}\n", example.text, example.about);
    return text;
}

}  // namespace

std::string DescriptionJson(const CommandText& program) {
    return ToJson(program).Dump(1);
}

std::string HelpFooter(const CommandText& command) {
    std::vector<std::string> parts;
    for (const OptionText& option : command.options)
        if (option.isArgument &&
            std::ranges::any_of(option.words, [](const Explained& word) { return !word.about.empty(); }))
            parts.push_back(Table(option.value.c_str(), option.words));
    for (const std::string& note : command.notes)
        parts.push_back(Wrapped(note));
    parts.insert(parts.end(), {ExamplesText(command.examples), Table("Environment", command.variables),
                               Table("Files", command.files), Table("Exit codes", command.exitCodes)});
    std::string text;
    for (const std::string& part : parts)
        if (!part.empty()) text += (text.empty() ? "" : "\n") + part;
    if (!text.empty()) text.pop_back();  // the help ends its last line itself
    return text;
}

}  // namespace tools
