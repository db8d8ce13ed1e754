// The wireless access points that the printer finds.
#pragma once

#include "kestrel/sdk_types.h"
#include "session/kestrel_sdk.h"

namespace settings {

bool StartSearchForAccessPoints(session::KestrelSDK& sdk, uint32_t timeoutMs);

/// Reads KESTREL_MAX_ACCESS_POINTS records. A value that is malformed leaves its field empty; an item that
/// belongs to no record or has an unknown field ends the reading, and the records filled before it stay.
bool GetAccessPoints(session::KestrelSDK& sdk, KestrelAccessPoint* records, uint32_t timeoutMs);

}  // namespace settings
