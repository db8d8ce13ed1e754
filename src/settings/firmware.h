// What the printer says of its firmware, and the upgrade of it.
#pragma once

#include <windows.h>

#include <cstdint>

#include "session/kestrel_sdk.h"

namespace settings {

inline constexpr size_t kPrinterVersionBytes = 128;

/// Three requests within one time-out, 1460 when it runs out between them; what was read before stays.
/// `printer` receives at most kPrinterVersionBytes.
bool GetFWVersion(session::KestrelSDK& sdk, uint32_t& lagoon, uint32_t& customer, WCHAR* printer,
                  uint32_t timeoutMs);

/// 1 when the firmware can be upgraded through the command language.
bool GetCapFWUpgrade(session::KestrelSDK& sdk, uint8_t& capable, uint32_t timeoutMs);

/// Makes the language monitor forget what it knows of the firmware's capabilities.
bool RefreshFWCapabilities(session::KestrelSDK& sdk, uint32_t timeoutMs);

/// Hands the path of an upgrade file to the language monitor, for up to a minute. 2 when nothing is there, 50
/// when the printer cannot be upgraded this way; false with another number in `lastResponseNum` when the file
/// is refused.
bool UpgradeFW(session::KestrelSDK& sdk, const WCHAR* path);

}  // namespace settings
