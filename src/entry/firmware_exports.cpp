// The exported functions of the clock, the firmware, the capabilities and the identity.
#include "entry/output_call.h"
#include "kestrel/sdk_device.h"
#include "settings/capabilities.h"
#include "settings/clock.h"
#include "settings/firmware.h"
#include "settings/typed_queries.h"

#pragma GCC diagnostic error "-Wmissing-declarations"

kestrel_bool GetDeviceTime(uint32_t* year, uint32_t* month, uint32_t* day, uint32_t* hour, uint32_t* minute,
                           uint32_t timeoutMs) {
    return WithPointers({year, month, day, hour, minute}, [&](KestrelSDK& sdk) {
        DeviceTime time = {};
        const bool complete = GetDeviceTime(sdk, time, timeoutMs);
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
        return SetDeviceTime(sdk, {year, month, day, hour, minute}, timeoutMs);
    });
}

kestrel_bool GetCurrentTimeRTC(kestrel_char* text, uint32_t timeoutMs) {
    return WithPointers({text}, [&](KestrelSDK& sdk) { return GetCurrentTimeRTC(sdk, text, timeoutMs); });
}

kestrel_bool SetCurrentTimeRTC(uint32_t timeoutMs) {
    return OnThreadSDK(kFailure, [&](KestrelSDK& sdk) { return SetCurrentTimeRTC(sdk, timeoutMs); });
}

kestrel_bool GetFWVersion(uint32_t* lagoon, uint32_t* customer, kestrel_char* printer, uint32_t timeoutMs) {
    return WithPointers({lagoon, customer, printer}, [&](KestrelSDK& sdk) {
        return GetFWVersion(sdk, *lagoon, *customer, printer, timeoutMs);
    });
}

kestrel_bool GetCapFWUpgrade(kestrel_bool* capable, uint32_t timeoutMs) {
    return WithPointers({capable},
                        [&](KestrelSDK& sdk) { return GetCapFWUpgrade(sdk, *capable, timeoutMs); });
}

kestrel_bool UpgradeFW(const kestrel_char* path) {
    return WithPointers({path}, [&](KestrelSDK& sdk) { return UpgradeFW(sdk, path); });
}

kestrel_bool RefreshFWCapabilities(uint32_t timeoutMs) {
    return OnThreadSDK(kFailure, [&](KestrelSDK& sdk) { return RefreshFWCapabilities(sdk, timeoutMs); });
}

kestrel_bool GetCapRBNVer(uint32_t* version, uint32_t timeoutMs) {
    return WithPointers({version}, [&](KestrelSDK& sdk) { return GetCapRBNVer(sdk, *version, timeoutMs); });
}

kestrel_bool GetCapTOFEdgeOverride(kestrel_bool* capable, uint32_t timeoutMs) {
    return WithPointers({capable}, [&](KestrelSDK& sdk) {
        return QueryBool(sdk, *capable, sdk.NewQuery(OplKey::CapTOFEdgeOverride), timeoutMs);
    });
}

kestrel_bool GetCapabilities(void* buffer, uint32_t size, uint32_t) {
    return WithPointers({buffer}, [&](KestrelSDK& sdk) { return GetCapabilities(sdk, buffer, size); });
}

kestrel_bool GetVendorProductIDs(uint32_t* vendor, uint32_t* product, uint32_t timeoutMs) {
    return WithPointers({vendor, product}, [&](KestrelSDK& sdk) {
        return GetVendorProductIDs(sdk, *vendor, *product, timeoutMs);
    });
}

kestrel_bool GetGCPConfigured(kestrel_bool* configured, uint32_t timeoutMs) {
    return WithPointers({configured}, [&](KestrelSDK& sdk) {
        return GetServiceConfigured(sdk, OplKey::GCPConfigured, *configured, timeoutMs);
    });
}

kestrel_bool GetPennantConfigured(kestrel_bool* configured, uint32_t timeoutMs) {
    return WithPointers({configured}, [&](KestrelSDK& sdk) {
        return GetServiceConfigured(sdk, OplKey::PennantConfigured, *configured, timeoutMs);
    });
}
