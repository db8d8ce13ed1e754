#pragma once

#include "kestrel/command_line.h"

namespace cli {

// Each declares one command with its options, help and example, and puts the work into `chosen` when it is
// used.
void AddSetup(CLI::App& app, Chosen& chosen);
void AddPrinters(CLI::App& app, Chosen& chosen);
void AddGet(CLI::App& app, Chosen& chosen);
void AddSet(CLI::App& app, Chosen& chosen);
void AddList(CLI::App& app, Chosen& chosen);
void AddRaw(CLI::App& app, Chosen& chosen);
void AddMaintenance(CLI::App& app, Chosen& chosen);
void AddLock(CLI::App& app, Chosen& chosen);
void AddUnlock(CLI::App& app, Chosen& chosen);
void AddCancel(CLI::App& app, Chosen& chosen);
void AddCache(CLI::App& app, Chosen& chosen);
void AddStatus(CLI::App& app, Chosen& chosen);
void AddAddressBook(CLI::App& app, Chosen& chosen);
void AddWifi(CLI::App& app, Chosen& chosen);
void AddPing(CLI::App& app, Chosen& chosen);
void AddHosts(CLI::App& app, Chosen& chosen);
void AddClock(CLI::App& app, Chosen& chosen);
void AddFirmware(CLI::App& app, Chosen& chosen);
void AddCapabilities(CLI::App& app, Chosen& chosen);
void AddIdentity(CLI::App& app, Chosen& chosen);
void AddSupplies(CLI::App& app, Chosen& chosen);
void AddMonitor(CLI::App& app, Chosen& chosen);
void AddInstall(CLI::App& app, Chosen& chosen);
void AddVersion(CLI::App& app, Chosen& chosen);
void AddComplete(CLI::App& app, Chosen& chosen);

}  // namespace cli
