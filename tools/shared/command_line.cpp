// Each member is one of the parser library's, whose templates are made here and nowhere else.
#include "shared/command_line.h"

#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>

#include "shared/process.h"

namespace tools {

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
    option_->check(CLI::IsMember(std::move(words)));
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

Command Command::AddSubcommand(const std::string& name, const std::string& help) const {
    return Command(app_->add_subcommand(name, help));
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
void Command::Footer(const std::string& text) const {
    app_->footer(text);
}
void Command::VersionFlag(const std::string& name, const std::string& version) const {
    app_->set_version_flag(name, version);
}
void Command::OnUse(std::function<void()> act) const {
    app_->callback(std::move(act));
}

Option Command::AddOption(const std::string& name, std::string& value, const std::string& help) const {
    return Option(app_->add_option(name, value, help));
}
Option Command::AddOption(const std::string& name, uint32_t& value, const std::string& help) const {
    return Option(app_->add_option(name, value, help));
}
Option Command::AddOption(const std::string& name, std::vector<std::string>& values,
                          const std::string& help) const {
    return Option(app_->add_option(name, values, help));
}
Option Command::AddOption(const std::string& name, std::function<std::string(const std::string&)> take,
                          const std::string& help) const {
    return Option(app_->add_option(name, help)).Check(std::move(take));
}
Option Command::AddFlag(const std::string& name, bool& value, const std::string& help) const {
    return Option(app_->add_flag(name, value, help));
}
bool Command::Has(const std::string& option) const {
    return app_->count(option) > 0;
}

CommandLine::CommandLine(const std::string& description, const std::string& program)
    : app_(std::make_unique<CLI::App>(description, program)) {
    app_->allow_windows_style_options(false);  // "/nowhere" is a path
}
CommandLine::~CommandLine() = default;

CommandLine::Outcome CommandLine::Read(std::vector<std::string> arguments) {
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
