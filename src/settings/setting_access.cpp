// From the type columns of the settings to the typed queries and setters.
#include "settings/setting_access.h"

#include <algorithm>

#include "kwt/strings.h"
#include "settings/typed_queries.h"

namespace settings {
namespace {

constexpr uint8_t kWholePercent = 100;

}  // namespace

bool ReadBool(session::KestrelSDK& sdk, const SettingAccess& setting, uint8_t* value, uint32_t timeoutMs) {
    return QueryBool(sdk, *value, setting.key, timeoutMs);
}

bool ReadU8(session::KestrelSDK& sdk, const SettingAccess& setting, uint8_t* value, uint32_t timeoutMs) {
    return QueryInt8(sdk, *value, setting.key, timeoutMs);
}

bool ReadPercent(session::KestrelSDK& sdk, const SettingAccess& setting, uint8_t* value, uint32_t timeoutMs) {
    const bool done = ReadU8(sdk, setting, value, timeoutMs);
    *value = std::min(*value, kWholePercent);
    return done;
}

bool ReadS8(session::KestrelSDK& sdk, const SettingAccess& setting, int8_t* value, uint32_t timeoutMs) {
    uint32_t number = 0;
    const bool done = ReadS32(sdk, setting, &number, timeoutMs);
    *value = static_cast<int8_t>(number);
    return done;
}

bool ReadU16(session::KestrelSDK& sdk, const SettingAccess& setting, uint16_t* value, uint32_t timeoutMs) {
    return QueryInt16(sdk, *value, setting.key, timeoutMs);
}

bool ReadU32(session::KestrelSDK& sdk, const SettingAccess& setting, uint32_t* value, uint32_t timeoutMs) {
    return QueryInt32(sdk, *value, setting.key, timeoutMs);
}

bool ReadS32(session::KestrelSDK& sdk, const SettingAccess& setting, uint32_t* value, uint32_t timeoutMs) {
    return ReadU32(sdk, setting, value, timeoutMs);
}

bool ReadEnum(session::KestrelSDK& sdk, const SettingAccess& setting, uint32_t* value, uint32_t timeoutMs) {
    return QueryEnum(sdk, *value, setting.words, setting.key, timeoutMs);
}

bool ReadText(session::KestrelSDK& sdk, const SettingAccess& setting, WCHAR* text, uint32_t timeoutMs) {
    return QueryText(sdk, text, setting.bufferBytes, setting.key, timeoutMs);
}

bool ReadAddress(session::KestrelSDK& sdk, const SettingAccess& setting, uint8_t* address,
                 uint32_t timeoutMs) {
    return QueryAddress(sdk, address, setting.key, timeoutMs);
}

bool WriteBool(session::KestrelSDK& sdk, const SettingAccess& setting, uint8_t value, uint32_t timeoutMs) {
    return SetBool(sdk, setting.key, value != 0, timeoutMs);
}

bool WriteU8(session::KestrelSDK& sdk, const SettingAccess& setting, uint8_t value, uint32_t timeoutMs) {
    return SetInt(sdk, setting.key, value, timeoutMs);
}

bool WriteS8(session::KestrelSDK& sdk, const SettingAccess& setting, int8_t value, uint32_t timeoutMs) {
    return SetInt(sdk, setting.key, value, timeoutMs);
}

bool WriteU16(session::KestrelSDK& sdk, const SettingAccess& setting, uint16_t value, uint32_t timeoutMs) {
    return SetInt(sdk, setting.key, value, timeoutMs);
}

bool WriteEnum(session::KestrelSDK& sdk, const SettingAccess& setting, uint32_t value, uint32_t timeoutMs) {
    return SetEnum(sdk, setting.key, setting.words, value, timeoutMs);
}

bool WriteText(session::KestrelSDK& sdk, const SettingAccess& setting, const WCHAR* text,
               uint32_t timeoutMs) {
    if (text != nullptr) return SetText(sdk, setting.key, kwt::AsciiString(text).ToByteString(), timeoutMs);
    SetLastError(ERROR_INVALID_PARAMETER);
    return false;
}

bool WriteAddress(session::KestrelSDK& sdk, const SettingAccess& setting, uint32_t address,
                  uint32_t timeoutMs) {
    return SetAddress(sdk, setting.key, address, timeoutMs);
}

}  // namespace settings
