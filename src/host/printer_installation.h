// Ports, drivers and printers of this computer, made for the package's setup programs. No printer is asked.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

namespace host {

inline constexpr size_t kMaxHostAddress = 48;  // characters without a terminator; likewise the next
inline constexpr size_t kMaxPortName = 63;

/// Makes a port of the Standard TCP/IP port monitor for a host. `portName` holds the wanted name or an empty
/// text and receives the name of the port made; it is emptied when the port monitor refuses the request.
/// Texts that are null or too long fail with 87 and nothing is done; other errors are the spooler's.
bool AddNetPort(const WCHAR* hostAddress, uint32_t portNumber, WCHAR* portName);

// Both run the system's printer user interface and return when it has ended; true when it could be started,
// whatever came of it. 87 for a text that is missing, 2 for a setup information file that cannot be read, 6
// when nothing could be started.

/// Installs the driver `model` of a setup information file.
bool AddDriverFiles(const WCHAR* infPath, const WCHAR* model);
/// Makes a printer on a port, with the driver `model`. 1801 when its name is missing.
bool AddDriverInstance(const WCHAR* printerName, const WCHAR* infPath, const WCHAR* model, const WCHAR* port,
                       bool makeDefault);

}  // namespace host
