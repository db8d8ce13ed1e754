#include "winport/process/command_line.h"

#include <algorithm>

namespace winport {

namespace {

constexpr std::u16string_view kBlanks = u" \t";

std::u16string_view WithoutLeadingBlanks(std::u16string_view text) {
    const std::size_t start = text.find_first_not_of(kBlanks);
    return start == std::u16string_view::npos ? std::u16string_view() : text.substr(start);
}

// Takes one argument off the front of the text.
std::u16string TakeArgument(std::u16string_view& text) {
    std::u16string argument;
    bool quoted = false;
    std::size_t at = 0;
    while (at < text.size() && (quoted || kBlanks.find(text[at]) == std::u16string_view::npos)) {
        const std::size_t afterSlashes = std::min(text.find_first_not_of(u'\\', at), text.size());
        const std::size_t slashes = afterSlashes - at;
        at = afterSlashes;
        const bool atQuote = at < text.size() && text[at] == u'"';
        argument.append(atQuote ? slashes / 2 : slashes, u'\\');
        if (atQuote && slashes % 2 == 0) {
            // Within quotes, a doubled one is a plain one.
            const bool doubled = quoted && at + 1 < text.size() && text[at + 1] == u'"';
            if (doubled) argument.push_back(u'"');
            quoted = quoted == doubled;
            at += doubled ? 2 : 1;
        } else if (atQuote || slashes == 0) {
            argument.push_back(text[at++]);
        }
    }
    text.remove_prefix(at);
    return argument;
}

}  // namespace

std::vector<std::u16string> SplitArguments(std::u16string_view text) {
    std::vector<std::u16string> arguments;
    for (text = WithoutLeadingBlanks(text); !text.empty(); text = WithoutLeadingBlanks(text))
        arguments.push_back(TakeArgument(text));
    return arguments;
}

std::vector<ProgramCandidate> ProgramCandidates(std::u16string_view commandLine) {
    const std::u16string_view text = WithoutLeadingBlanks(commandLine);
    std::vector<ProgramCandidate> candidates;
    if (text.starts_with(u'"')) {
        const std::size_t end = std::min(text.find(u'"', 1), text.size());
        candidates.push_back(
            {std::u16string(text.substr(1, end - 1)), text.substr(std::min(end + 1, text.size()))});
        return candidates;
    }
    for (std::size_t end = 0; end < text.size();) {
        end = std::min(text.find_first_of(kBlanks, end + 1), text.size());
        if (kBlanks.find(text[end - 1]) == std::u16string_view::npos)
            candidates.push_back({std::u16string(text.substr(0, end)), text.substr(end)});
    }
    return candidates;
}

}  // namespace winport
