// The options that every command takes, and the list of the commands.
#include "kestrel/command_line.h"

#include <algorithm>
#include <string_view>

#include "kestrel/commands/commands.h"
#include "kestrel/exit_codes.h"
#include "kestrel/installation/spooler.h"
#include "kestrel/text/durations.h"

namespace cli {
namespace {

struct CommandRow final {
    std::string_view name;
    void (*add)(const tools::Command& app, Chosen& chosen);
};

// In the order of the help.
constexpr CommandRow kCommands[] = {
    {"setup", AddSetup},
    {"printers", AddPrinters},
    {"status", AddStatus},
    {"get", AddGet},
    {"set", AddSet},
    {"list", AddList},
    {"addressbook", AddAddressBook},
    {"raw", AddRaw},
    {"maintenance", AddMaintenance},
    {"lock", AddLock},
    {"unlock", AddUnlock},
    {"cancel", AddCancel},
    {"cache", AddCache},
    {"wifi", AddWifi},
    {"ping", AddPing},
    {"hosts", AddHosts},
    {"clock", AddClock},
    {"firmware", AddFirmware},
    {"capabilities", AddCapabilities},
    {"identity", AddIdentity},
    {"supplies", AddSupplies},
    {"metrics", AddMetrics},
    {"apply", AddApply},
    {"diff", AddDiff},
    {"watch", AddWatch},
    {"top", AddTop},
    {"dump", AddDump},
    {"record", AddRecord},
    {"log", AddLog},
    {"monitor", AddMonitor},
    {"install", AddInstall},
    {"run", AddRun},
    {"version", AddVersion},
    {"completion", AddCompletion},
    {"complete", AddComplete},
};

void DeclareGlobalOptions(const tools::Command& app, GlobalOptions& options) {
    app.AddOption("-p,--printer", options.printers.written,
                  "Installed printer, or a pattern with * and ?; repeat it for several printers; none: the "
                  "product's own")
        .OneEachTime()
        .Environment("KESTREL_PRINTER")
        .TypeName("PRINTER")
        .Offers(OfferPrinters);
    app.AddFlag("--all", options.printers.all, "Every installed printer of the product");
    app.AddOption("-j,--jobs", options.jobs, "Printers that are asked at a time")
        .ShowsDefault()
        .Between(1, 1000);
    app.AddOption("--product", options.product, "Prefix of the product's file names")
        .ShowsDefault()
        .TypeName("PREFIX");
    AddTimeOption(
        app, "--timeout",
        [&options](std::chrono::milliseconds time) {
            options.timeoutMs = static_cast<uint32_t>(time.count());
        },
        "Time for each exchange with the printer: 500ms, 5s, 2m [5s]");
    app.AddFlag("--json", options.json, "One JSON document on standard output, errors inside");
    app.AddFlag("--no-color", options.noColour, "No colours, also on a terminal");
}

}  // namespace

tools::Option AddTimeOption(const tools::Command& command, const std::string& name,
                            std::function<void(std::chrono::milliseconds)> take, const std::string& help) {
    const auto read = [take = std::move(take)](const std::string& written) -> std::string {
        const auto milliseconds = ParseDuration(written);
        if (!milliseconds) return "\"" + written + "\" is no time; write 500ms, 5s or 2m";
        take(std::chrono::milliseconds(*milliseconds));
        return {};
    };
    return command.AddOption(name, read, help).TypeName("TIME");
}

tools::Offer OfferPrinters(const std::vector<std::string>&) {
    tools::Offer offer;
    for (const InstalledPrinter& printer : InstalledPrinters())
        offer.words.push_back({printer.name, printer.driver + " on " + printer.port});
    return offer;
}

const Library& Context::GetLibrary() {
    if (!library_) library_ = std::make_unique<Library>(options_.product);
    return *library_;
}

const Printer& Context::GetPrinter() {
    if (!printer_) {
        printer_ = std::make_unique<Printer>(GetLibrary(), options_.product, options_.printers.One(),
                                             options_.timeoutMs);
    }
    return *printer_;
}

bool NamesItsCommand(const std::vector<std::string>& arguments) {
    // Help and completion tell of all commands.
    const auto wantsAll = [](const std::string& argument) {
        return argument == "complete" ||
               (argument.starts_with('-') && argument.find('h') != std::string::npos);
    };
    const auto isCommand = [](const std::string& argument) {
        return std::ranges::find(kCommands, argument, &CommandRow::name) != std::end(kCommands);
    };
    return std::ranges::none_of(arguments, wantsAll) && std::ranges::any_of(arguments, isCommand);
}

void DeclareCommandLine(const tools::Command& app, GlobalOptions& options, Chosen& chosen,
                        const std::vector<std::string>& among) {
    app.Description("Reads and changes the settings of a printer");
    app.Example("kestrel setup", "install the product configuration and the driver");
    app.Example("kestrel printers add Office --port USB001", "install a printer");
    app.Example("kestrel -p Office get fax.redials", "print a setting");
    app.Example("kestrel -p Office list 'fax.*' --json", "some settings, for a script");
    app.Example("kestrel --all apply wanted.txt --dry-run", "what would be changed, at all printers");
    app.Variable("KESTREL_RECORD", "file to which the library appends every exchange, of this program too");
    app.Variable("KESTREL_RECORD_SECRETS", "1: with security keys and the pass phrase");
    app.Variable("NO_COLOR", "no colours, also on a terminal");
    app.File("<driver directory>/3/" KESTREL_PRODUCT ".INI",
             "the product configuration, which `kestrel setup` writes");
    for (const ExitCodeText& row : kExitCodes)
        app.ExitCode(static_cast<int>(row.code), row.meaning);
    app.VersionFlag("--version", "kestrel " KESTREL_VERSION);
    app.AllowOneSubcommand();
    app.PassOptionsOn();
    DeclareGlobalOptions(app, options);

    for (const CommandRow& row : kCommands)
        if (among.empty() || std::ranges::find(among, row.name) != among.end()) row.add(app, chosen);
}

}  // namespace cli
