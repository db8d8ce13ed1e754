// The command line of a program: the options, arguments and subcommands that it takes, and how a line is
// read. The parser library behind it is command_line.cpp's alone: its header takes ten seconds to compile
// wherever it is included.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "shared/command_text.h"
#include "shared/exit_codes.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tools {

/// What has been said of the parts of a command line beside what the parser library keeps.
struct CommandTexts;

/// An option or argument that has been declared; lives in its command line.
class Option final {
  public:
    Option(CLI::Option* option, OptionText* text) : option_(option), text_(text) {}

    const Option& Required() const;
    /// What stands for the value in the help; a FILE is also looked for by the shell.
    const Option& TypeName(const std::string& name) const;
    /// The help shows the value that the variable has now.
    const Option& ShowsDefault() const;
    const Option& OneOf(std::vector<std::string> words) const;
    /// Words to choose from, of which somebody else makes sure; those with a meaning stand in the help.
    const Option& Explains(std::vector<Explained> words) const;
    /// What a shell is to offer for it; the call must be quick and ask no printer.
    const Option& Offers(OfferFunction offer) const;
    const Option& Between(int lowest, int highest) const;
    /// `problemOf` says what is wrong with a value, or nothing.
    const Option& Check(std::function<std::string(const std::string&)> problemOf) const;
    /// Only beside another option.
    const Option& Needs(const Option& other) const;
    const Option& Excludes(const Option& other) const;
    /// Taken from the environment when the line does not have it.
    const Option& Environment(const std::string& variable) const;
    /// Of several values: each stands behind the option's name.
    const Option& OneEachTime() const;
    /// Of several values: they may stand in one word.
    const Option& SplitAt(char delimiter) const;

  private:
    CLI::Option* option_;
    OptionText* text_;
};

/// A command with its options and subcommands; lives in its command line. The variables that the options fill
/// outlive it.
class Command final {
  public:
    Command(CLI::App* app, CommandTexts* texts);

    [[nodiscard]] Command AddSubcommand(const std::string& name, const std::string& help) const;
    void RequireSubcommand() const;
    /// At most one, so that a value which happens to be a command's name stays a value.
    void AllowOneSubcommand() const;
    [[nodiscard]] bool HasSubcommand() const;
    /// Subcommands declared from now on take this command's options too.
    void PassOptionsOn() const;

    void Description(const std::string& text) const;
    /// For programs alone: help, manual and completion leave it out.
    void Hide() const;
    // Below the options of the help, and in the manual: paragraphs, lines to type, and of a program what it
    // ends with, what it takes from the environment and which files are its own.
    void Note(const std::string& paragraph) const;
    void Example(const std::string& line, const std::string& about = {}) const;
    void ExitCode(int code, const std::string& meaning) const;
    void Variable(const std::string& name, const std::string& meaning) const;
    void File(const std::string& path, const std::string& meaning) const;
    void VersionFlag(const std::string& name, const std::string& version) const;
    /// Runs while a line with this command is read, after its values have been taken.
    void OnUse(std::function<void()> act) const;

    /// A name without dashes is that of an argument, known by its place.
    Option AddOption(const std::string& name, std::string& value, const std::string& help) const;
    Option AddOption(const std::string& name, uint32_t& value, const std::string& help) const;
    Option AddOption(const std::string& name, std::vector<std::string>& values,
                     const std::string& help) const;
    /// `take` is given each value, and says what is wrong with it, or nothing.
    Option AddOption(const std::string& name, std::function<std::string(const std::string&)> take,
                     const std::string& help) const;
    Option AddFlag(const std::string& name, bool& value, const std::string& help) const;
    [[nodiscard]] bool Has(const std::string& option) const;

    /// Everything declared up to now.
    [[nodiscard]] CommandText Describe() const;

  private:
    Option Declared(CLI::Option* option) const;

    CLI::App* app_;
    CommandTexts* texts_;
};

/// Adds --help by itself, answers kDescribeArgument, and names the variables that all programs take.
class CommandLine final {
  public:
    CommandLine(const std::string& description, const std::string& program);
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;
    ~CommandLine();

    [[nodiscard]] Command Root() const { return {app_.get(), texts_.get()}; }

    enum class Outcome { Read, HelpShown, Wrong };
    /// `arguments`: without the program's name.
    [[nodiscard]] Outcome Read(std::vector<std::string> arguments);
    /// The same for a program that leaves it to this class to say what is wrong. Nothing when there is
    /// something to do, otherwise what to end with.
    [[nodiscard]] std::optional<ExitCode> ReadOrExplain(int argc, const char* const* argv);
    /// What is wrong with the line.
    [[nodiscard]] const std::string& Problem() const { return problem_; }

  private:
    std::unique_ptr<CommandTexts> texts_;
    std::unique_ptr<CLI::App> app_;
    std::string problem_;
};

}  // namespace tools
