// The options, and the complaints about them.
#include "statusmon/options.h"

#include <fmt/core.h>

#include <charconv>
#include <functional>
#include <iterator>
#include <string_view>

#include "shared/command_line.h"
#include "shared/user_error.h"

namespace statusmon {
namespace {

/// What a text that is no request is answered with.
std::string Complaint(const std::function<void()>& apply) {
    try {
        apply();
        return {};
    } catch (const tools::UserError& error) {
        return error.what();
    }
}

bool ReadNumber(std::string_view text, uint32_t& number) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

std::string ApplyDelay(const std::string& text, Settings& settings) {
    const size_t equals = text.find('=');
    uint32_t milliseconds = 0;
    if (equals == std::string::npos || !ReadNumber(std::string_view(text).substr(equals + 1), milliseconds))
        return fmt::format("expected CODE=MS, such as UpSt=500, instead of {}", text);
    return Complaint([&] { settings.Delay(text.substr(0, equals), milliseconds); });
}

void Declare(const tools::Command& program, Options& options) {
    Settings& settings = options.settings;
    const auto declare = [&](const char* name, const char* type, const char* help, auto apply) {
        program.AddOption(name, apply, help).SplitAt(',').OneEachTime().TypeName(type);
    };
    for (const WishName& name : kWishNames)
        declare(name.option, "CODE[,CODE]", name.help,
                [&settings, wish = name.wish](const std::string& letters) {
                    return Complaint([&] { settings.Apply(wish, letters); });
                });
    declare("--slow", "CODE=MS[,CODE=MS]", "answer these requests after so many milliseconds",
            [&settings](const std::string& text) { return ApplyDelay(text, settings); });
    program
        .AddOption("--exit-after", settings.exitAfterMs, "end after so many milliseconds without a request")
        .TypeName("MS");
    program.AddOption("--log", settings.logFile, "file to append one line a request to (default: the output)")
        .TypeName("FILE");
    program.AddFlag("--stop", options.stop, "end the status monitor that runs");
}

void Explain(const tools::Command& program) {
    std::string codes = "CODE is a request of the library:";
    for (const RequestKind& kind : kRequestKinds)
        codes += fmt::format(" {} ({}){}", kind.letters, kind.meaning,
                             &kind == &std::end(kRequestKinds)[-1] ? "." : ",");
    program.Note(codes);
    program.Note(
        "Started without options, as the library does it, the program does what its settings file says. "
        "Options "
        "count more than the file.");
    program.Note("What it is asked for, and what it answers, is in the document statusmon.md.");
    program.Example(KESTREL_PRODUCT "MUI.exe --refuse ShoW,ShoM --slow UpSt=500",
                    "open no windows, and take half a second for each update of the status");
    program.Example(KESTREL_PRODUCT "MUI.exe --stop", "end the one that runs");
    program.File(
        KESTREL_PRODUCT "MUI.json",
        R"(beside the program, its settings: {"refuse": ["ShoW"], "slow": {"UpSt": 500}, "silent": [], "die": [], )"
        R"("dieAfter": [], "exitAfter": 60000, "log": "monitor.log"})");
    program.ExitCode(tools::kDone, "ended as asked");
    program.ExitCode(tools::kWrongUsage, "the command line, the settings file or the log cannot be used");
    program.ExitCode(tools::kNotRunning, "--stop, and no status monitor runs");
    program.ExitCode(tools::kRunsAlready, "another status monitor of the product runs");
    program.ExitCode(tools::kOwnFault, "a fault of this program or of the system");
}

}  // namespace

std::optional<tools::ExitCode> ReadCommandLine(int argc, const char* const* argv, Options& options) {
    tools::CommandLine line(
        "Status monitor: answers what the library asks of the program that shows the printer's state.",
        KESTREL_PRODUCT "MUI.exe");
    Declare(line.Root(), options);
    Explain(line.Root());
    return line.ReadOrExplain(argc, argv);
}

}  // namespace statusmon
