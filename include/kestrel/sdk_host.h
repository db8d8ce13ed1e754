// What the package does on this computer: its status monitor, the ordering of supplies, and the installation
// of printers. Included by sdk.h, whose caveats hold here too.
#pragma once

#include "sdk_types.h"

// --- Status monitor ---
//
// The status monitor is told of the printer that SelectPrinter tried last on this thread, which is not the
// selected one after a failure.

/// Start the status monitor, if it does not run, and let it open the status window, or the maintenance
/// window, of the selected printer.
///
/// Errors
///   monitor                    1460 when there is none and none could be started
///   SDK_ERROR_SEND_INCOMPLETE  it answers, but does not take the request to open the window in time
///   SDK_ERROR_NO_REPLY         it answers a ping with 0, or does not answer the request to open the window
///   31                         it refuses to open the window
/// Blocks 55 s: 31 s for the start, 4 s for a ping, 20 s for the request; besides, as long as the spooler
/// takes. The start takes a second when all is well.
KESTREL_API kestrel_bool ShowStatusMonitor(void);
KESTREL_API kestrel_bool ShowMaintenance(void);

/// Lets the status monitor open its about box. A status monitor that does not run is not started.
///
/// Errors
///   SDK_ERROR_SEND_INCOMPLETE  there is none, or it does not take the request in time
///   SDK_ERROR_NO_REPLY         it does not answer
///   31                         it refuses
///   object
/// Blocks 20 s.
KESTREL_API kestrel_bool ShowAboutBox(void);

/// Whether the status monitor's window is always shown to the current user: 1 as well when nothing is stored
/// or it cannot be read. It is no failure when it is 0. The last-error value has no meaning, here and for
/// the next function.
///
/// Both use the root of the user's registry hive until SelectPrinter has been called in the process.
/// Errors: any
/// Blocks not at all.
KESTREL_API kestrel_bool GetStatusMonitorDisplayMode(void);

/// Stores it for the current user; 0 when it cannot be stored.
/// `mode`: 1 for always, any other number for not.
/// Errors: any
/// Blocks not at all.
KESTREL_API kestrel_bool SetStatusMonitorDisplayMode(int32_t mode);

// --- Supplies ---

/// Starts the ordering of supplies for the selected printer. When the printer cannot be asked, the status
/// monitor, if one runs, is asked to do it; the last-error value is then what that has left, and has no
/// meaning after a success. From then on until the next selection the printer counts as one on a USB port.
///
/// Errors
///   31                   the printer refuses
///   SDK_ERROR_BAD_REPLY  the printer's answer is neither yes nor no
///   0                    the status monitor refuses
///   monitor              the status monitor was not reached: mostly 1460
///   query                the channel to the status monitor is not open
/// Blocks 24 s: 8 s for the printer, 16 s for the status monitor.
KESTREL_API kestrel_bool OrderSupplies(void);

// --- Installation ---
//
// The system may want an administrator. Printers are not asked for anything.

/// Makes a port of the Standard TCP/IP port monitor.
///
/// `hostAddress`: IPv4 address in dotted form, or a host name; at most 48 characters.
/// `portNumber`: TCP port, usually 9100.
/// `portName`: buffer of 64 characters. On entry the wanted name, or an empty text: the name is then ZRIJT_
/// and the address, or the host name. On success the name of the port; empty when the port monitor could not
/// be asked; unchanged when it could not be reached.
///
/// Success means that the port monitor was asked. What it says is not examined: a port of this name may have
/// been there already, and stays as it is, or the port monitor may not like the address. After a success the
/// last-error value has no meaning.
///
/// Errors
///   87                     a pointer is null or a text too long; nothing was done
///   1796                   the spooler has no such port monitor
///   5, 1722, 1727, system  from the spooler: no right to administer it, or it is not running
///   object
/// Blocks as long as the spooler takes.
KESTREL_API kestrel_bool AddNetPort(const kestrel_char* hostAddress, uint32_t portNumber,
                                    kestrel_char* portName);

/// Makes a printer with a driver of a setup information file, through the printer user interface of the
/// system. Returns when that program has ended, while the calling thread's window messages are dispatched
/// every 500 ms. Success means that the program could be started: whether the printer was made is not
/// examined. The texts become words of a command line: they must not hold double quotes.
///
/// `printerName`: its name.
/// `infPath`: the setup information file.
/// `model`: a model in that file.
/// `port`: the name of an existing port.
/// `makeDefault`: not 0 makes it the default printer as well.
///
/// Errors
///   1801  printerName is null or empty
///   87    one of the other texts is null or empty
///   2     the file cannot be read
///   6     the program could not be started
///   object
/// Blocks as long as the program runs, and a second program for makeDefault.
KESTREL_API kestrel_bool AddDriverInstance(const kestrel_char* printerName, const kestrel_char* infPath,
                                           const kestrel_char* model, const kestrel_char* port,
                                           kestrel_bool makeDefault);

/// Installs the driver of a model, without a printer. As AddDriverInstance otherwise.
///
/// `infPath`: the setup information file.
/// `model`: a model in that file.
///
/// Errors: 87, 2, 6, object
/// Blocks as long as the program runs.
KESTREL_API kestrel_bool AddDriverFiles(const kestrel_char* infPath, const kestrel_char* model);
