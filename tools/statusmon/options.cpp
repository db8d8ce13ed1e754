// The options, and the complaints about them.
#include "statusmon/options.h"

#include <fmt/core.h>

#include <charconv>
#include <functional>
#include <string_view>

#include "shared/command_line.h"
#include "shared/user_error.h"

namespace statusmon {
namespace {

constexpr const char* kFooter = R"(CODE is Ping, UpSt, ShoW, ShoM, ShoA, SOIS or SFWU.

Started without options, as the library does it, the program does what the file of its own name with the
ending .json says, if there is one beside it:
  {"refuse": ["ShoW"], "slow": {"UpSt": 500}, "silent": [], "die": [], "dieAfter": [],
   "exitAfter": 60000, "log": "monitor.log"}
Options count more than the file.

Exit codes:
  0   ended as asked
  2   the command line, the settings file or the log cannot be used
  3   --stop, and no status monitor runs
  4   another status monitor of the product runs
  70  a fault of this program or of the system)";

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

}  // namespace

std::optional<tools::ExitCode> ReadCommandLine(int argc, const char* const* argv, Options& options) {
    tools::CommandLine line(
        "Status monitor: answers what the library asks of the program that shows the printer's state.",
        KESTREL_PRODUCT "MUI.exe");
    line.Root().Footer(kFooter);
    Declare(line.Root(), options);
    return line.ReadOrExplain(argc, argv);
}

}  // namespace statusmon
