// The exported functions of the address book, the access points and the network diagnostics.
#include "entry/output_call.h"
#include "kestrel/sdk_device.h"
#include "settings/access_points.h"
#include "settings/address_book.h"
#include "settings/network_diagnostics.h"
#include "settings/setting_access.h"

#pragma GCC diagnostic error "-Wmissing-declarations"

namespace {

kestrel_bool GetNumber(OplKey key, uint32_t* number, uint32_t timeoutMs) {
    return WithPointers({number}, [&](KestrelSDK& sdk) {
        return ReadU32(sdk, {key, kNoWords, 0}, number, timeoutMs);
    });
}

}  // namespace

kestrel_bool GetQuickDialNumbers(KestrelQuickDial* records, uint32_t timeoutMs) {
    return WithPointers({records},
                        [&](KestrelSDK& sdk) { return GetQuickDialNumbers(sdk, records, timeoutMs); });
}

kestrel_bool SetQuickDialNumbers(const KestrelQuickDial* records, uint32_t timeoutMs) {
    return WithPointers({records},
                        [&](KestrelSDK& sdk) { return SetQuickDialNumbers(sdk, records, timeoutMs); });
}

kestrel_bool GetQuickDialButtons(KestrelQuickDial* records, uint32_t timeoutMs) {
    return WithPointers({records},
                        [&](KestrelSDK& sdk) { return GetQuickDialButtons(sdk, records, timeoutMs); });
}

kestrel_bool SetQuickDialButtons(const KestrelQuickDial* records, uint32_t timeoutMs) {
    return WithPointers({records},
                        [&](KestrelSDK& sdk) { return SetQuickDialButtons(sdk, records, timeoutMs); });
}

kestrel_bool GetQuickDialButton(uint32_t index, KestrelQuickDial* record, uint32_t timeoutMs) {
    return WithPointers({record},
                        [&](KestrelSDK& sdk) { return GetQuickDialButton(sdk, index, record, timeoutMs); });
}

kestrel_bool SetQuickDialButton(uint32_t index, const KestrelQuickDial* record, uint32_t timeoutMs) {
    return WithPointers({record},
                        [&](KestrelSDK& sdk) { return SetQuickDialButton(sdk, index, record, timeoutMs); });
}

kestrel_bool StartSearchForAccessPoints(uint32_t timeoutMs) {
    return OnThreadSDK(kFailure, [&](KestrelSDK& sdk) { return StartSearchForAccessPoints(sdk, timeoutMs); });
}

kestrel_bool GetNumAccessPoints(uint32_t* count, uint32_t timeoutMs) {
    return GetNumber(OplKey::NumAccessPoints, count, timeoutMs);
}

kestrel_bool GetAccessPoints(KestrelAccessPoint* records, uint32_t timeoutMs) {
    return WithPointers({records}, [&](KestrelSDK& sdk) { return GetAccessPoints(sdk, records, timeoutMs); });
}

kestrel_bool SetPing(uint32_t address, uint8_t count, uint8_t pingTimeout, uint32_t timeoutMs) {
    return OnThreadSDK(kFailure,
                       [&](KestrelSDK& sdk) { return SetPing(sdk, address, count, pingTimeout, timeoutMs); });
}

kestrel_bool GetNumOfPingExecuted(uint32_t* count, uint32_t timeoutMs) {
    return GetNumber(OplKey::NumOfPingExecuted, count, timeoutMs);
}

kestrel_bool GetNumOfPingSuccess(uint32_t* count, uint32_t timeoutMs) {
    return GetNumber(OplKey::NumOfPingSuccess, count, timeoutMs);
}

kestrel_bool GetMDNSHostList(KestrelHost* hosts, uint32_t timeoutMs) {
    return WithPointers({hosts}, [&](KestrelSDK& sdk) { return GetMDNSHostList(sdk, hosts, timeoutMs); });
}
