// kestrel install: what set-up programs do through the library.
#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <filesystem>

#include "kestrel/commands/commands.h"
#include "kestrel/installation/spooler.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

constexpr size_t kPortNameUnits = 64;
constexpr uint32_t kRawPrinting = 9100;

struct NetPort {
    std::string host;
    uint32_t number = kRawPrinting;
    std::string name;
};

Report InstallPort(Context& context, const NetPort& port) {
    const WideText host = WideArgument(port.host, "host");
    const WideText wanted = WideArgument(port.name, "port name");
    if (wanted.size() >= kPortNameUnits) {
        throw ValueFailure(fmt::format("a port name of {} characters is too long", wanted.size()),
                           fmt::format("use at most {}", kPortNameUnits - 1));
    }
    std::array<kestrel_char, kPortNameUnits> name{};
    std::copy(wanted.begin(), wanted.end(), name.begin());
    Demand<decltype(AddNetPort)>(context.GetLibrary(), "AddNetPort",
                                 {fmt::format("cannot make a port for {}", port.host)}, host.c_str(),
                                 port.number, name.data());
    const std::string made = Utf8FromWide(name.data());
    return {fmt::format("the port {} leads to {}, TCP port {}\n", made, port.host, port.number),
            {{"port", made}, {"host", port.host}, {"number", port.number}},
            {}};
}

struct NewPrinter {
    std::string name;
    std::string inf;
    std::string model;
    std::string port;
    bool makeDefault = false;
};

// The library runs the system's own tool, which does not tell it what came of it.
void RequirePrinter(const NewPrinter& printer) {
    const std::vector<InstalledPrinter> printers = InstalledPrinters();
    const bool made = std::any_of(printers.begin(), printers.end(), [&](const InstalledPrinter& installed) {
        return installed.name == printer.name;
    });
    if (made) return;
    throw Failure{ExitCode::DeviceRefused,
                  fmt::format("the printer user interface has not made the printer \"{}\"", printer.name),
                  fmt::format("check that {} names the model \"{}\" and that the port {} exists", printer.inf,
                              printer.model, printer.port),
                  {},
                  {},
                  {}};
}

// A relative path means nothing to the program that reads the file.
WideText InfPath(const std::string& written) {
    return WideArgument(std::filesystem::absolute(written).string(), "set-up information file");
}

Report InstallDriver(Context& context, const NewPrinter& driver) {
    const WideText model = WideArgument(driver.model, "model");
    Demand<decltype(AddDriverFiles)>(context.GetLibrary(), "AddDriverFiles",
                                     {fmt::format("cannot install the driver \"{}\"", driver.model)},
                                     InfPath(driver.inf).c_str(), model.c_str());
    return {fmt::format("the printer user interface has run for the driver \"{}\"\n", driver.model),
            {{"model", driver.model}, {"inf", driver.inf}},
            {}};
}

Report InstallQueue(Context& context, const NewPrinter& printer) {
    const WideText name = WideArgument(printer.name, "printer name");
    const WideText model = WideArgument(printer.model, "model");
    const WideText port = WideArgument(printer.port, "port name");
    Demand<decltype(AddDriverInstance)>(context.GetLibrary(), "AddDriverInstance",
                                        {fmt::format("cannot install the printer \"{}\"", printer.name)},
                                        name.c_str(), InfPath(printer.inf).c_str(), model.c_str(),
                                        port.c_str(), static_cast<kestrel_bool>(printer.makeDefault));
    RequirePrinter(printer);
    return {fmt::format("installed the printer \"{}\" on {}\n", printer.name, printer.port),
            {{"name", printer.name}, {"port", printer.port}, {"default", printer.makeDefault}},
            {}};
}

void DeclarePort(const tools::Command& install, Chosen& chosen) {
    const tools::Command command =
        install.AddSubcommand("port", "Make a network port for a printer's address");
    const auto port = std::make_shared<NetPort>();
    command.AddOption("HOST", port->host, "IPv4 address or host name").Required();
    command.AddOption("--number", port->number, "TCP port").ShowsDefault().TypeName("N");
    command.AddOption("--name", port->name, "Name of the port [formed from the host]").TypeName("NAME");
    command.Example("kestrel install port 192.168.0.20");
    command.OnUse([&chosen, port] {
        chosen = {"install port", [port](Context& context) { return InstallPort(context, *port); }};
    });
}

void AddModelOptions(const tools::Command& command, NewPrinter& printer) {
    command.AddOption("FILE", printer.inf, "Set-up information file of the driver").Required();
    command.AddOption("MODEL", printer.model, "Model in that file").Required();
}

void DeclareDriver(const tools::Command& install, Chosen& chosen) {
    const tools::Command command = install.AddSubcommand("driver", "Install a printer driver");
    const auto driver = std::make_shared<NewPrinter>();
    AddModelOptions(command, *driver);
    command.Example("kestrel install driver zr.inf \"ZR 9900\"");
    command.OnUse([&chosen, driver] {
        chosen = {"install driver", [driver](Context& context) { return InstallDriver(context, *driver); }};
    });
}

void DeclareQueue(const tools::Command& install, Chosen& chosen) {
    const tools::Command command = install.AddSubcommand("printer", "Install a printer with its driver");
    const auto printer = std::make_shared<NewPrinter>();
    command.AddOption("NAME", printer->name, "Name of the new printer").Required();
    AddModelOptions(command, *printer);
    command.AddOption("PORT", printer->port, "Port that the printer is attached to").Required();
    command.AddFlag("--default", printer->makeDefault, "Make it the default printer");
    command.Example("kestrel install printer Office zr.inf \"ZR 9900\" USB001");
    command.OnUse([&chosen, printer] {
        chosen = {"install printer", [printer](Context& context) { return InstallQueue(context, *printer); }};
    });
}

}  // namespace

void AddInstall(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("install", "Install ports, drivers and printers as a set-up program does");
    command.RequireSubcommand();
    DeclarePort(command, chosen);
    DeclareDriver(command, chosen);
    DeclareQueue(command, chosen);
}

}  // namespace cli
