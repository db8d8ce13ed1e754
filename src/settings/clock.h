// The printer's clock, read and set field by field, or in one text that is made of this computer's own clock.
#pragma once

#include <windows.h>

#include <cstdint>

#include "session/kestrel_sdk.h"

namespace settings {

struct DeviceTime {
    uint32_t year;
    uint32_t month;  // 1 to 12
    uint32_t day;    // 1 to 31
    uint32_t hour;
    uint32_t minute;
};

/// Cleared first; what was read before a failure stays. A reply that is no complete time is false without an
/// error code of its own.
bool GetDeviceTime(session::KestrelSDK& sdk, DeviceTime& time, uint32_t timeoutMs);

/// Sends the low 16 bits of the year and the low 8 bits of the other fields, and reads the year back within
/// what is left of the time-out: 1460 when nothing is left. What the printer answers is not compared.
bool SetDeviceTime(session::KestrelSDK& sdk, const DeviceTime& time, uint32_t timeoutMs);

inline constexpr size_t kClockTextBytes = 58;

/// Writes at most kClockTextBytes.
bool GetCurrentTimeRTC(session::KestrelSDK& sdk, WCHAR* text, uint32_t timeoutMs);

/// Sends the clock text of this moment. 87, and nothing is sent, when this computer's clock shows no year
/// that the printer's has; false as well when the computer has no identity.
bool SetCurrentTimeRTC(session::KestrelSDK& sdk, uint32_t timeoutMs);

}  // namespace settings
