// Open printers and the port monitor's configuration. Their handles are not kernel handles: CloseHandle and
// the waits refuse them, and ClosePrinter refuses all others.
#pragma once

#include <windows.h>

#include <optional>

#include "winport/registry/store.h"

namespace winport {

struct OpenPrinter {
    KeyId key = 0;  // 0 for the spooler itself and the port monitor
    DWORD access = 0;
    bool isPortMonitor = false;
};

// Null when the table is full.
HANDLE AddPrinterHandle(const OpenPrinter& printer);
std::optional<OpenPrinter> FindPrinterHandle(HANDLE handle);
// False for a handle that is not open.
bool RemovePrinterHandle(HANDLE handle);

}  // namespace winport
