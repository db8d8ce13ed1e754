#include <fmt/format.h>

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
    report.data["printers"] = nlohmann::ordered_json::array();
    for (const InstalledPrinter& printer : InstalledPrinters()) {
        const bool isProducts = std::find(drivers.begin(), drivers.end(), printer.driver) != drivers.end();
        rows.push_back({ForTerminal(printer.name), ForTerminal(printer.port), ForTerminal(printer.driver),
                        printer.bidirectional ? "yes" : "no", isProducts ? "product" : "foreign"});
        report.data["printers"].push_back({{"name", printer.name},
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
            throw Failure{ExitCode::kOwnFault,
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

void DeclareAdd(CLI::App& printers, Chosen& chosen) {
    CLI::App* const command = printers.add_subcommand("add", "Install a printer");
    const auto printer = std::make_shared<InstalledPrinter>();
    const auto noBidi = std::make_shared<bool>(false);
    command->add_option("NAME", printer->name, "Name of the new printer")->required();
    command->add_option("--port", printer->port, "Port that the printer is attached to")
        ->required()
        ->type_name("PORT");
    command->add_option("--driver", printer->driver, "Installed driver [the first one of the product]")
        ->type_name("NAME");
    command->add_flag("--no-bidi", *noBidi,
                      "Without bidirectional communication (the library then refuses it)");
    command->footer("Example: kestrel printers add \"Office\" --port USB001");
    command->callback([&chosen, printer, noBidi] {
        printer->bidirectional = !*noBidi;
        chosen = {"printers add", [printer](Context& context) { return Add(context, *printer); }};
    });
}

void DeclareRemove(CLI::App& printers, Chosen& chosen) {
    CLI::App* const command = printers.add_subcommand("remove", "Remove an installed printer");
    const auto name = std::make_shared<std::string>();
    command->add_option("NAME", *name, "Name of the printer")->required();
    command->footer("Example: kestrel printers remove \"Office\"");
    command->callback([&chosen, name] {
        chosen = {"printers remove", [name](Context&) { return Remove(*name); }};
    });
}

}  // namespace

void AddPrinters(CLI::App& app, Chosen& chosen) {
    CLI::App* const command = app.add_subcommand("printers", "List, add and remove installed printers");
    command->require_subcommand(0, 1);
    command->footer("Without a subcommand the installed printers are listed.\n\nExample: kestrel printers");
    DeclareAdd(*command, chosen);
    DeclareRemove(*command, chosen);
    command->callback([&chosen, command] {
        if (!command->get_subcommands().empty()) return;
        chosen = {"printers", [](Context& context) { return ListPrinters(context); }};
    });
}

}  // namespace cli
