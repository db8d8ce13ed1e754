// The handful of operations that almost every setting is read or written by.
//
// Queries: `request` is a complete request for one value; `timeoutMs` milliseconds are allowed for the
// exchange. The output is cleared before anything is sent, unless it says otherwise. False leaves the reason
// in the thread's last-error value; a reply that arrived and could not be understood is kept for
// GetLastBadResponse.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "catalogue/value_tables.h"
#include "opl/vocabulary.h"
#include "session/kestrel_sdk.h"

namespace settings {

/// 0 or 1.
bool QueryBool(session::KestrelSDK& sdk, uint8_t& value, const std::string& request, uint32_t timeoutMs);

/// At most `sizeBytes`/2 - 1 characters and a terminator. The device's word for "no text" gives an empty
/// text.
bool QueryText(session::KestrelSDK& sdk, WCHAR* text, size_t sizeBytes, const std::string& request,
               uint32_t timeoutMs);

bool QueryInt(session::KestrelSDK& sdk, int32_t& value, const std::string& request, uint32_t timeoutMs);

/// The low bits of QueryInt's number: no range is checked.
bool QueryInt32(session::KestrelSDK& sdk, uint32_t& value, const std::string& request, uint32_t timeoutMs);
bool QueryInt16(session::KestrelSDK& sdk, uint16_t& value, const std::string& request, uint32_t timeoutMs);
bool QueryInt8(session::KestrelSDK& sdk, uint8_t& value, const std::string& request, uint32_t timeoutMs);

/// Four bytes in the order of the wire. A block of another size is an unexpected reply.
bool QueryAddress(session::KestrelSDK& sdk, uint8_t* address, const std::string& request, uint32_t timeoutMs);

/// The number of the device's word in `table`; a word that is not there fails with 87. Written on success
/// only.
bool QueryEnum(session::KestrelSDK& sdk, uint32_t& value, const catalogue::EnumEntry* table,
               const std::string& request, uint32_t timeoutMs);

/// Sends a complete set request; the device alone judges the value.
bool SetValue(session::KestrelSDK& sdk, const std::string& request, uint32_t timeoutMs);

/// Sends the word for `value`; a number that is not in `table` fails with 87 and sends nothing.
bool SetEnum(session::KestrelSDK& sdk, opl::Key key, const catalogue::EnumEntry* table, uint32_t value,
             uint32_t timeoutMs);

}  // namespace settings
