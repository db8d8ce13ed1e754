// The printer's two lists of named fax and e-mail destinations: 60 speed-dial and 5 one-touch records.
#pragma once

#include "kestrel/sdk_types.h"
#include "session/kestrel_sdk.h"

namespace settings {

// Reading asks for every field by itself; the fields read before a failure stay, the others are empty. The
// time-out of a list is that of the whole list: when it runs out between two records or fields the result is
// false and the last-error value that of the last exchange.

bool GetQuickDialNumbers(session::KestrelSDK& sdk, KestrelQuickDial* records, uint32_t timeoutMs);
bool GetQuickDialButtons(session::KestrelSDK& sdk, KestrelQuickDial* records, uint32_t timeoutMs);
/// The time-out is that of each of the three fields. The printer alone judges the index.
bool GetQuickDialButton(session::KestrelSDK& sdk, uint32_t index, KestrelQuickDial* record,
                        uint32_t timeoutMs);

// A record whose address type is not a KestrelAddressType fails with 87 and nothing of its request is sent.

/// One request for the whole list.
bool SetQuickDialNumbers(session::KestrelSDK& sdk, const KestrelQuickDial* records, uint32_t timeoutMs);
/// One request a record.
bool SetQuickDialButtons(session::KestrelSDK& sdk, const KestrelQuickDial* records, uint32_t timeoutMs);
bool SetQuickDialButton(session::KestrelSDK& sdk, uint32_t index, const KestrelQuickDial* record,
                        uint32_t timeoutMs);

}  // namespace settings
