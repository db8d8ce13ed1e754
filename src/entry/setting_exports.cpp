// The exported functions of the settings, made from settings.def, and of the maintenance actions.

#include <algorithm>
#include <iterator>
#include <string_view>

#include "entry/export_call.h"
#include "kestrel/sdk_settings.h"
#include "settings/maintenance.h"
#include "settings/setting_access.h"

// A row whose functions the header does not declare must not compile: they would have names of C++ and be
// hidden.
#pragma GCC diagnostic error "-Wmissing-declarations"

using namespace entry;

namespace {

// What a getter writes and what a setter takes, by the type columns of settings.def.
using OutBool = kestrel_bool;
using OutU8 = uint8_t;
using OutPercent = uint8_t;
using OutS8 = int8_t;
using OutU16 = uint16_t;
using OutU32 = uint32_t;
using OutS32 = uint32_t;
using OutEnum = uint32_t;
using OutText = kestrel_char;
using OutAddress = uint8_t;

using InBool = kestrel_bool;
using InU8 = uint8_t;
using InS8 = int8_t;
using InU16 = uint16_t;
using InEnum = uint32_t;
using InText = const kestrel_char*;
using InAddress = uint32_t;

bool Fail(DWORD error) {
    SetLastError(error);
    return false;
}

template <typename Value>
using ReadOperation = bool (*)(KestrelSDK&, const settings::SettingAccess&, Value*, uint32_t);

template <typename Value>
kestrel_bool Get(ReadOperation<Value> read, const settings::SettingAccess& setting, Value* value,
                 uint32_t timeoutMs) {
    // GetCopyQuality alone never makes an object: a thread without one gets failure and last-error value 0.
    if (setting.key == opl::Key::CopyQuality && PeekThreadSDK() == nullptr) return kFailure;
    return OnThreadSDK(kFailure, [&](KestrelSDK& sdk) {
        return value != nullptr ? read(sdk, setting, value, timeoutMs) : Fail(ERROR_INVALID_PARAMETER);
    });
}

template <typename Value>
using WriteOperation = bool (*)(KestrelSDK&, const settings::SettingAccess&, Value, uint32_t);

template <typename Value>
kestrel_bool Set(WriteOperation<Value> write, const settings::SettingAccess& setting, Value value,
                 uint32_t timeoutMs) {
    return OnThreadSDK(kFailure, [&](KestrelSDK& sdk) { return write(sdk, setting, value, timeoutMs); });
}

kestrel_bool Start(opl::Word action) {
    return OnThreadSDK(kFailure, [&](KestrelSDK& sdk) { return settings::StartMaintenance(sdk, action); });
}

struct IndexedSetting {
    std::string_view base;
    uint32_t index;
    settings::SettingAccess access;
};
constexpr IndexedSetting kIndexedSettings[] = {
#define INDEXED(base, index, name, initial, bytes, privacy, about) \
    {#base, index, {opl::Key::base##index, catalogue::kNoWords, bytes}},
#include "catalogue/settings.def"
};

const settings::SettingAccess* FindIndexed(std::string_view base, uint32_t index) {
    const auto row = std::ranges::find_if(kIndexedSettings, [&](const IndexedSetting& setting) {
        return setting.base == base && setting.index == index;
    });
    return row != std::end(kIndexedSettings) ? &row->access : nullptr;
}

}  // namespace

#define GETTER(function, base, type, words, bytes)                                                       \
    kestrel_bool function(Out##type* value, uint32_t timeoutMs) {                                        \
        return Get<Out##type>(settings::Read##type, {opl::Key::base, catalogue::k##words, bytes}, value, \
                              timeoutMs);                                                                \
    }
#define SETTER(function, base, type, words)                                                          \
    kestrel_bool function(In##type value, uint32_t timeoutMs) {                                      \
        return Set<In##type>(settings::Write##type, {opl::Key::base, catalogue::k##words, 0}, value, \
                             timeoutMs);                                                             \
    }
#include "catalogue/settings.def"

kestrel_bool GetWirelessSecurityKey(uint32_t index, kestrel_char* text, uint32_t timeoutMs) {
    const settings::SettingAccess* const setting = FindIndexed("WirelessSecurityKey", index);
    return setting != nullptr ? Get(settings::ReadText, *setting, text, timeoutMs)
                              : Fail(ERROR_INVALID_PARAMETER);
}

kestrel_bool SetWirelessSecurityKey(uint32_t index, const kestrel_char* text, uint32_t timeoutMs) {
    const settings::SettingAccess* const setting = FindIndexed("WirelessSecurityKey", index);
    return setting != nullptr ? Set(settings::WriteText, *setting, text, timeoutMs)
                              : Fail(ERROR_INVALID_PARAMETER);
}

kestrel_bool GetPhotoTrayState(uint32_t* value, uint32_t) {
    return OnThreadSDK(kFailure, [&](KestrelSDK&) {
        if (value == nullptr) return Fail(ERROR_INVALID_PARAMETER);
        *value = 0;
        SetLastError(ERROR_SUCCESS);
        return true;
    });
}

kestrel_bool CleanHead(kestrel_bool deep) {
    return OnThreadSDK(kFailure, [&](KestrelSDK& sdk) { return settings::StartCleanHead(sdk, deep != 0); });
}

// clang-format off
kestrel_bool CalibrateHead() { return Start(opl::Word::CalibrateHead); }
kestrel_bool PrintTestPage() { return Start(opl::Word::PrintTestPage); }
kestrel_bool CheckNozzle() { return Start(opl::Word::CheckNozzle); }
kestrel_bool AlignHead() { return Start(opl::Word::AlignHead); }
kestrel_bool VTOE() { return Start(opl::Word::VTOE); }

// Not supported: they make no object and look at no argument.
kestrel_bool GetWirelessFragmentationThreshold(uint32_t*, uint32_t) { return Fail(ERROR_BAD_COMMAND); }
kestrel_bool SetWirelessFragmentationThreshold(uint32_t, uint32_t) { return Fail(ERROR_BAD_COMMAND); }
kestrel_bool GetWirelessRTSThreshold(uint32_t*, uint32_t) { return Fail(ERROR_BAD_COMMAND); }
kestrel_bool SetWirelessRTSThreshold(uint32_t, uint32_t) { return Fail(ERROR_BAD_COMMAND); }
kestrel_bool GetWirelessContinuousTransmit(kestrel_bool*, uint32_t) { return Fail(ERROR_BAD_COMMAND); }
kestrel_bool SetWirelessContinuousTransmit(kestrel_bool, uint32_t) { return Fail(ERROR_BAD_COMMAND); }
kestrel_bool SetAutoIPDefaultGateway(uint32_t, uint32_t) { return Fail(ERROR_BAD_COMMAND); }
kestrel_bool SetDHCPIPAddress(uint32_t, uint32_t) { return Fail(ERROR_BAD_COMMAND); }
kestrel_bool SetDHCPSubnetMask(uint32_t, uint32_t) { return Fail(ERROR_BAD_COMMAND); }
kestrel_bool SetDHCPDefaultGateway(uint32_t, uint32_t) { return Fail(ERROR_BAD_COMMAND); }
kestrel_bool GetEthernetConnectStrength(uint32_t*, uint32_t) { return Fail(ERROR_BAD_COMMAND); }
kestrel_bool GetWirelessConnectStrength(uint32_t*, uint32_t) { return Fail(ERROR_BAD_COMMAND); }
kestrel_bool GetSelectedScanHost(kestrel_char*, uint32_t) { return Fail(ERROR_BAD_COMMAND); }
kestrel_bool GetSelectedTransferHost(kestrel_char*, uint32_t) { return Fail(ERROR_BAD_COMMAND); }
// clang-format on
