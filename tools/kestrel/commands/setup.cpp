#include <fmt/format.h>

#include <array>

#include "../product_configuration.h"
#include "../spooler.h"
#include "commands.h"

namespace cli {
namespace {

struct WrittenWords {
    Written written;
    const char* word;      // for scripts
    const char* sentence;  // for people, before the path
};
constexpr std::string_view kDefaultDriverEnding = " Series";

constexpr std::array<WrittenWords, 3> kWrittenWords = {{
    {Written::kNew, "new", "wrote the product configuration"},
    {Written::kUnchanged, "unchanged", "the product configuration is up to date:"},
    {Written::kReplaced, "replaced", "replaced the product configuration (the old one is kept as .bak)"},
}};

Report Setup(const Context& context, std::vector<std::string> drivers) {
    const std::string& product = context.Options().product;
    if (drivers.empty()) drivers.push_back(product + std::string(kDefaultDriverEnding));
    const std::string text = ConfigurationText(product, drivers);
    const std::filesystem::path path = ConfigurationPath(product);
    const WrittenWords& words = kWrittenWords.at(static_cast<std::size_t>(WriteConfiguration(path, text)));

    Report report;
    report.text = fmt::format("{} {}\n", words.sentence, path.string());
    report.data = {{"configuration", path.string()}, {"written", words.word}, {"drivers", drivers}};
    for (const std::string& driver : drivers) {
        AddDriver(driver, product);
        report.text += fmt::format("the driver \"{}\" is installed\n", driver);
    }
    return report;
}

}  // namespace

void AddSetup(CLI::App& app, Chosen& chosen) {
    CLI::App* const command = app.add_subcommand(
        "setup", "Put the product configuration and the driver where the driver installer would");
    const auto drivers = std::make_shared<std::vector<std::string>>();
    command->add_option("--driver", *drivers, "Driver of the product; repeatable [PREFIX Series]")
        ->type_name("NAME")
        ->expected(1)
        ->take_all();
    command->footer("Can be run again at any time.\n\nExample: kestrel setup --driver \"Workgroup Series\"");
    command->callback([&chosen, drivers] {
        chosen = {"setup", [drivers](Context& context) { return Setup(context, *drivers); }};
    });
}

}  // namespace cli
