// Each member is one of the parser library's, whose templates are made here and nowhere else.
#include "shared/command_line.h"

#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <map>

#include "shared/process.h"

namespace tools {

struct CommandTexts final {
    std::map<const CLI::App*, CommandText> commands;
    std::map<const CLI::Option*, OptionText> options;
};

namespace {

std::vector<std::string> NamesOf(const CLI::Option& option) {
    if (option.get_positional()) return {option.get_name(true)};
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames())
        names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        names.push_back("--" + name);
    return names;
}

std::string ValueOf(const CLI::Option& option) {
    if (option.get_positional()) return option.get_name(true);
    if (option.get_items_expected_max() == 0) return {};
    const std::string type = option.get_type_name();
    return type.substr(0, type.find(':'));  // behind it the checks
}

OptionText Described(const CLI::Option& option, const CommandTexts& texts) {
    const auto found = texts.options.find(&option);  // --help and --version are the parser's own
    OptionText text = found != texts.options.end() ? found->second : OptionText();
    text.names = NamesOf(option);
    text.value = ValueOf(option);
    text.about = option.get_description();
    text.initial = option.get_default_str();
    text.environment = option.get_envname();
    text.isArgument = option.get_positional();
    text.isRequired = option.get_required();
    text.isRepeatable = option.get_items_expected_max() > 1;
    return text;
}

CommandText Described(const CLI::App& app, const CommandTexts& texts) {
    CommandText text = texts.commands.at(&app);
    text.name = app.get_name();
    text.about = app.get_description();
    text.isHidden = app.get_group().empty();
    text.needsSubcommand = app.get_require_subcommand_min() > 0;
    for (const CLI::Option* const option : app.get_options())
        text.options.push_back(Described(*option, texts));
    for (const CLI::App* const subcommand : app.get_subcommands([](const CLI::App*) { return true; }))
        text.subcommands.push_back(Described(*subcommand, texts));
    return text;
}

}  // namespace

const Option& Option::Required() const {
    option_->required();
    return *this;
}
const Option& Option::TypeName(const std::string& name) const {
    option_->type_name(name);
    return *this;
}
const Option& Option::ShowsDefault() const {
    option_->capture_default_str();
    return *this;
}
const Option& Option::OneOf(std::vector<std::string> words) const {
    for (const std::string& word : words)
        text_->words.push_back({word, {}});
    option_->check(CLI::IsMember(std::move(words)));
    return *this;
}
const Option& Option::Explains(std::vector<Explained> words) const {
    text_->words = std::move(words);
    return *this;
}
const Option& Option::Offers(OfferFunction offer) const {
    text_->offer = std::move(offer);
    return *this;
}
const Option& Option::Between(int lowest, int highest) const {
    option_->check(CLI::Range(lowest, highest));
    return *this;
}
const Option& Option::Check(std::function<std::string(const std::string&)> problemOf) const {
    option_->check(CLI::Validator(
        [problemOf = std::move(problemOf)](std::string& value) { return problemOf(value); }, ""));
    return *this;
}
const Option& Option::Needs(const Option& other) const {
    option_->needs(other.option_);
    return *this;
}

const Option& Option::Excludes(const Option& other) const {
    option_->excludes(other.option_);
    return *this;
}
const Option& Option::Environment(const std::string& variable) const {
    option_->envname(variable);
    return *this;
}
const Option& Option::OneEachTime() const {
    option_->expected(1, CLI::detail::expected_max_vector_size)->allow_extra_args(false);
    return *this;
}
const Option& Option::SplitAt(char delimiter) const {
    option_->delimiter(delimiter);
    return *this;
}

Command::Command(CLI::App* app, CommandTexts* texts) : app_(app), texts_(texts) {
    texts_->commands[app_];
    app_->footer([app, texts] { return HelpFooter(Described(*app, *texts)); });
}
Option Command::Declared(CLI::Option* option) const {
    return {option, &texts_->options[option]};
}
CommandText Command::Describe() const {
    return Described(*app_, *texts_);
}

Command Command::AddSubcommand(const std::string& name, const std::string& help) const {
    return {app_->add_subcommand(name, help), texts_};
}
void Command::RequireSubcommand() const {
    app_->require_subcommand(1);
}
void Command::AllowOneSubcommand() const {
    app_->require_subcommand(0, 1);
}
bool Command::HasSubcommand() const {
    return !app_->get_subcommands().empty();
}
void Command::PassOptionsOn() const {
    app_->fallthrough();
}
void Command::Description(const std::string& text) const {
    app_->description(text);
}
void Command::Hide() const {
    app_->group("");
}
void Command::Note(const std::string& paragraph) const {
    texts_->commands[app_].notes.push_back(paragraph);
}
void Command::Example(const std::string& line, const std::string& about) const {
    texts_->commands[app_].examples.push_back({line, about});
}
void Command::ExitCode(int code, const std::string& meaning) const {
    texts_->commands[app_].exitCodes.push_back({std::to_string(code), meaning});
}
void Command::Variable(const std::string& name, const std::string& meaning) const {
    texts_->commands[app_].variables.push_back({name, meaning});
}
void Command::File(const std::string& path, const std::string& meaning) const {
    texts_->commands[app_].files.push_back({path, meaning});
}
void Command::VersionFlag(const std::string& name, const std::string& version) const {
    app_->set_version_flag(name, version);
}
void Command::OnUse(std::function<void()> act) const {
    app_->callback(std::move(act));
}

Option Command::AddOption(const std::string& name, std::string& value, const std::string& help) const {
    return Declared(app_->add_option(name, value, help));
}
Option Command::AddOption(const std::string& name, uint32_t& value, const std::string& help) const {
    return Declared(app_->add_option(name, value, help));
}
Option Command::AddOption(const std::string& name, std::vector<std::string>& values,
                          const std::string& help) const {
    return Declared(app_->add_option(name, values, help));
}
Option Command::AddOption(const std::string& name, std::function<std::string(const std::string&)> take,
                          const std::string& help) const {
    return Declared(app_->add_option(name, help)).Check(std::move(take));
}
Option Command::AddFlag(const std::string& name, bool& value, const std::string& help) const {
    return Declared(app_->add_flag(name, value, help));
}
bool Command::Has(const std::string& option) const {
    return app_->count(option) > 0;
}

CommandLine::CommandLine(const std::string& description, const std::string& program)
    : texts_(std::make_unique<CommandTexts>()), app_(std::make_unique<CLI::App>(description, program)) {
    app_->allow_windows_style_options(false);  // "/nowhere" is a path
    texts_->commands[app_.get()].variables = CommonVariables();
}
CommandLine::~CommandLine() = default;

CommandLine::Outcome CommandLine::Read(std::vector<std::string> arguments) {
    if (arguments == std::vector<std::string>{kDescribeArgument}) {
        fmt::print("{}\n", DescriptionJson(Root().Describe()));
        return Outcome::HelpShown;
    }
    std::reverse(arguments.begin(), arguments.end());  // the order that the parser takes
    try {
        app_->parse(std::move(arguments));
        return Outcome::Read;
    } catch (const CLI::ParseError& end) {
        if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
            app_->exit(end);
            return Outcome::HelpShown;
        }
        problem_ = end.what();
        return Outcome::Wrong;
    }
}

std::optional<ExitCode> CommandLine::ReadOrExplain(int argc, const char* const* argv) {
    switch (Read(Arguments(argc, argv))) {
        case Outcome::Read:
            return {};
        case Outcome::HelpShown:
            return kDone;
        case Outcome::Wrong:
            break;
    }
    fmt::print(stderr, "{}\nRun with --help for more information.\n", problem_);
    return kWrongUsage;
}

}  // namespace tools
