/* What the package does on this computer: its status monitor, the ordering of supplies, and the installation
   of printers. Included by sdk.h, whose caveats on errors, threads and texts hold here too. */
#pragma once

#include "sdk_types.h"

/* --- Status monitor --- */

/* Start the status monitor, if it does not run, and let it open the status window, or the maintenance window,
   of the selected printer. The start takes a second and more, each of the two requests to it up to 1 s and 5
   s.

   Errors
     SDK_ERROR_SEND_INCOMPLETE  the status monitor does not take requests, or could not be started
     SDK_ERROR_NO_REPLY         it does not answer
     31                         it refuses
     others                     those of the channel to it */
KESTREL_API kestrel_bool ShowStatusMonitor(void);
KESTREL_API kestrel_bool ShowMaintenance(void);

/* Lets the status monitor open its about box. A status monitor that does not run is not started. Errors are
   those of ShowStatusMonitor. */
KESTREL_API kestrel_bool ShowAboutBox(void);

/* Whether the status monitor's window is always shown to the current user: 1 as well when nothing is stored
   or it cannot be read. It is no failure when it is 0, and the last-error value is left alone; so it is by
   the next function.

   Both use the root of the user's registry hive until a printer has been selected in the process. */
KESTREL_API kestrel_bool GetStatusMonitorDisplayMode(void);

/* Stores it for the current user: 1 for always, any other number for not. 0 when it cannot be stored. */
KESTREL_API kestrel_bool SetStatusMonitorDisplayMode(int32_t mode);

/* --- Supplies --- */

/* Starts the ordering of supplies for the selected printer. When the printer cannot be asked, within 4 s, the
   status monitor is asked to do it, within another 4 s and 4 s.

   Errors
     31                   the printer refuses
     SDK_ERROR_BAD_REPLY  the printer's answer is neither yes nor no
     others               the printer could not be asked, and the status monitor refused or could not be asked
                          either

   Once the status monitor has been asked, the last-error value is what the exchanges with both have left. */
KESTREL_API kestrel_bool OrderSupplies(void);

/* --- Installation ---
   The system may want an administrator. Printers are not asked for anything. */

/* Makes a port of the Standard TCP/IP port monitor.

   hostAddress  IPv4 address in dotted form, or a host name; at most 48 characters
   portNumber   TCP port, usually 9100
   portName     buffer of 64 characters. On entry the wanted name, or an empty text: the name is then ZRIJT_
   and the address, or the host name. On success the name of the port made; empty when the port monitor
                refuses the request; unchanged when the port monitor cannot be reached

   That the port monitor has a port of this name already is no failure, and the port stays as it is. After a
   success the last-error value has no meaning.

   Errors
     87      a pointer is null or a text too long; nothing was done
     others  those of the spooler: 1722 when it is not running, 1796 when it has no such port monitor */
KESTREL_API kestrel_bool AddNetPort(const kestrel_char* hostAddress, uint32_t portNumber,
                                    kestrel_char* portName);

/* Makes a printer with a driver of a setup information file, through the printer user interface of the
   system. Returns when that program has ended, while the calling thread's window messages are dispatched
   every 500 ms. Success means that the program could be started: whether the printer was made is not
   examined.

   printerName  its name
   infPath      the setup information file
   model        model in that file
   port         name of an existing port
   makeDefault  not 0: make it the default printer as well

   Errors
     1801  printerName is null or empty
     87    one of the other texts is null or empty
     2     the file cannot be read
     6     the program could not be started */
KESTREL_API kestrel_bool AddDriverInstance(const kestrel_char* printerName, const kestrel_char* infPath,
                                           const kestrel_char* model, const kestrel_char* port,
                                           kestrel_bool makeDefault);

/* Installs the driver of a model, without a printer. As AddDriverInstance otherwise. */
KESTREL_API kestrel_bool AddDriverFiles(const kestrel_char* infPath, const kestrel_char* model);
