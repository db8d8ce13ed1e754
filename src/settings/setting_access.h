// Reading and writing one setting, one function per type column of settings.def.
//
// Outputs must not be null; a null text to write fails with 87 and sends nothing. Errors and outputs are
// those of typed_queries.h.
#pragma once

#include <cstdint>

#include "catalogue/value_tables.h"
#include "opl/vocabulary.h"
#include "session/kestrel_sdk.h"

/// What the row of a setting says about its exchange.
struct SettingAccess {
    OplKey key;
    const catalogue::EnumEntry* words;  // of an enumeration
    uint32_t bufferBytes;               // of a text
};

bool ReadBool(KestrelSDK& sdk, const SettingAccess& setting, uint8_t* value, uint32_t timeoutMs);
bool ReadU8(KestrelSDK& sdk, const SettingAccess& setting, uint8_t* value, uint32_t timeoutMs);
/// As ReadU8, but never above 100.
bool ReadPercent(KestrelSDK& sdk, const SettingAccess& setting, uint8_t* value, uint32_t timeoutMs);
bool ReadS8(KestrelSDK& sdk, const SettingAccess& setting, int8_t* value, uint32_t timeoutMs);
bool ReadU16(KestrelSDK& sdk, const SettingAccess& setting, uint16_t* value, uint32_t timeoutMs);
bool ReadU32(KestrelSDK& sdk, const SettingAccess& setting, uint32_t* value, uint32_t timeoutMs);
/// The bits of an int32_t.
bool ReadS32(KestrelSDK& sdk, const SettingAccess& setting, uint32_t* value, uint32_t timeoutMs);
bool ReadEnum(KestrelSDK& sdk, const SettingAccess& setting, uint32_t* value, uint32_t timeoutMs);
bool ReadText(KestrelSDK& sdk, const SettingAccess& setting, WCHAR* text, uint32_t timeoutMs);
bool ReadAddress(KestrelSDK& sdk, const SettingAccess& setting, uint8_t* address, uint32_t timeoutMs);

bool WriteBool(KestrelSDK& sdk, const SettingAccess& setting, uint8_t value, uint32_t timeoutMs);
bool WriteU8(KestrelSDK& sdk, const SettingAccess& setting, uint8_t value, uint32_t timeoutMs);
bool WriteS8(KestrelSDK& sdk, const SettingAccess& setting, int8_t value, uint32_t timeoutMs);
bool WriteU16(KestrelSDK& sdk, const SettingAccess& setting, uint16_t value, uint32_t timeoutMs);
bool WriteEnum(KestrelSDK& sdk, const SettingAccess& setting, uint32_t value, uint32_t timeoutMs);
bool WriteText(KestrelSDK& sdk, const SettingAccess& setting, const WCHAR* text, uint32_t timeoutMs);
bool WriteAddress(KestrelSDK& sdk, const SettingAccess& setting, uint32_t address, uint32_t timeoutMs);
