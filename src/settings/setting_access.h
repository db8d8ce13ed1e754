// Reading and writing one setting, one function per type column of settings.def.
//
// Outputs must not be null; a null text to write fails with 87 and sends nothing. Errors and outputs are
// those of typed_queries.h.
#pragma once

#include <cstdint>

#include "catalogue/value_tables.h"
#include "opl/vocabulary.h"
#include "session/kestrel_sdk.h"

namespace settings {

/// What the row of a setting says about its exchange.
struct SettingAccess {
    opl::Key key;
    const catalogue::EnumEntry* words;  // of an enumeration
    uint32_t bufferBytes;               // of a text
};

bool ReadBool(session::KestrelSDK& sdk, const SettingAccess& setting, uint8_t* value, uint32_t timeoutMs);
bool ReadU8(session::KestrelSDK& sdk, const SettingAccess& setting, uint8_t* value, uint32_t timeoutMs);
/// As ReadU8, but never above 100.
bool ReadPercent(session::KestrelSDK& sdk, const SettingAccess& setting, uint8_t* value, uint32_t timeoutMs);
bool ReadS8(session::KestrelSDK& sdk, const SettingAccess& setting, int8_t* value, uint32_t timeoutMs);
bool ReadU16(session::KestrelSDK& sdk, const SettingAccess& setting, uint16_t* value, uint32_t timeoutMs);
bool ReadU32(session::KestrelSDK& sdk, const SettingAccess& setting, uint32_t* value, uint32_t timeoutMs);
/// The bits of an int32_t.
bool ReadS32(session::KestrelSDK& sdk, const SettingAccess& setting, uint32_t* value, uint32_t timeoutMs);
bool ReadEnum(session::KestrelSDK& sdk, const SettingAccess& setting, uint32_t* value, uint32_t timeoutMs);
bool ReadText(session::KestrelSDK& sdk, const SettingAccess& setting, WCHAR* text, uint32_t timeoutMs);
bool ReadAddress(session::KestrelSDK& sdk, const SettingAccess& setting, uint8_t* address,
                 uint32_t timeoutMs);

bool WriteBool(session::KestrelSDK& sdk, const SettingAccess& setting, uint8_t value, uint32_t timeoutMs);
bool WriteU8(session::KestrelSDK& sdk, const SettingAccess& setting, uint8_t value, uint32_t timeoutMs);
bool WriteS8(session::KestrelSDK& sdk, const SettingAccess& setting, int8_t value, uint32_t timeoutMs);
bool WriteU16(session::KestrelSDK& sdk, const SettingAccess& setting, uint16_t value, uint32_t timeoutMs);
bool WriteEnum(session::KestrelSDK& sdk, const SettingAccess& setting, uint32_t value, uint32_t timeoutMs);
bool WriteText(session::KestrelSDK& sdk, const SettingAccess& setting, const WCHAR* text, uint32_t timeoutMs);
bool WriteAddress(session::KestrelSDK& sdk, const SettingAccess& setting, uint32_t address,
                  uint32_t timeoutMs);

}  // namespace settings
