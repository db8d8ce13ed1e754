#include "statusmon/options.h"

#include <CLI/CLI.hpp>

#include <fmt/format.h>

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

/// A text that is no request becomes CLI11's own complaint.
std::string Complaint(const std::function<void()>& apply) {
    try {
        apply();
        return {};
    } catch (const tools::UserError& error) {
        return error.what();
    }
}

std::string ApplyDelay(const std::string& text, Settings& settings) {
    const size_t equals = text.find('=');
    uint32_t milliseconds = 0;
    if (equals == std::string::npos || !CLI::detail::lexical_cast(text.substr(equals + 1), milliseconds))
        return fmt::format("expected CODE=MS, such as UpSt=500, instead of {}", text);
    return Complaint([&] { settings.Delay(text.substr(0, equals), milliseconds); });
}

void Declare(CLI::App& app, Options& options, std::vector<std::string>& words) {
    Settings& settings = options.settings;
    const auto declare = [&](const char* name, const char* type, const char* help, auto apply) {
        app.add_option(name, words, help)
            ->delimiter(',')
            ->allow_extra_args(false)
            ->type_name(type)
            ->check(CLI::Validator(apply, ""));
    };
    for (const WishName& name : kWishNames)
        declare(name.option, "CODE[,CODE]", name.help, [&settings, wish = name.wish](std::string& letters) {
            return Complaint([&] { settings.Apply(wish, letters); });
        });
    declare("--slow", "CODE=MS[,CODE=MS]", "answer these requests after so many milliseconds",
            [&settings](std::string& text) { return ApplyDelay(text, settings); });
    app.add_option("--exit-after", settings.exitAfterMs, "end after so many milliseconds without a request")
        ->type_name("MS");
    app.add_option("--log", settings.logFile, "file to append one line a request to (default: the output)")
        ->type_name("FILE");
    app.add_flag("--stop", options.stop, "end the status monitor that runs");
}

}  // namespace

bool ReadCommandLine(int argc, const char* const* argv, Options& options, int& exitCode) {
    CLI::App app{
        "Status monitor: answers what the library asks of the program that shows the printer's state.",
        KESTREL_PRODUCT "MUI.exe"};
    app.allow_windows_style_options(false);  // a path may begin with "/"
    app.footer(kFooter);
    std::vector<std::string> words;
    Declare(app, options, words);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        exitCode = app.exit(error) == 0 ? kDone : kWrongUsage;
        return false;
    }
    return true;
}

}  // namespace statusmon
