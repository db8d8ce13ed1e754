// kestrel setup: everything where the driver installer would put it.
#include <fmt/core.h>

#include <array>
#include <filesystem>
#include <system_error>

#include "kestrel/commands/commands.h"
#include "kestrel/failure.h"
#include "kestrel/installation/helpers.h"
#include "kestrel/installation/product_configuration.h"
#include "kestrel/installation/spooler.h"
#include "kestrel/platform.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

struct WrittenWords {
    Written written;
    const char* word;      // for scripts
    const char* sentence;  // for people, before the path
};
constexpr std::string_view kDefaultDriverEnding = " Series";

constexpr std::array<WrittenWords, 3> kWrittenWords = {{
    {Written::New, "new", "wrote the product configuration"},
    {Written::Unchanged, "unchanged", "the product configuration is up to date:"},
    {Written::Replaced, "replaced", "replaced the product configuration (the old one is kept as .bak)"},
}};

// The status monitor that is built with this client, and the ending of its name behind the product's prefix.
constexpr const char* kStatusMonitor = KESTREL_PRODUCT "MUI.exe";
constexpr const char* kStatusMonitorEnding = "MUI.exe";

// `make` makes the new file. One in use is not written to but replaced; whoever runs it keeps the old one.
template <typename Make>
void Place(const fs::path& from, const fs::path& to, Make make) {
    std::error_code error;
    if (fs::equivalent(from, to, error)) return;
    fs::path fresh = to;
    fresh += ".new";
    // Overwriting takes any two files for the same one in the C++ library of the Windows build.
    fs::remove(fresh, error);
    make(from, fresh, error);
    if (!error) fs::rename(fresh, to, error);
    if (!error) return;
    std::error_code ignored;
    fs::remove(fresh, ignored);
    throw Failure{
        ExitCode::OwnFault,
        fmt::format("{} cannot be installed as {}: {}", from.string(), to.string(), error.message()),
        "run `kestrel setup` with an account that may write to the driver directory",
        {},
        {},
        {}};
}

// The library starts the program from the folder of the product configuration, by the name in it. Empty when
// there is none to install.
fs::path InstallStatusMonitor(const std::string& product) {
    const fs::path source = FindHelper(kStatusMonitor);
    if (source.empty()) return {};
    const fs::path folder = ConfigurationPath(product).parent_path();
    fs::path program = folder / (product + kStatusMonitorEnding);
    // A link, so that the program has the same one as all others, also after an update.
    const fs::path library = platform::SystemLibrary();
    if (!library.empty())
        Place(library, folder / library.filename(), [](auto&... all) { fs::create_symlink(all...); });
    Place(source, program, [](auto&... all) { fs::copy_file(all...); });
    return program;
}

void ReportStatusMonitor(const fs::path& program, Report& report) {
    if (program.empty()) {
        report.data["statusMonitor"] = nullptr;
        report.text += fmt::format(
            "no status monitor is installed: there is no {} beside this program or in its folder of "
            "helpers\n",
            kStatusMonitor);
        return;
    }
    report.data["statusMonitor"] = program.string();
    report.text += fmt::format("the status monitor is installed as {}\n", program.string());
}

Report Setup(const Context& context, std::vector<std::string> drivers) {
    const std::string& product = context.Options().product;
    if (drivers.empty()) drivers.push_back(product + std::string(kDefaultDriverEnding));
    const std::string text = ConfigurationText(product, drivers);
    const std::filesystem::path path = ConfigurationPath(product);
    const WrittenWords& words = kWrittenWords.at(static_cast<size_t>(WriteConfiguration(path, text)));

    Report report;
    report.text = fmt::format("{} {}\n", words.sentence, path.string());
    report.data = {{"configuration", path.string()}, {"written", words.word}, {"drivers", drivers}};
    ReportStatusMonitor(InstallStatusMonitor(product), report);
    for (const std::string& driver : drivers) {
        AddDriver(driver, product);
        report.text += fmt::format("the driver \"{}\" is installed\n", driver);
    }
    if (const std::string warning = platform::OpenHomeWarning(); !warning.empty()) {
        report.text += fmt::format("warning: {}\n", warning);
        report.data["warning"] = warning;
    }
    return report;
}

}  // namespace

void AddSetup(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand(
        "setup",
        "Put the product configuration, the status monitor and the driver where the driver installer would");
    const auto drivers = std::make_shared<std::vector<std::string>>();
    command.AddOption("--driver", *drivers, "Driver of the product; repeatable [PREFIX Series]")
        .TypeName("NAME")
        .OneEachTime();
    command.Note("Can be run again at any time.");
    command.Example("kestrel setup --driver \"Workgroup Series\"");
    command.OnUse([&chosen, drivers] {
        chosen = {"setup", [drivers](Context& context) { return Setup(context, *drivers); }};
    });
}

}  // namespace cli
