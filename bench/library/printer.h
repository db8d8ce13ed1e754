// A selected printer for the library's rows: an installed one, and a counterpart behind its channel.
#pragma once

#include <string>
#include <vector>

#include "engine/contender.h"

constexpr uint32_t kTimeoutMs = 5000;

/// Both sides: what is installed here is found.
void UseHome(const Place& place);
/// Server side: installs the printer, then turns into the virtual printer.
void ServeVirtualPrinter(const Place& place);
/// The same on a port of its own beside the other one, with a panel that nobody looks at.
void ServeVirtualPrinterWithPanel(const Place& place);
/// Server side: two hundred printers, which are one process.
void ServeFleet(const Place& place);
/// The names of those.
std::vector<std::string> FleetPrinters();
/// Server side: installs the printer alone; the counterpart is the caller.
void InstallPrinter(const Place& place);
/// Client side; throws unless the printer can be selected.
void SelectInstalledPrinter(const Place& place);
void SelectPrinterWithPanel(const Place& place);
