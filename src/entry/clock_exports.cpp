// The exported functions of the printer's clock.
#include "entry/export_call.h"
#include "kestrel/sdk_device.h"
#include "settings/clock.h"

#pragma GCC diagnostic error "-Wmissing-declarations"

using namespace entry;

kestrel_bool GetDeviceTime(uint32_t* year, uint32_t* month, uint32_t* day, uint32_t* hour, uint32_t* minute,
                           uint32_t timeoutMs) {
    return WithPointers({year, month, day, hour, minute}, [&](KestrelSDK& sdk) {
        settings::DeviceTime time = {};
        const bool complete = settings::GetDeviceTime(sdk, time, timeoutMs);
        *year = time.year;
        *month = time.month;
        *day = time.day;
        *hour = time.hour;
        *minute = time.minute;
        return complete;
    });
}

kestrel_bool SetDeviceTime(uint16_t year, uint8_t month, uint8_t day, uint8_t hour, uint8_t minute,
                           uint32_t timeoutMs) {
    return OnThreadSDK(kFailure, [&](KestrelSDK& sdk) {
        return settings::SetDeviceTime(sdk, {year, month, day, hour, minute}, timeoutMs);
    });
}

kestrel_bool GetCurrentTimeRTC(kestrel_char* text, uint32_t timeoutMs) {
    return WithPointers({text},
                        [&](KestrelSDK& sdk) { return settings::GetCurrentTimeRTC(sdk, text, timeoutMs); });
}

kestrel_bool SetCurrentTimeRTC(uint32_t timeoutMs) {
    return OnThreadSDK(kFailure,
                       [&](KestrelSDK& sdk) { return settings::SetCurrentTimeRTC(sdk, timeoutMs); });
}
