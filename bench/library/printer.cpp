#include "library/printer.h"

#include <kestrel/sdk.h>

#include <cstdlib>
#include <stdexcept>

#include "engine/process.h"

namespace {

void UseHome(const Place& place) {
    setenv("WINPORT_HOME", place.folder.c_str(), 1);
}

}  // namespace

void InstallPrinter(const Place& place) {
    UseHome(place);
    Run({KESTREL_CLIENT, "setup"});
    Run({KESTREL_CLIENT, "printers", "add", "Bench", "--port", "USB001"});
}

void ServeVirtualPrinter(const Place& place) {
    InstallPrinter(place);
    Become({KESTREL_VPRINTER, "--port", "USB001", "--trace", "none"});
}

void SelectInstalledPrinter(const Place& place) {
    UseHome(place);
    static constexpr char16_t kName[] = u"Bench";
    if (!SelectPrinter(kName)) throw std::runtime_error("the printer cannot be selected");
}
