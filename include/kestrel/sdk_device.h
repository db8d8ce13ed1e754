/* What the printer knows beside its settings: address book, access points, network diagnostics, clock,
   firmware, capabilities. Included by sdk.h, whose caveats on threads, blocking and texts hold here too;
   time-outs, results and errors are those of sdk_settings.h. A null pointer fails with 87 and nothing is
   sent. */
#pragma once

#include "sdk_types.h"

/* --- Address book ---
   The reading functions ask for every field by itself and clear all records first; after a failure what was
   read before it stays. A word of the printer that is no KestrelAddressType fails with 87, and so does a
   record to write with such a number.

   The time-out of a list is that of the whole list. When it runs out between two records the result is 0 and
   the last-error value is that of the last exchange, which may be 0. */

/* The speed-dial list: KESTREL_SPEED_DIAL_RECORDS records. It is written with one request; nothing is sent
   when one of the records is wrong. */
KESTREL_API kestrel_bool GetQuickDialNumbers(KestrelQuickDial* records, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetQuickDialNumbers(const KestrelQuickDial* records, uint32_t timeoutMs);

/* The one-touch list: KESTREL_ONE_TOUCH_RECORDS records. It is written record by record; those before a wrong
   one have been sent. */
KESTREL_API kestrel_bool GetQuickDialButtons(KestrelQuickDial* records, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetQuickDialButtons(const KestrelQuickDial* records, uint32_t timeoutMs);

/* One record of the one-touch list, from 0. The index is not checked here: the printer judges it. Reading
   allows the time-out for each of the three fields. */
KESTREL_API kestrel_bool GetQuickDialButton(uint32_t index, KestrelQuickDial* record, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetQuickDialButton(uint32_t index, const KestrelQuickDial* record,
                                            uint32_t timeoutMs);

/* --- Access points --- */

/* Starts a search and does not wait for its end. */
KESTREL_API kestrel_bool StartSearchForAccessPoints(uint32_t timeoutMs);

/* Number of access points found so far. */
KESTREL_API kestrel_bool GetNumAccessPoints(uint32_t* count, uint32_t timeoutMs);

/* The access points found: KESTREL_MAX_ACCESS_POINTS records, all cleared first. A value that the printer
   sends malformed leaves its field empty or 0. SDK_ERROR_UNEXPECTED_REPLY: the reply is no list, which
   GetLastResponseNum tells by another number than 101, or it names a record or a field that does not exist;
   the records filled before stay. */
KESTREL_API kestrel_bool GetAccessPoints(KestrelAccessPoint* records, uint32_t timeoutMs);

/* --- Network diagnostics --- */

/* Lets the printer ping an address.

   address      a.b.c.d is a + b * 0x100 + c * 0x10000 + d * 0x1000000
   count        how many pings
   pingTimeout  time that the printer waits for each, in its own unit */
KESTREL_API kestrel_bool SetPing(uint32_t address, uint8_t count, uint8_t pingTimeout, uint32_t timeoutMs);

/* Pings sent, and answered, since the last SetPing. */
KESTREL_API kestrel_bool GetNumOfPingExecuted(uint32_t* count, uint32_t timeoutMs);
KESTREL_API kestrel_bool GetNumOfPingSuccess(uint32_t* count, uint32_t timeoutMs);

/* Names of the hosts that the printer discovered by multicast DNS: KESTREL_MAX_HOSTS entries, all cleared
   first. Errors as for GetAccessPoints. */
KESTREL_API kestrel_bool GetMDNSHostList(KestrelHost* hosts, uint32_t timeoutMs);

/* --- Clock --- */

/* The time that the printer shows. All outputs are cleared first. When the reply is not a complete time, the
   result is 0 with the last-error value 0. */
KESTREL_API kestrel_bool GetDeviceTime(uint32_t* year, uint32_t* month, uint32_t* day, uint32_t* hour,
                                       uint32_t* minute, uint32_t timeoutMs);

/* Sets it, and asks for the year afterwards to see that the printer answers: 1460 when no time is left for
   that. Nothing is checked here, nor is the year compared: the printer judges. */
KESTREL_API kestrel_bool SetDeviceTime(uint16_t year, uint8_t month, uint8_t day, uint8_t hour,
                                       uint8_t minute, uint32_t timeoutMs);

/* The printer's clock as a text of 28 hexadecimal digits; text is a buffer of 58 bytes.
     1 to 16   identity of the computer that set the clock last
     17 to 24  local time in seconds from 2000-01-01 00:00 on, less an hour in the daylight-saving period
     25 to 28  minutes between local time and UTC; the first digit is 1 west of UTC */
KESTREL_API kestrel_bool GetCurrentTimeRTC(kestrel_char* text, uint32_t timeoutMs);

/* Sets the printer's clock to that of this computer. The computer's identity is made at random at the first
   call and kept in the registry. 87, with nothing sent, when this computer's clock shows a year before 2000
   or after 2136. */
KESTREL_API kestrel_bool SetCurrentTimeRTC(uint32_t timeoutMs);

/* --- Firmware ---
   A time-out is that of the whole call; when it runs out between two requests the error is 1460, and what was
   read before it stays. Outputs are cleared first. */

/* printer is a buffer of 128 bytes. */
KESTREL_API kestrel_bool GetFWVersion(uint32_t* lagoon, uint32_t* customer, kestrel_char* printer,
                                      uint32_t timeoutMs);

/* Whether the firmware can be upgraded with UpgradeFW. */
KESTREL_API kestrel_bool GetCapFWUpgrade(kestrel_bool* capable, uint32_t timeoutMs);

/* Hands an upgrade file to the language monitor, which needs up to a minute for it; the printer goes on with
   the upgrade by itself. A status monitor that runs is told before.

   Errors
     2                    nothing exists at the path; nothing was sent
     50                   the printer cannot be upgraded in this way, or did not say that it can
     87                   path is null
     SDK_ERROR_BAD_REPLY  the reply has no response number
     0                    the file was refused; GetLastResponseNum has the answer
     others               as of SendCmd */
KESTREL_API kestrel_bool UpgradeFW(const kestrel_char* path);

/* Makes the language monitor ask the printer for its firmware's capabilities anew. The result is 0 with the
   last-error value 0 when it answers but does not comply; GetLastResponseNum has the answer. */
KESTREL_API kestrel_bool RefreshFWCapabilities(uint32_t timeoutMs);

/* --- Capabilities and identity ---
   As above. */

/* The first character of the RBN version, 0 for an empty version, and 32 when the call fails. */
KESTREL_API kestrel_bool GetCapRBNVer(uint32_t* version, uint32_t timeoutMs);

/* Whether the printer can move the top-of-form edge. */
KESTREL_API kestrel_bool GetCapTOFEdgeOverride(kestrel_bool* capable, uint32_t timeoutMs);

/* The beginning of the printer's capability block: size bytes, of which the first four hold size as a
   uint32_t. The result is 0 with the last-error value 0 when the printer has no such block or a shorter one,
   or when its own idea of its size is 0 or more than size; the buffer may have been written by then. The
   time-out is not used: the call takes up to 5 s. */
KESTREL_API kestrel_bool GetCapabilities(void* buffer, uint32_t size, uint32_t timeoutMs);

/* The identifiers of the printer on the USB. */
KESTREL_API kestrel_bool GetVendorProductIDs(uint32_t* vendor, uint32_t* product, uint32_t timeoutMs);

/* Whether one of the two cloud print services is set up on the printer. For a printer that does not know the
   service the result is 0 with the last-error value 0. */
KESTREL_API kestrel_bool GetGCPConfigured(kestrel_bool* configured, uint32_t timeoutMs);
KESTREL_API kestrel_bool GetPennantConfigured(kestrel_bool* configured, uint32_t timeoutMs);
