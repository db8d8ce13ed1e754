// What a program's command line consists of, as data: for help, manual page and completion.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tools {

/// A word, a code, a variable or a line to type, and what it means.
struct Explained final {
    std::string text;
    std::string about;
};

/// What may stand for a value: words to choose from; besides, or instead, a hint.
struct Offer final {
    std::vector<Explained> words;
    std::string hint;
};

/// `before`: the command's arguments that stand before the value.
using OfferFunction = std::function<Offer(const std::vector<std::string>& before)>;

struct OptionText final {
    std::vector<std::string> names;  // -p, --printer; an argument has one without dashes
    std::string value;               // what stands for the value, FILE for a file; empty: a flag
    std::string about;
    std::string initial;      // taken without it, where the help tells
    std::string environment;  // the variable that stands in for it
    bool isArgument = false;
    bool isRequired = false;
    bool isRepeatable = false;
    std::vector<Explained> words;  // to choose from
    OfferFunction offer;           // what there is to choose from at this moment; none: the words
};

struct CommandText final {
    std::string name;
    std::string about;
    bool isHidden = false;  // for programs, not for people
    bool needsSubcommand = false;
    std::vector<OptionText> options;  // and arguments
    std::vector<CommandText> subcommands;
    std::vector<std::string> notes;  // paragraphs
    std::vector<Explained> examples;
    // Of the program as a whole.
    std::vector<Explained> exitCodes;
    std::vector<Explained> variables;
    std::vector<Explained> files;
};

/// The single argument on which a program prints its text, for those who make its manual page.
inline constexpr const char* kDescribeArgument = "--describe-command-line";

/// One JSON document; what is hidden is left out.
[[nodiscard]] std::string DescriptionJson(const CommandText& program);

/// What the help says below the options.
[[nodiscard]] std::string HelpFooter(const CommandText& command);

}  // namespace tools
