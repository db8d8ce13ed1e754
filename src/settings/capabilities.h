// What the printer can do, who made it and which services are set up on it.
#pragma once

#include <cstdint>

#include "session/kestrel_sdk.h"

namespace settings {

/// The first character of the version, or 0 for an empty one; 32 (a blank) when it cannot be had.
bool GetCapRBNVer(session::KestrelSDK& sdk, uint32_t& version, uint32_t timeoutMs);

/// Copies the first `size` bytes of the capability block, whose own size in the first four bytes is replaced
/// by `size`. False, without an error code of its own, when the block is shorter or its own size is 0 or
/// above `size`; the bytes may have been copied by then. Takes up to 5 s.
bool GetCapabilities(session::KestrelSDK& sdk, void* buffer, uint32_t size);

/// Whether one of the services is set up; `key` is that of its flag. False with 0 and without an error code
/// of its own when the printer does not know the service. Two requests within one time-out, 1460 when it runs
/// out between them; likewise below.
bool GetServiceConfigured(session::KestrelSDK& sdk, opl::Key key, uint8_t& configured, uint32_t timeoutMs);

/// The identifiers of the USB device.
bool GetVendorProductIDs(session::KestrelSDK& sdk, uint32_t& vendor, uint32_t& product, uint32_t timeoutMs);

}  // namespace settings
