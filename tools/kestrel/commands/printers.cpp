// kestrel printers: the printers that the spooler knows.
#include <fmt/core.h>

#include <algorithm>

#include "kestrel/commands/commands.h"
#include "kestrel/installation/product_configuration.h"
#include "kestrel/installation/spooler.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

Report ListPrinters(const Context& context) {
    const std::vector<std::string> drivers = ConfiguredDrivers(context.Options().product);
    std::vector<std::vector<std::string>> rows = {{"NAME", "PORT", "DRIVER", "BIDIRECTIONAL", "KIND"}};
    Report report;
    report.data["printers"] = tools::Json::EmptyArray();
    for (const InstalledPrinter& printer : InstalledPrinters()) {
        const bool isProducts = std::find(drivers.begin(), drivers.end(), printer.driver) != drivers.end();
        rows.push_back({ForTerminal(printer.name), ForTerminal(printer.port), ForTerminal(printer.driver),
                        printer.bidirectional ? "yes" : "no", isProducts ? "product" : "foreign"});
        report.data["printers"].Append({{"name", printer.name},
                                        {"port", printer.port},
                                        {"driver", printer.driver},
                                        {"bidirectional", printer.bidirectional},
                                        {"product", isProducts}});
    }
    report.text = rows.size() > 1 ? AlignedTable(rows, context.ResultPaint()) : "no printer is installed\n";
    return report;
}

Report Add(const Context& context, InstalledPrinter printer) {
    if (printer.driver.empty()) {
        const std::vector<std::string> drivers = ConfiguredDrivers(context.Options().product);
        if (drivers.empty()) {
            throw Failure{ExitCode::OwnFault,
                          "there is no product configuration that names a driver",
                          "run `kestrel setup`, or name a driver with --driver",
                          {},
                          {},
                          {}};
        }
        printer.driver = drivers.front();
    }
    InstallPrinter(printer);
    return {fmt::format("added the printer \"{}\" on {} with the driver \"{}\"\n", printer.name, printer.port,
                        printer.driver),
            {{"name", printer.name},
             {"port", printer.port},
             {"driver", printer.driver},
             {"bidirectional", printer.bidirectional}},
            {}};
}

Report Remove(const std::string& name) {
    RemovePrinter(name);
    return {fmt::format("removed the printer \"{}\"\n", name), {{"name", name}}, {}};
}

tools::Offer OfferDrivers(const std::vector<std::string>&) {
    tools::Offer offer;
    for (const std::string& driver : ConfiguredDrivers(KESTREL_PRODUCT))
        offer.words.push_back({driver, {}});
    return offer;
}

void DeclareAdd(const tools::Command& printers, Chosen& chosen) {
    const tools::Command command = printers.AddSubcommand("add", "Install a printer");
    const auto printer = std::make_shared<InstalledPrinter>();
    const auto noBidi = std::make_shared<bool>(false);
    command.AddOption("NAME", printer->name, "Name of the new printer").Required();
    command.AddOption("--port", printer->port, "Port that the printer is attached to")
        .Required()
        .TypeName("PORT");
    command.AddOption("--driver", printer->driver, "Installed driver [the first one of the product]")
        .TypeName("NAME")
        .Offers(OfferDrivers);
    command.AddFlag("--no-bidi", *noBidi,
                    "Without bidirectional communication (the library then refuses it)");
    command.Example("kestrel printers add \"Office\" --port USB001");
    command.OnUse([&chosen, printer, noBidi] {
        printer->bidirectional = !*noBidi;
        chosen = {"printers add", [printer](Context& context) { return Add(context, *printer); }};
    });
}

void DeclareRemove(const tools::Command& printers, Chosen& chosen) {
    const tools::Command command = printers.AddSubcommand("remove", "Remove an installed printer");
    const auto name = std::make_shared<std::string>();
    command.AddOption("NAME", *name, "Name of the printer").Required().Offers(OfferPrinters);
    command.Example("kestrel printers remove \"Office\"");
    command.OnUse([&chosen, name] {
        chosen = {"printers remove", [name](Context&) { return Remove(*name); }};
    });
}

}  // namespace

void AddPrinters(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("printers", "List, add and remove installed printers");
    command.AllowOneSubcommand();
    command.Note("Without a subcommand the installed printers are listed.");
    command.Example("kestrel printers");
    DeclareAdd(command, chosen);
    DeclareRemove(command, chosen);
    command.OnUse([&chosen, command] {
        if (command.HasSubcommand()) return;
        chosen = {"printers", [](Context& context) { return ListPrinters(context); }};
    });
}

}  // namespace cli
