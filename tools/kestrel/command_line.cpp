#include "kestrel/command_line.h"

#include <array>

#include "kestrel/commands/commands.h"
#include "kestrel/text/durations.h"

namespace cli {
namespace {

constexpr const char* kExitCodes =
    "Exit codes: 0 done, 1 the device said no, 2 wrong usage, 3 no such printer, 4 time-out or no language\n"
    "monitor, 5 locked by another, 6 value refused, 7 reply not understood, 70 incomplete installation,\n"
    "130 interrupted.\n\n"
    "Example: kestrel -p \"Office\" get fax.redials";

void DeclareGlobalOptions(CLI::App& app, GlobalOptions& options) {
    app.add_option("-p,--printer", options.printer, "Installed printer; none: the product's own")
        ->envname("KESTREL_PRINTER")
        ->type_name("PRINTER");
    app.add_option("--product", options.product, "Prefix of the product's file names")
        ->capture_default_str()
        ->type_name("PREFIX");
    AddTimeOption(
        app, "--timeout",
        [&options](std::chrono::milliseconds time) {
            options.timeoutMs = static_cast<std::uint32_t>(time.count());
        },
        "Time for each exchange with the printer: 500ms, 5s, 2m [5s]");
    app.add_flag("--json", options.json, "One JSON document on standard output, errors inside");
    app.add_flag("--no-color", options.noColour, "No colours, also on a terminal");
}

}  // namespace

CLI::Option* AddTimeOption(CLI::App& app, const std::string& name,
                           std::function<void(std::chrono::milliseconds)> take, const std::string& help) {
    return app
        .add_option_function<std::string>(
            name,
            [name, take](const std::string& written) {
                const auto milliseconds = ParseDuration(written);
                if (!milliseconds) {
                    throw CLI::ValidationError(name, "\"" + written + "\" is no time; write 500ms, 5s or 2m");
                }
                take(std::chrono::milliseconds(*milliseconds));
            },
            help)
        ->type_name("TIME");
}

const Library& Context::GetLibrary() {
    if (!library_) library_ = std::make_unique<Library>(options_.product);
    return *library_;
}

const Printer& Context::GetPrinter() {
    if (!printer_) {
        printer_ =
            std::make_unique<Printer>(GetLibrary(), options_.product, options_.printer, options_.timeoutMs);
    }
    return *printer_;
}

void DeclareCommandLine(CLI::App& app, GlobalOptions& options, Chosen& chosen) {
    app.description("Reads and changes the settings of a printer");
    app.footer(kExitCodes);
    app.set_version_flag("--version", "kestrel " KESTREL_VERSION);
    // At most one, so that a value which happens to be a command's name stays a value.
    app.require_subcommand(0, 1);
    // Inherited by the commands declared below: they take the global options too.
    app.fallthrough();
    DeclareGlobalOptions(app, options);

    constexpr std::array kCommands = {AddSetup,    AddPrinters,    AddStatus,   AddGet,          AddSet,
                                      AddList,     AddAddressBook, AddRaw,      AddMaintenance,  AddLock,
                                      AddUnlock,   AddCancel,      AddCache,    AddWifi,         AddPing,
                                      AddHosts,    AddClock,       AddFirmware, AddCapabilities, AddIdentity,
                                      AddSupplies, AddMonitor,     AddInstall,  AddVersion,      AddComplete};
    for (const auto add : kCommands)
        add(app, chosen);
}

}  // namespace cli
