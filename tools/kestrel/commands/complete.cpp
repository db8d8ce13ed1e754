// kestrel completion and kestrel complete: a shell's script, and what that asks each time.
#include <fmt/core.h>

#include <algorithm>

#include "kestrel/commands/commands.h"
#include "kestrel/completion/line_completion.h"
#include "kestrel/completion/shell_scripts.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

constexpr const char* kKindWords[] = {"words", "files", "text"};

struct TypedLine {
    uint32_t current = 0;
    std::vector<std::string> words;
};

// The first line says what is offered: words, which follow, files, or a text and what it has to be.
Report Complete(const tools::CommandText& program, TypedLine line) {
    line.words.resize(std::max<size_t>(line.words.size(), size_t{line.current} + 1));
    const std::string current = line.words[line.current];
    line.words.resize(line.current);
    const LineOffer offer = CompleteLine(program, line.words, current);

    const char* const kind = kKindWords[static_cast<size_t>(offer.kind)];
    Report report{
        fmt::format("{}{}{}\n", kind, offer.hint.empty() ? "" : " ", ForTerminal(offer.hint)), {}, {}};
    report.data = {{"kind", kind}, {"hint", offer.hint}, {"words", tools::Json::EmptyArray()}};
    for (const tools::Explained& word : offer.words) {
        report.text += fmt::format("{}\t{}\n", ForTerminal(word.text), ForTerminal(word.about));
        report.data["words"].Append(word.text);
    }
    return report;
}

Report ScriptFor(const std::string& shell) {
    for (const ShellScript& script : kShellScripts)
        if (script.shell == shell) return {std::string(script.text), {{"script", script.text}}, {}};
    return {};
}

}  // namespace

void AddCompletion(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("completion", "Print the script of a shell's completion");
    const auto shell = std::make_shared<std::string>();
    std::vector<std::string> shells;
    shells.reserve(kShellScripts.size());
    for (const ShellScript& script : kShellScripts)
        shells.emplace_back(script.shell);
    command.AddOption("SHELL", *shell, "bash, zsh or fish").Required().OneOf(shells);
    command.Note(
        "The script asks this program for the words of each line: settings, their values, installed "
        "printers. No "
        "printer is asked.");
    command.Example("source <(kestrel completion bash)",
                    "in ~/.bashrc; for zsh the same in ~/.zshrc, behind compinit");
    command.Example("kestrel completion fish | source", "in ~/.config/fish/config.fish");
    command.OnUse([&chosen, shell] {
        chosen = {"completion", [shell](Context&) { return ScriptFor(*shell); }};
    });
}

void AddComplete(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("complete", "Print what may stand at a place of a line");
    const auto line = std::make_shared<TypedLine>();
    command.Hide();
    command.AddOption("INDEX", line->current, "The word at the cursor, from 0").Required().Between(0, 10000);
    command.AddOption("WORD", line->words, "The line's words behind the program's name; put -- before them");
    command.OnUse([&chosen, line, app] {
        chosen = {"complete", [line, app](Context&) { return Complete(app.Describe(), *line); }};
    });
}

}  // namespace cli
