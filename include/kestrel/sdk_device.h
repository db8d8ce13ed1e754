// What the printer knows beside its settings: address book, access points, network diagnostics, clock,
// firmware, capabilities. Included by sdk.h, whose caveats hold here too; texts and results are as in
// sdk_settings.h.
//
// `timeoutMs` is T, the time allowed for an exchange or for the whole call, in milliseconds. Where one call
// makes several requests, an error leaves what was read before it.
//
// Errors of Get...: query, 87, SDK_ERROR_BAD_REPLY
// Errors of Set...: exchange, 87
// Blocks 2 T.
#pragma once

#include "sdk_types.h"

// --- Address book ---
//
// The reading functions ask for every field by itself and clear all records first. A word of the printer
// that is no KestrelAddressType fails with 87, and so does a record to write with such a number. A text in a
// record to write may fill its field without a terminator. The printer's "(null)" for a text is read as it
// comes.
//
// The time-out of a list is that of the whole list, and what is left of it that of each request. When it
// runs out between two records the last-error value is that of the last exchange, which may be 0.

/// Reads the speed-dial list, with 180 requests.
/// `records`: KESTREL_SPEED_DIAL_RECORDS of them.
/// Errors: 0, query, 87, SDK_ERROR_BAD_REPLY
KESTREL_API kestrel_bool GetQuickDialNumbers(KestrelQuickDial* records, uint32_t timeoutMs);

/// Writes the speed-dial list with one request; nothing is sent when one of the records is wrong.
/// `records`: KESTREL_SPEED_DIAL_RECORDS of them.
KESTREL_API kestrel_bool SetQuickDialNumbers(const KestrelQuickDial* records, uint32_t timeoutMs);

/// Reads the one-touch list. What is left of the time-out at a record's beginning is allowed for each of its
/// fields.
/// `records`: KESTREL_ONE_TOUCH_RECORDS of them.
/// Errors: 0, query, 87, SDK_ERROR_BAD_REPLY
/// Blocks 6 T; 3 T while no other program is in the way.
KESTREL_API kestrel_bool GetQuickDialButtons(KestrelQuickDial* records, uint32_t timeoutMs);

/// Writes the one-touch list, record by record; those before a wrong one have been sent.
/// `records`: KESTREL_ONE_TOUCH_RECORDS of them.
/// Errors: 0, exchange, 87
KESTREL_API kestrel_bool SetQuickDialButtons(const KestrelQuickDial* records, uint32_t timeoutMs);

/// Reads one record of the one-touch list. The time-out is allowed for each of its three fields.
/// `index`: from 0. It is not checked here: the printer judges it.
/// `record`: is cleared first.
/// Blocks 6 T; 3 T while no other program is in the way.
KESTREL_API kestrel_bool GetQuickDialButton(uint32_t index, KestrelQuickDial* record, uint32_t timeoutMs);

/// Writes one record of the one-touch list.
/// `index`: from 0. It is not checked here: the printer judges it.
/// `record`: all three fields are written.
KESTREL_API kestrel_bool SetQuickDialButton(uint32_t index, const KestrelQuickDial* record,
                                            uint32_t timeoutMs);

// --- Access points ---

/// Starts a search and does not wait for its end.
/// Errors: exchange
KESTREL_API kestrel_bool StartSearchForAccessPoints(uint32_t timeoutMs);

/// `count`: access points found so far.
KESTREL_API kestrel_bool GetNumAccessPoints(uint32_t* count, uint32_t timeoutMs);

/// The access points found.
/// `records`: KESTREL_MAX_ACCESS_POINTS of them, all cleared first. A value that the printer sends malformed
/// leaves its field empty or 0; of the 16-bit numbers the lower 16 bits are kept.
/// Errors
///   SDK_ERROR_UNEXPECTED_REPLY  the reply is no list, which GetLastResponseNum tells by another number than
///                               101, or it names a record or a field that does not exist; the records
///                               filled before stay
///   SDK_ERROR_BAD_REPLY         the reply has no response number
///   query, 87
KESTREL_API kestrel_bool GetAccessPoints(KestrelAccessPoint* records, uint32_t timeoutMs);

// --- Network diagnostics ---

/// Lets the printer ping an address. It does not wait for the answers.
/// `address`: a.b.c.d is a + b * 0x100 + c * 0x10000 + d * 0x1000000.
/// `count`: how many pings.
/// `pingTimeout`: time that the printer waits for each, in its own unit.
/// Errors: exchange
KESTREL_API kestrel_bool SetPing(uint32_t address, uint8_t count, uint8_t pingTimeout, uint32_t timeoutMs);

/// `count`: pings sent, and answered, since the last SetPing.
KESTREL_API kestrel_bool GetNumOfPingExecuted(uint32_t* count, uint32_t timeoutMs);
KESTREL_API kestrel_bool GetNumOfPingSuccess(uint32_t* count, uint32_t timeoutMs);

/// Names of the hosts that the printer discovered by multicast DNS. Errors have the causes that they have
/// for GetAccessPoints.
/// `hosts`: KESTREL_MAX_HOSTS entries, all cleared first.
KESTREL_API kestrel_bool GetMDNSHostList(KestrelHost* hosts, uint32_t timeoutMs);

// --- Clock ---

/// The time that the printer shows, in its own time zone. All outputs are cleared first, and are whatever
/// numbers the printer sends.
/// `year`: such as 2026.
/// `month`: 1 to 12.
/// `day`: 1 to 31.
/// `hour`: 0 to 23.
/// `minute`: 0 to 59.
/// Errors
///   0  the reply is not a complete time
///   query, 87
KESTREL_API kestrel_bool GetDeviceTime(uint32_t* year, uint32_t* month, uint32_t* day, uint32_t* hour,
                                       uint32_t* minute, uint32_t timeoutMs);

/// Sets it with one request, and asks for the year afterwards to see that the printer answers. Nothing is
/// checked here, nor is the year compared: the printer judges.
/// `year`: such as 2026; any of 0 to 65535 is sent.
/// `month`: 1 to 12; here and below, any of 0 to 255 is sent.
/// `day`: 1 to 31.
/// `hour`: 0 to 23.
/// `minute`: 0 to 59.
/// Errors
///   1460                 no time was left to ask for the year: the clock may be set
///   SDK_ERROR_BAD_REPLY  the year was not answered: the clock may be set
///   query
KESTREL_API kestrel_bool SetDeviceTime(uint16_t year, uint8_t month, uint8_t day, uint8_t hour,
                                       uint8_t minute, uint32_t timeoutMs);

/// The printer's clock as a text of 28 hexadecimal digits:
///     1 to 16   identity of the computer that set the clock last
///     17 to 24  local time in seconds from 2000-01-01 00:00 on, less an hour in the daylight-saving period
///     25 to 28  minutes between local time and UTC; the first digit is 1 west of UTC
/// The daylight-saving period is taken to last from 2:00 on the first Sunday of April to 1:00 on the first of
/// October, in every time zone that has one.
/// `text`: buffer of 58 bytes, 28 characters and the terminator.
KESTREL_API kestrel_bool GetCurrentTimeRTC(kestrel_char* text, uint32_t timeoutMs);

/// Sets the printer's clock to that of this computer, as a text of the form above. The computer's identity
/// is made at random at the first call and kept in the registry; where it cannot be kept, each call makes
/// another. From 2136-02-07 06:28:16 on the seconds begin again at 0.
/// Errors
///   87  nothing was sent: this computer's clock shows a year before 2000 or after 2136
///   0   nothing was sent: the system can make no identity
///   exchange
KESTREL_API kestrel_bool SetCurrentTimeRTC(uint32_t timeoutMs);

// --- Firmware ---
//
// A time-out is that of the whole call; when it runs out between two requests the error is 1460. Outputs are
// cleared first.

/// The three versions that the printer tells of its firmware, with three requests. What they count is the
/// maker's business: compare them for equality.
/// `lagoon`: the number that the printer calls its Lagoon version.
/// `customer`: the number of its customer version.
/// `printer`: its printer version, a text; buffer of 128 bytes, 63 characters and the terminator.
KESTREL_API kestrel_bool GetFWVersion(uint32_t* lagoon, uint32_t* customer, kestrel_char* printer,
                                      uint32_t timeoutMs);

/// `capable`: 1 when the firmware can be upgraded with UpgradeFW, else 0.
KESTREL_API kestrel_bool GetCapFWUpgrade(kestrel_bool* capable, uint32_t timeoutMs);

/// Hands an upgrade file to the language monitor, which needs up to a minute for it; the printer goes on
/// with the upgrade by itself. A status monitor that runs is told before.
/// `path`: of the file; not read here.
/// Errors
///   2                           nothing exists at the path, and nothing was sent; or the language monitor
///                               says so
///   50                          the printer cannot be upgraded in this way, or did not say that it can
///   87                          path is null
///   0                           the file was refused; GetLastResponseNum has the answer
///   SDK_ERROR_BAD_REPLY         the reply has no response number
///   query
/// Blocks 142 s: 10 s for the printer's capability, 12 s for the status monitor, 120 s for the file.
KESTREL_API kestrel_bool UpgradeFW(const kestrel_char* path);

/// Makes the language monitor ask the printer for its firmware's capabilities anew.
/// Errors
///   0                    it answers but does not comply; GetLastResponseNum has the answer
///   SDK_ERROR_BAD_REPLY  the reply has no response number
///   query
KESTREL_API kestrel_bool RefreshFWCapabilities(uint32_t timeoutMs);

// --- Capabilities and identity ---
//
// As for the firmware.

/// `version`: the first character of the RBN version, 0 for an empty one, and 32 when the call fails. A
/// character above 127 is its byte in the ANSI code page with the upper 24 bits set.
KESTREL_API kestrel_bool GetCapRBNVer(uint32_t* version, uint32_t timeoutMs);

/// `capable`: whether the printer can move the top-of-form edge.
KESTREL_API kestrel_bool GetCapTOFEdgeOverride(kestrel_bool* capable, uint32_t timeoutMs);

/// The beginning of the printer's capability block.
/// `buffer`: receives size bytes, of which the first four hold size as a uint32_t.
/// `size`: how many; at least 4.
/// `timeoutMs`: is not used.
/// Errors
///   0   the printer has no such block or a shorter one, or size is below 4, or the block's own idea of its
///       size is 0 or more than size; the buffer may have been written by then
///   query, 87
/// Blocks 10 s.
KESTREL_API kestrel_bool GetCapabilities(void* buffer, uint32_t size, uint32_t timeoutMs);

/// The identifiers of the printer on the USB, with two requests.
/// `vendor`: the maker's.
/// `product`: the model's.
KESTREL_API kestrel_bool GetVendorProductIDs(uint32_t* vendor, uint32_t* product, uint32_t timeoutMs);

/// Whether one of the two cloud print services is set up on the printer, with two requests.
/// `configured`: 0 or 1.
/// Errors
///   0  the printer does not know the service
///   query, 87, SDK_ERROR_BAD_REPLY
KESTREL_API kestrel_bool GetGCPConfigured(kestrel_bool* configured, uint32_t timeoutMs);
KESTREL_API kestrel_bool GetPennantConfigured(kestrel_bool* configured, uint32_t timeoutMs);
