// The commands, one function each.
#pragma once

#include "kestrel/command_line.h"

namespace cli {

// Each declares one command with its options, help and example, and puts the work into `chosen` when it is
// used.
void AddSetup(const tools::Command& app, Chosen& chosen);
void AddPrinters(const tools::Command& app, Chosen& chosen);
void AddGet(const tools::Command& app, Chosen& chosen);
void AddSet(const tools::Command& app, Chosen& chosen);
void AddList(const tools::Command& app, Chosen& chosen);
void AddRaw(const tools::Command& app, Chosen& chosen);
void AddMaintenance(const tools::Command& app, Chosen& chosen);
void AddLock(const tools::Command& app, Chosen& chosen);
void AddUnlock(const tools::Command& app, Chosen& chosen);
void AddCancel(const tools::Command& app, Chosen& chosen);
void AddCache(const tools::Command& app, Chosen& chosen);
void AddStatus(const tools::Command& app, Chosen& chosen);
void AddAddressBook(const tools::Command& app, Chosen& chosen);
void AddWifi(const tools::Command& app, Chosen& chosen);
void AddPing(const tools::Command& app, Chosen& chosen);
void AddHosts(const tools::Command& app, Chosen& chosen);
void AddClock(const tools::Command& app, Chosen& chosen);
void AddFirmware(const tools::Command& app, Chosen& chosen);
void AddCapabilities(const tools::Command& app, Chosen& chosen);
void AddIdentity(const tools::Command& app, Chosen& chosen);
void AddSupplies(const tools::Command& app, Chosen& chosen);
void AddApply(const tools::Command& app, Chosen& chosen);
void AddDiff(const tools::Command& app, Chosen& chosen);
void AddTop(const tools::Command& app, Chosen& chosen);
void AddWatch(const tools::Command& app, Chosen& chosen);
void AddDump(const tools::Command& app, Chosen& chosen);
void AddRecord(const tools::Command& app, Chosen& chosen);
void AddLog(const tools::Command& app, Chosen& chosen);
void AddMetrics(const tools::Command& app, Chosen& chosen);
void AddMonitor(const tools::Command& app, Chosen& chosen);
void AddInstall(const tools::Command& app, Chosen& chosen);
void AddRun(const tools::Command& app, Chosen& chosen);
void AddVersion(const tools::Command& app, Chosen& chosen);
void AddCompletion(const tools::Command& app, Chosen& chosen);
void AddComplete(const tools::Command& app, Chosen& chosen);

}  // namespace cli
