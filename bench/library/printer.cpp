#include "library/printer.h"

#include <kestrel/sdk.h>

#include <cstdlib>
#include <stdexcept>

#include "engine/process.h"

namespace {

void Select(const char16_t* name) {
    if (!SelectPrinter(name)) throw std::runtime_error("the printer cannot be selected");
}

}  // namespace

void UseHome(const Place& place) {
    setenv("WINPORT_HOME", place.folder.c_str(), 1);
}

void InstallPrinter(const Place& place) {
    UseHome(place);
    Run({KESTREL_CLIENT, "setup"});
    Run({KESTREL_CLIENT, "printers", "add", "Bench", "--port", "USB001"});
}

void ServeVirtualPrinter(const Place& place) {
    InstallPrinter(place);
    Become({KESTREL_VPRINTER, "--port", "USB001", "--trace", "none"});
}

void ServeVirtualPrinterWithPanel(const Place& place) {
    UseHome(place);
    Run({KESTREL_CLIENT, "printers", "add", "Panel", "--port", "USB002"});
    Become({KESTREL_VPRINTER, "--port", "USB002", "--trace", "none", "--web", "127.0.0.1:0"});
}

void ServeFleet(const Place& place) {
    UseHome(place);
    Run({KESTREL_CLIENT, "setup"});
    std::vector<std::string> program = {KESTREL_VPRINTER, "--trace", "none"};
    for (const std::string& name : FleetPrinters()) {
        Run({KESTREL_CLIENT, "printers", "add", name, "--port", name});
        program.insert(program.end(), {"--port", name});
    }
    Become(program);
}

std::vector<std::string> FleetPrinters() {
    constexpr int kPrinters = 200;
    std::vector<std::string> names;
    for (int i = 0; i < kPrinters; ++i)
        names.push_back("FLEET" + std::to_string(i));
    return names;
}

void SelectInstalledPrinter(const Place& place) {
    UseHome(place);
    Select(u"Bench");
}

void SelectPrinterWithPanel(const Place& place) {
    UseHome(place);
    Select(u"Panel");
}
