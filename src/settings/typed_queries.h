// The handful of operations that almost every setting is read or written by.
//
// `timeoutMs` milliseconds are allowed for an exchange. False leaves the reason in the thread's last-error
// value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "catalogue/value_tables.h"
#include "opl/vocabulary.h"
#include "session/kestrel_sdk.h"

namespace settings {

// A query asks for one key. The output is cleared before anything is sent, unless it says otherwise. A reply
// that arrived and could not be understood is kept for GetLastBadResponse.

/// 0 or 1.
bool QueryBool(session::KestrelSDK& sdk, uint8_t& value, opl::Key key, uint32_t timeoutMs);

/// At most `sizeBytes`/2 - 1 characters and a terminator. The device's word for "no text" gives an empty
/// text.
bool QueryText(session::KestrelSDK& sdk, WCHAR* text, size_t sizeBytes, opl::Key key, uint32_t timeoutMs);

/// A number by the rule of OPLParser::GetIntValue.
bool QueryInt(session::KestrelSDK& sdk, int32_t& value, opl::Key key, uint32_t timeoutMs);

/// The low bits of QueryInt's number: no range is checked.
bool QueryInt32(session::KestrelSDK& sdk, uint32_t& value, opl::Key key, uint32_t timeoutMs);
bool QueryInt16(session::KestrelSDK& sdk, uint16_t& value, opl::Key key, uint32_t timeoutMs);
bool QueryInt8(session::KestrelSDK& sdk, uint8_t& value, opl::Key key, uint32_t timeoutMs);

/// Four bytes in the order of the wire. A block of another size is an unexpected reply.
bool QueryAddress(session::KestrelSDK& sdk, uint8_t* address, opl::Key key, uint32_t timeoutMs);

/// The number of the device's word in `table`; a word that is not there fails with 87. Written on success
/// only.
bool QueryEnum(session::KestrelSDK& sdk, uint32_t& value, const catalogue::EnumEntry* table, opl::Key key,
               uint32_t timeoutMs);

/// The second half of QueryText and of QueryEnum, for a reply to another request; written on success only.
bool TakeText(session::KestrelSDK& sdk, WCHAR* text, size_t sizeBytes, std::string_view reply);
bool TakeEnum(session::KestrelSDK& sdk, uint32_t& value, const catalogue::EnumEntry* table,
              std::string_view reply);

// A set request is judged by the device alone. The key's row in the vocabulary says which of these it takes.

bool SetBool(session::KestrelSDK& sdk, opl::Key key, bool value, uint32_t timeoutMs);
bool SetInt(session::KestrelSDK& sdk, opl::Key key, int32_t value, uint32_t timeoutMs);
bool SetText(session::KestrelSDK& sdk, opl::Key key, std::string_view text, uint32_t timeoutMs);
/// The lowest byte of `address` goes first.
bool SetAddress(session::KestrelSDK& sdk, opl::Key key, uint32_t address, uint32_t timeoutMs);
/// Sends the word for `value`; a number that is not in `table` fails with 87 and sends nothing.
bool SetEnum(session::KestrelSDK& sdk, opl::Key key, const catalogue::EnumEntry* table, uint32_t value,
             uint32_t timeoutMs);
/// Sends a request that sets several keys.
bool SetValue(session::KestrelSDK& sdk, std::string_view request, uint32_t timeoutMs);

}  // namespace settings
