// The exported functions of the access points and the network diagnostics.
#include "entry/export_call.h"
#include "kestrel/sdk_device.h"
#include "settings/access_points.h"
#include "settings/network_diagnostics.h"
#include "settings/typed_queries.h"

#pragma GCC diagnostic error "-Wmissing-declarations"

using namespace entry;

namespace {

kestrel_bool GetNumber(opl::Key key, uint32_t* number, uint32_t timeoutMs) {
    return WithPointers({number},
                        [&](KestrelSDK& sdk) { return settings::QueryInt32(sdk, *number, key, timeoutMs); });
}

}  // namespace

kestrel_bool StartSearchForAccessPoints(uint32_t timeoutMs) {
    return OnThreadSDK(kFailure,
                       [&](KestrelSDK& sdk) { return settings::StartSearchForAccessPoints(sdk, timeoutMs); });
}

kestrel_bool GetNumAccessPoints(uint32_t* count, uint32_t timeoutMs) {
    return GetNumber(opl::Key::NumAccessPoints, count, timeoutMs);
}

kestrel_bool GetAccessPoints(KestrelAccessPoint* records, uint32_t timeoutMs) {
    return WithPointers({records},
                        [&](KestrelSDK& sdk) { return settings::GetAccessPoints(sdk, records, timeoutMs); });
}

kestrel_bool SetPing(uint32_t address, uint8_t count, uint8_t pingTimeout, uint32_t timeoutMs) {
    return OnThreadSDK(kFailure, [&](KestrelSDK& sdk) {
        return settings::SetPing(sdk, address, count, pingTimeout, timeoutMs);
    });
}

kestrel_bool GetNumOfPingExecuted(uint32_t* count, uint32_t timeoutMs) {
    return GetNumber(opl::Key::NumOfPingExecuted, count, timeoutMs);
}

kestrel_bool GetNumOfPingSuccess(uint32_t* count, uint32_t timeoutMs) {
    return GetNumber(opl::Key::NumOfPingSuccess, count, timeoutMs);
}

kestrel_bool GetMDNSHostList(KestrelHost* hosts, uint32_t timeoutMs) {
    return WithPointers({hosts},
                        [&](KestrelSDK& sdk) { return settings::GetMDNSHostList(sdk, hosts, timeoutMs); });
}
