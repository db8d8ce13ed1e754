// The exported functions of the address book.
#include "entry/export_call.h"
#include "kestrel/sdk_device.h"
#include "settings/address_book.h"

#pragma GCC diagnostic error "-Wmissing-declarations"

using namespace entry;

kestrel_bool GetQuickDialNumbers(KestrelQuickDial* records, uint32_t timeoutMs) {
    return WithPointers(
        {records}, [&](KestrelSDK& sdk) { return settings::GetQuickDialNumbers(sdk, records, timeoutMs); });
}

kestrel_bool SetQuickDialNumbers(const KestrelQuickDial* records, uint32_t timeoutMs) {
    return WithPointers(
        {records}, [&](KestrelSDK& sdk) { return settings::SetQuickDialNumbers(sdk, records, timeoutMs); });
}

kestrel_bool GetQuickDialButtons(KestrelQuickDial* records, uint32_t timeoutMs) {
    return WithPointers(
        {records}, [&](KestrelSDK& sdk) { return settings::GetQuickDialButtons(sdk, records, timeoutMs); });
}

kestrel_bool SetQuickDialButtons(const KestrelQuickDial* records, uint32_t timeoutMs) {
    return WithPointers(
        {records}, [&](KestrelSDK& sdk) { return settings::SetQuickDialButtons(sdk, records, timeoutMs); });
}

kestrel_bool GetQuickDialButton(uint32_t index, KestrelQuickDial* record, uint32_t timeoutMs) {
    return WithPointers({record}, [&](KestrelSDK& sdk) {
        return settings::GetQuickDialButton(sdk, index, record, timeoutMs);
    });
}

kestrel_bool SetQuickDialButton(uint32_t index, const KestrelQuickDial* record, uint32_t timeoutMs) {
    return WithPointers({record}, [&](KestrelSDK& sdk) {
        return settings::SetQuickDialButton(sdk, index, record, timeoutMs);
    });
}
