// The printer's settings: as a rule a getter and a setter each. Included by sdk.h, whose caveats hold here
// too.
//
// Rules for all of them
// - The functions work on the printer that the calling thread selected with SelectPrinter.
// - `timeoutMs` is T, the time allowed for the exchange with the printer, in milliseconds.
// - The result is 1 for success and 0 for failure. After a failure GetLastError tells why; after a success
//   it is 0.
// - A getter writes to `value`, `text` or `address`. Before it sends, it clears what it will write (0, an
//   empty text); a failure leaves that. Enumerated settings are the exception: they are written on success
//   only.
// - Numbers are read with 32 bits and a sign: a decimal one beyond the range of int32_t counts as the nearest
//   within it; whoever needs more must be sent the number in hexadecimal, as 0xFFFFFFFF. Of a number that is
//   too large for the getter's type the lower bits are kept.
// - A setter sends `value`, `text` or `address`. It checks no ranges: the printer judges the numbers and
//   refuses what it does not support. Where no unit is named here, the unit is the printer's own.
// - Texts are zero-terminated UTF-16. The buffer of a getter has the fixed size named here, which is not
//   passed: a smaller one is overrun. A longer text is cut, and always terminated. The printer's "(null)" is
//   read as an empty text. What a setter sends is not cut.
// - An address is read as four bytes: a.b.c.d gives a, b, c, d. It is set as one number whose lowest byte
//   goes first: a + b * 0x100 + c * 0x10000 + d * 0x1000000.
// - Booleans are read as 0 or 1; as an argument any other number than 0 is true.
//
// Errors of Get...: query, 87, SDK_ERROR_BAD_REPLY
// Errors of Set...: exchange, 87
//   87                          a null pointer or a number without a name was passed, and nothing was sent;
//                               or the printer answered with a word that has no number
//   SDK_ERROR_BAD_REPLY         the reply holds no value of the setting's type; GetLastBadResponse has the
//                               reply
//   SDK_ERROR_UNEXPECTED_REPLY  there was no whole reply, or it holds an address that is not four bytes long
// Blocks 2 T.
#pragma once

#include "sdk_types.h"

// --- Device ---

/// Service number. Buffer: 16 bytes, 7 characters and the terminator.
KESTREL_API kestrel_bool GetServiceNumber(kestrel_char* text, uint32_t timeoutMs);

/// Registered product id. Buffer: 44 bytes, 21 characters and the terminator.
KESTREL_API kestrel_bool GetRPID(kestrel_char* text, uint32_t timeoutMs);

/// Hardware revision. Buffer: 10 bytes, 4 characters and the terminator.
KESTREL_API kestrel_bool GetRevNumber(kestrel_char* text, uint32_t timeoutMs);

/// Service tag. Buffer: 16 bytes, 7 characters and the terminator.
KESTREL_API kestrel_bool GetServiceTag(kestrel_char* text, uint32_t timeoutMs);

/// Name that people give the printer. Buffer: 128 bytes, 63 characters and the terminator.
KESTREL_API kestrel_bool GetFriendlyName(kestrel_char* text, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetFriendlyName(const kestrel_char* text, uint32_t timeoutMs);

/// Language of the printer's display: a KestrelLanguage.
KESTREL_API kestrel_bool GetDisplayLanguage(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetDisplayLanguage(uint32_t value, uint32_t timeoutMs);

/// Puts settings back to the maker's defaults.
/// `scope`: a KestrelRestoreScope.
/// Errors: exchange, 87
KESTREL_API kestrel_bool RestoreDefaults(uint32_t scope, uint32_t timeoutMs);

/// How a camera on the USB socket is treated. It cannot be read back.
/// `mode`: a KestrelCameraMode.
KESTREL_API kestrel_bool SetCameraMode(uint32_t mode, uint32_t timeoutMs);

/// Whether the network settings have been reset.
KESTREL_API kestrel_bool GetNetworkReset(kestrel_bool* value, uint32_t timeoutMs);

// --- Photo ---

/// Automatic scene balance.
KESTREL_API kestrel_bool GetSceneBalance(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetSceneBalance(kestrel_bool value, uint32_t timeoutMs);

/// Print the date on photos.
KESTREL_API kestrel_bool GetDateOnPrints(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetDateOnPrints(kestrel_bool value, uint32_t timeoutMs);

/// How a photo is scaled to the page: a KestrelImageScaling.
KESTREL_API kestrel_bool GetImagePageFormatting(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetImagePageFormatting(uint32_t value, uint32_t timeoutMs);

/// Ask when a print order is found on a memory card.
KESTREL_API kestrel_bool GetDPOFPromptIfDiscovered(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetDPOFPromptIfDiscovered(kestrel_bool value, uint32_t timeoutMs);

/// Print an order found on a memory card.
KESTREL_API kestrel_bool GetEnableAutomaticDpof(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetEnableAutomaticDpof(kestrel_bool value, uint32_t timeoutMs);

/// Print quality of photos: a KestrelPhotoQuality.
KESTREL_API kestrel_bool GetPhotoQuality(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetPhotoQuality(uint32_t value, uint32_t timeoutMs);

/// Colour of photos: a KestrelPhotoRendering.
KESTREL_API kestrel_bool GetPhotoRendering(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetPhotoRendering(uint32_t value, uint32_t timeoutMs);

/// Prints on a page: a KestrelLayout.
KESTREL_API kestrel_bool GetPhotoLayout(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetPhotoLayout(uint32_t value, uint32_t timeoutMs);

/// Layout or fixed size: a KestrelPhotoMode.
KESTREL_API kestrel_bool GetPhotoMode(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetPhotoMode(uint32_t value, uint32_t timeoutMs);

/// Copies of each photo.
KESTREL_API kestrel_bool GetPhotoCopies(uint8_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetPhotoCopies(uint8_t value, uint32_t timeoutMs);

/// How the display groups files: a KestrelFileView.
KESTREL_API kestrel_bool GetViewFilesBy(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetViewFilesBy(uint32_t value, uint32_t timeoutMs);

// --- Printer and trays ---

/// Time to dry between two sides.
KESTREL_API kestrel_bool GetDuplexDryTime(uint8_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetDuplexDryTime(uint8_t value, uint32_t timeoutMs);

/// Paper in the upper tray in percent: the lower eight bits of the printer's number, or 100 when they are
/// more.
KESTREL_API kestrel_bool GetUpperTrayLevel(uint8_t* value, uint32_t timeoutMs);

/// Paper in the lower tray, likewise.
KESTREL_API kestrel_bool GetLowerTrayLevel(uint8_t* value, uint32_t timeoutMs);

/// Always 0: no printer is asked, and none need be selected. `timeoutMs` is not used.
/// Errors: 87, object
/// Blocks not at all.
KESTREL_API kestrel_bool GetPhotoTrayState(uint32_t* value, uint32_t timeoutMs);

// --- Scanner ---

/// Kind of original: a KestrelScanWhat.
KESTREL_API kestrel_bool GetScanWhat(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetScanWhat(uint32_t value, uint32_t timeoutMs);

/// Where a scan goes: a KestrelScanTo.
KESTREL_API kestrel_bool GetScanTo(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetScanTo(uint32_t value, uint32_t timeoutMs);

/// Show a preview before scanning.
KESTREL_API kestrel_bool GetScanPreview(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetScanPreview(kestrel_bool value, uint32_t timeoutMs);

// --- Copy ---

/// Print quality of copies: a KestrelCopyQuality. GetCopyQuality alone makes no object: on a thread that has
/// called nothing else yet it fails with 0.
/// Errors of Get...: 0, query, 87, SDK_ERROR_BAD_REPLY
KESTREL_API kestrel_bool GetCopyQuality(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetCopyQuality(uint32_t value, uint32_t timeoutMs);

/// Number of copies. Read as 0 to 255, set as -128 to 127.
KESTREL_API kestrel_bool GetCopyQuantity(uint8_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetCopyQuantity(int8_t value, uint32_t timeoutMs);

/// Darker below 0, lighter above.
KESTREL_API kestrel_bool GetCopyBrightness(int8_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetCopyBrightness(int8_t value, uint32_t timeoutMs);

/// Colour of copies: a KestrelCopyRendering.
KESTREL_API kestrel_bool GetCopyRendering(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetCopyRendering(uint32_t value, uint32_t timeoutMs);

/// How the size of a copy is chosen: a KestrelCopyOutput.
KESTREL_API kestrel_bool GetCopyOutput(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetCopyOutput(uint32_t value, uint32_t timeoutMs);

/// Size of a copy, percent.
KESTREL_API kestrel_bool GetCopySizeScale(uint16_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetCopySizeScale(uint16_t value, uint32_t timeoutMs);

/// Show a preview before copying.
KESTREL_API kestrel_bool GetCopyPreview(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetCopyPreview(kestrel_bool value, uint32_t timeoutMs);

/// Prints on a page: a KestrelLayout.
KESTREL_API kestrel_bool GetCopySizeLayout(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetCopySizeLayout(uint32_t value, uint32_t timeoutMs);

// --- Fax ---

/// How often a number is dialled again.
KESTREL_API kestrel_bool GetFaxRedials(uint8_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetFaxRedials(uint8_t value, uint32_t timeoutMs);

/// Dial again when nobody answers.
KESTREL_API kestrel_bool GetFaxNoAnswerRedial(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetFaxNoAnswerRedial(kestrel_bool value, uint32_t timeoutMs);

/// Who answers an incoming call: a KestrelAnswerMode.
KESTREL_API kestrel_bool GetTAMSupport(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetTAMSupport(uint32_t value, uint32_t timeoutMs);

/// Rings before a call is answered.
KESTREL_API kestrel_bool GetTAMNumRings(uint8_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetTAMNumRings(uint8_t value, uint32_t timeoutMs);

/// Print a confirmation page.
KESTREL_API kestrel_bool GetFaxConfirmationPage(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetFaxConfirmationPage(kestrel_bool value, uint32_t timeoutMs);

/// The line has call waiting.
KESTREL_API kestrel_bool GetCallWaiting(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetCallWaiting(kestrel_bool value, uint32_t timeoutMs);

/// Modem sounds on the speaker.
KESTREL_API kestrel_bool GetAudibleFaxTones(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetAudibleFaxTones(kestrel_bool value, uint32_t timeoutMs);

/// Sender's name on faxes. Buffer: 80 bytes, 39 characters and the terminator.
KESTREL_API kestrel_bool GetFaxSendersName(kestrel_char* text, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetFaxSendersName(const kestrel_char* text, uint32_t timeoutMs);

/// Sender's telephone number. Buffer: 100 bytes, 49 characters and the terminator.
KESTREL_API kestrel_bool GetFaxPhoneNum(kestrel_char* text, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetFaxPhoneNum(const kestrel_char* text, uint32_t timeoutMs);

/// Sender's fax number. Buffer: 100 bytes, 49 characters and the terminator.
KESTREL_API kestrel_bool GetFaxNum(kestrel_char* text, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetFaxNum(const kestrel_char* text, uint32_t timeoutMs);

/// Print the date on received faxes.
KESTREL_API kestrel_bool GetFaxPrintDate(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetFaxPrintDate(kestrel_bool value, uint32_t timeoutMs);

/// Quality and colour of faxes: a KestrelFaxMode.
KESTREL_API kestrel_bool GetFaxMode(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetFaxMode(uint32_t value, uint32_t timeoutMs);

/// Error correction.
KESTREL_API kestrel_bool GetFaxErrorCorrection(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetFaxErrorCorrection(kestrel_bool value, uint32_t timeoutMs);

/// Keep received faxes in memory.
KESTREL_API kestrel_bool GetFaxBackup(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetFaxBackup(kestrel_bool value, uint32_t timeoutMs);

/// Scale received faxes to the page.
KESTREL_API kestrel_bool GetFaxScaleToFit(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetFaxScaleToFit(kestrel_bool value, uint32_t timeoutMs);

/// Highest speed of sending and receiving: a KestrelFaxSpeed.
KESTREL_API kestrel_bool GetFaxTransferSpeed(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetFaxTransferSpeed(uint32_t value, uint32_t timeoutMs);

/// Tone or pulse dialling: a KestrelDialing.
KESTREL_API kestrel_bool GetFaxDialing(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetFaxDialing(uint32_t value, uint32_t timeoutMs);

// --- User interface and power saving ---

/// Time that each picture is shown.
KESTREL_API kestrel_bool GetSlideshowInterval(uint8_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetSlideshowInterval(uint8_t value, uint32_t timeoutMs);

/// Sounds of the buttons.
KESTREL_API kestrel_bool GetAudibleFeedback(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetAudibleFeedback(kestrel_bool value, uint32_t timeoutMs);

/// Idle time before sleep.
KESTREL_API kestrel_bool GetSleepTimeout(uint8_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetSleepTimeout(uint8_t value, uint32_t timeoutMs);

/// Idle time before standby.
KESTREL_API kestrel_bool GetStandbyTimeout(uint8_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetStandbyTimeout(uint8_t value, uint32_t timeoutMs);

// --- Wireless configuration ---

/// Radio switched on.
KESTREL_API kestrel_bool GetWirelessRadio(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetWirelessRadio(kestrel_bool value, uint32_t timeoutMs);

/// Radio regulations: a KestrelWirelessRegion.
KESTREL_API kestrel_bool GetWirelessRegion(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetWirelessRegion(uint32_t value, uint32_t timeoutMs);

/// Direct or through an access point: a KestrelWirelessMode.
KESTREL_API kestrel_bool GetWirelessMode(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetWirelessMode(uint32_t value, uint32_t timeoutMs);

/// Name of the network. Buffer: 66 bytes, 32 characters and the terminator.
KESTREL_API kestrel_bool GetWirelessSSID(kestrel_char* text, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetWirelessSSID(const kestrel_char* text, uint32_t timeoutMs);

/// Radio channel.
KESTREL_API kestrel_bool GetWirelessChannel(uint8_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetWirelessChannel(uint8_t value, uint32_t timeoutMs);

/// How the printer joins a network: a KestrelAuthentication.
KESTREL_API kestrel_bool GetWirelessAuthentication(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetWirelessAuthentication(uint32_t value, uint32_t timeoutMs);

/// Encryption: a KestrelSecurityType.
KESTREL_API kestrel_bool GetWirelessSecurityType(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetWirelessSecurityType(uint32_t value, uint32_t timeoutMs);

/// The four encryption keys.
/// `index`: 0 to 3; any other fails with 87, sends nothing and writes nothing.
/// Buffer: 66 bytes, 32 characters and the terminator.
KESTREL_API kestrel_bool GetWirelessSecurityKey(uint32_t index, kestrel_char* text, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetWirelessSecurityKey(uint32_t index, const kestrel_char* text, uint32_t timeoutMs);

/// Which of the four encryption keys is in use.
KESTREL_API kestrel_bool GetWirelessSecurityDefaultKey(uint8_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetWirelessSecurityDefaultKey(uint8_t value, uint32_t timeoutMs);

/// Pass phrase of the network. Buffer: 130 bytes, 64 characters and the terminator.
KESTREL_API kestrel_bool GetWirelessSecurityPassPhrase(kestrel_char* text, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetWirelessSecurityPassPhrase(const kestrel_char* text, uint32_t timeoutMs);

// --- TCP/IP configuration ---

/// Where the address comes from: a KestrelAddressMethod.
KESTREL_API kestrel_bool GetIPMethod(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetIPMethod(uint32_t value, uint32_t timeoutMs);

/// Address chosen by the printer.
KESTREL_API kestrel_bool GetAutoIPAddress(uint8_t* address, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetAutoIPAddress(uint32_t address, uint32_t timeoutMs);

/// Subnet mask of the chosen address.
KESTREL_API kestrel_bool GetAutoIPSubnetMask(uint8_t* address, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetAutoIPSubnetMask(uint32_t address, uint32_t timeoutMs);

/// Default gateway of the chosen address.
KESTREL_API kestrel_bool GetAutoIPDefaultGateway(uint8_t* address, uint32_t timeoutMs);

/// First address to choose from.
KESTREL_API kestrel_bool GetAutoIPAddressRangeStart(uint8_t* address, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetAutoIPAddressRangeStart(uint32_t address, uint32_t timeoutMs);

/// Last address to choose from.
KESTREL_API kestrel_bool GetAutoIPAddressRangeEnd(uint8_t* address, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetAutoIPAddressRangeEnd(uint32_t address, uint32_t timeoutMs);

/// Address given by the network.
KESTREL_API kestrel_bool GetDHCPIPAddress(uint8_t* address, uint32_t timeoutMs);

/// Subnet mask given by the network.
KESTREL_API kestrel_bool GetDHCPSubnetMask(uint8_t* address, uint32_t timeoutMs);

/// Default gateway given by the network.
KESTREL_API kestrel_bool GetDHCPDefaultGateway(uint8_t* address, uint32_t timeoutMs);

/// Fixed address.
KESTREL_API kestrel_bool GetStaticIPAddress(uint8_t* address, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetStaticIPAddress(uint32_t address, uint32_t timeoutMs);

/// Subnet mask of the fixed address.
KESTREL_API kestrel_bool GetStaticSubnetMask(uint8_t* address, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetStaticSubnetMask(uint32_t address, uint32_t timeoutMs);

/// Default gateway of the fixed address.
KESTREL_API kestrel_bool GetStaticDefaultGateway(uint8_t* address, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetStaticDefaultGateway(uint32_t address, uint32_t timeoutMs);

// --- Status ---

/// What is on the camera socket: a KestrelImageDeviceLink.
KESTREL_API kestrel_bool GetImageDeviceLinkState(uint32_t* value, uint32_t timeoutMs);

/// State of the connection: a KestrelWirelessState.
KESTREL_API kestrel_bool GetWirelessState(uint32_t* value, uint32_t timeoutMs);

/// Speed of the wireless connection as the printer counts it.
KESTREL_API kestrel_bool GetWirelessSpeed(uint32_t* value, uint32_t timeoutMs);

/// Signal strength in dBm. The number is signed: cast it to int32_t.
KESTREL_API kestrel_bool GetWirelessRSSIdBm(uint32_t* value, uint32_t timeoutMs);

/// Signal strength in words. Buffer: 34 bytes, 16 characters and the terminator.
KESTREL_API kestrel_bool GetWirelessRSSI(kestrel_char* text, uint32_t timeoutMs);

// --- Maintenance ---
//
// Each starts an action of the printer: 1 when the printer takes it on.
//
// Errors
//   0                    the printer declines; GetLastResponseNum says how it answered
//   SDK_ERROR_BAD_REPLY  the reply has no response number
//   query
// Blocks 10 s.

/// Calibrates the print head.
KESTREL_API kestrel_bool CalibrateHead(void);
/// Prints a test page.
KESTREL_API kestrel_bool PrintTestPage(void);
/// Cleans the print head.
/// `deep`: not 0 cleans it thoroughly, which takes more ink.
KESTREL_API kestrel_bool CleanHead(kestrel_bool deep);
/// Checks the nozzles.
KESTREL_API kestrel_bool CheckNozzle(void);
/// Aligns the print head.
KESTREL_API kestrel_bool AlignHead(void);
/// The printer's action of that name.
KESTREL_API kestrel_bool VTOE(void);

// --- Not supported ---
//
// Kept so that programs which import them still load. They look at no argument and send nothing.
//
// Errors: 22
// Blocks not at all.

/// Not supported.
KESTREL_API kestrel_bool GetWirelessFragmentationThreshold(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetWirelessFragmentationThreshold(uint32_t value, uint32_t timeoutMs);
KESTREL_API kestrel_bool GetWirelessRTSThreshold(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetWirelessRTSThreshold(uint32_t value, uint32_t timeoutMs);
KESTREL_API kestrel_bool GetWirelessContinuousTransmit(kestrel_bool* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetWirelessContinuousTransmit(kestrel_bool value, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetAutoIPDefaultGateway(uint32_t address, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetDHCPIPAddress(uint32_t address, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetDHCPSubnetMask(uint32_t address, uint32_t timeoutMs);
KESTREL_API kestrel_bool SetDHCPDefaultGateway(uint32_t address, uint32_t timeoutMs);
KESTREL_API kestrel_bool GetEthernetConnectStrength(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool GetWirelessConnectStrength(uint32_t* value, uint32_t timeoutMs);
KESTREL_API kestrel_bool GetSelectedScanHost(kestrel_char* text, uint32_t timeoutMs);
KESTREL_API kestrel_bool GetSelectedTransferHost(kestrel_char* text, uint32_t timeoutMs);
