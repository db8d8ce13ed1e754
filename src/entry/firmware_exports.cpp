// The exported functions of the firmware, the capabilities and the identity.
#include "entry/export_call.h"
#include "kestrel/sdk_device.h"
#include "settings/capabilities.h"
#include "settings/firmware.h"
#include "settings/typed_queries.h"

#pragma GCC diagnostic error "-Wmissing-declarations"

using namespace entry;

kestrel_bool GetFWVersion(uint32_t* lagoon, uint32_t* customer, kestrel_char* printer, uint32_t timeoutMs) {
    return WithPointers({lagoon, customer, printer}, [&](KestrelSDK& sdk) {
        return settings::GetFWVersion(sdk, *lagoon, *customer, printer, timeoutMs);
    });
}

kestrel_bool GetCapFWUpgrade(kestrel_bool* capable, uint32_t timeoutMs) {
    return WithPointers({capable},
                        [&](KestrelSDK& sdk) { return settings::GetCapFWUpgrade(sdk, *capable, timeoutMs); });
}

kestrel_bool UpgradeFW(const kestrel_char* path) {
    return WithPointers({path}, [&](KestrelSDK& sdk) { return settings::UpgradeFW(sdk, path); });
}

kestrel_bool RefreshFWCapabilities(uint32_t timeoutMs) {
    return OnThreadSDK(kFailure,
                       [&](KestrelSDK& sdk) { return settings::RefreshFWCapabilities(sdk, timeoutMs); });
}

kestrel_bool GetCapRBNVer(uint32_t* version, uint32_t timeoutMs) {
    return WithPointers({version},
                        [&](KestrelSDK& sdk) { return settings::GetCapRBNVer(sdk, *version, timeoutMs); });
}

kestrel_bool GetCapTOFEdgeOverride(kestrel_bool* capable, uint32_t timeoutMs) {
    return WithPointers({capable}, [&](KestrelSDK& sdk) {
        return settings::QueryBool(sdk, *capable, opl::Key::CapTOFEdgeOverride, timeoutMs);
    });
}

kestrel_bool GetCapabilities(void* buffer, uint32_t size, uint32_t) {
    return WithPointers({buffer},
                        [&](KestrelSDK& sdk) { return settings::GetCapabilities(sdk, buffer, size); });
}

kestrel_bool GetVendorProductIDs(uint32_t* vendor, uint32_t* product, uint32_t timeoutMs) {
    return WithPointers({vendor, product}, [&](KestrelSDK& sdk) {
        return settings::GetVendorProductIDs(sdk, *vendor, *product, timeoutMs);
    });
}

kestrel_bool GetGCPConfigured(kestrel_bool* configured, uint32_t timeoutMs) {
    return WithPointers({configured}, [&](KestrelSDK& sdk) {
        return settings::GetServiceConfigured(sdk, opl::Key::GCPConfigured, *configured, timeoutMs);
    });
}

kestrel_bool GetPennantConfigured(kestrel_bool* configured, uint32_t timeoutMs) {
    return WithPointers({configured}, [&](KestrelSDK& sdk) {
        return settings::GetServiceConfigured(sdk, opl::Key::PennantConfigured, *configured, timeoutMs);
    });
}
