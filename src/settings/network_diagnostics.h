// What the printer tells about the network that it is on.
#pragma once

#include "kestrel/sdk_types.h"
#include "session/kestrel_sdk.h"

namespace settings {

/// Lets the printer ping `address`, whose lowest byte goes first, with all three values in one request.
bool SetPing(session::KestrelSDK& sdk, uint32_t address, uint8_t count, uint8_t pingTimeout,
             uint32_t timeoutMs);

/// Reads KESTREL_MAX_HOSTS names that the printer discovered by multicast DNS.
bool GetMDNSHostList(session::KestrelSDK& sdk, KestrelHost* hosts, uint32_t timeoutMs);

}  // namespace settings
