// One printer as the registry holds it and as the level-1 and level-2 records show it.
#pragma once

#include <windows.h>
#include <winspool.h>

#include "winport/registry/store.h"
#include "winport/spooler/packed_records.h"

namespace winport {

PackedRecord<PRINTER_INFO_2W> LoadPrinter(RegistrySession& session, KeyId printer);

// "name,driver,location" with the name and the comment, as EnumPrintersW lists printers at level 1.
PackedRecord<PRINTER_INFO_1W> LoadPrinterSummary(RegistrySession& session, KeyId printer);

// Writes the texts that are given (a null member keeps what is there) and all numbers, save those that only
// the spooler itself knows (status, jobs, speed).
void SavePrinter(RegistrySession& session, KeyId printer, const PRINTER_INFO_2W& info);

}  // namespace winport
