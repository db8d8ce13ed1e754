#include "query_exports.h"

#include <kestrel/sdk.h>
#include <windows.h>

namespace {

template <typename... Arguments>
bool Call(const char* name, Arguments... arguments) {
    static const HMODULE library = GetModuleHandleW(TEXT("ZRIJ9900SDK.dll"));
    using Function = kestrel_bool (*)(Arguments...);
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)))(arguments...) !=
           0;
}

size_t OutBytes(const SettingRow& row) {
    switch (row.readType) {
        case SettingType::kBool:
        case SettingType::kU8:
        case SettingType::kS8:
            return 1;
        case SettingType::kU16:
            return 2;
        case SettingType::kText:
            return row.bufferBytes;
        default:
            return 4;
    }
}

QueryExport GetterOf(const SettingRow& row) {
    const auto call = [&row](uint8_t* out, uint32_t timeoutMs) {
        return row.index < 0 ? Call(row.getter, out, timeoutMs)
                             : Call(row.getter, static_cast<uint32_t>(row.index), out, timeoutMs);
    };
    const bool clears = row.readType != SettingType::kEnum && row.readType != SettingType::kText;
    return {row.getter, OutBytes(row), call, &row, clears};
}

template <typename Value>
Value* As(uint8_t* out) {
    return reinterpret_cast<Value*>(out);
}

}  // namespace

std::vector<QueryExport> QueryExports() {
    std::vector<QueryExport> all;
    for (const SettingRow& row : Catalogue())
        if (row.getter != nullptr && !row.key.empty()) all.push_back(GetterOf(row));
    const auto add = [&](const char* name, size_t bytes, auto call, bool clears) {
        all.push_back({name, bytes, call, nullptr, clears});
    };
    for (const auto& [name, bytes] : {std::pair{"GetNumAccessPoints", 4},
                                      {"GetNumOfPingExecuted", 4},
                                      {"GetNumOfPingSuccess", 4},
                                      {"GetCapFWUpgrade", 1},
                                      {"GetCapTOFEdgeOverride", 1},
                                      {"GetGCPConfigured", 1},
                                      {"GetPennantConfigured", 1}})
        add(
            name, static_cast<size_t>(bytes),
            [name = name](uint8_t* out, uint32_t ms) { return Call(name, out, ms); }, true);
    add(
        "GetCurrentTimeRTC", 58, [](auto* out, auto ms) { return Call("GetCurrentTimeRTC", out, ms); },
        false);
    add(
        "GetCapRBNVer", 4, [](auto* out, auto ms) { return GetCapRBNVer(As<uint32_t>(out), ms); }, false);
    add(
        "GetAccessPoints", sizeof(KestrelAccessPoint) * KESTREL_MAX_ACCESS_POINTS,
        [](auto* out, auto ms) { return GetAccessPoints(As<KestrelAccessPoint>(out), ms); }, false);
    add(
        "GetMDNSHostList", sizeof(KestrelHost) * KESTREL_MAX_HOSTS,
        [](auto* out, auto ms) { return GetMDNSHostList(As<KestrelHost>(out), ms); }, false);
    add(
        "GetQuickDialButton", sizeof(KestrelQuickDial),
        [](auto* out, auto ms) { return GetQuickDialButton(0, As<KestrelQuickDial>(out), ms); }, false);
    add(
        "GetQuickDialButtons", sizeof(KestrelQuickDial) * KESTREL_ONE_TOUCH_RECORDS,
        [](auto* out, auto ms) { return GetQuickDialButtons(As<KestrelQuickDial>(out), ms); }, false);
    add(
        "GetQuickDialNumbers", sizeof(KestrelQuickDial) * KESTREL_SPEED_DIAL_RECORDS,
        [](auto* out, auto ms) { return GetQuickDialNumbers(As<KestrelQuickDial>(out), ms); }, false);
    add(
        "GetDeviceTime", 20,
        [](auto* out, auto ms) {
            auto* v = As<uint32_t>(out);
            return GetDeviceTime(v, v + 1, v + 2, v + 3, v + 4, ms);
        },
        false);
    add(
        "GetVendorProductIDs", 8,
        [](auto* out, auto ms) { return GetVendorProductIDs(As<uint32_t>(out), As<uint32_t>(out) + 1, ms); },
        false);
    add(
        "GetFWVersion", 136,
        [](auto* out, auto ms) {
            return GetFWVersion(As<uint32_t>(out), As<uint32_t>(out) + 1, As<kestrel_char>(out + 8), ms);
        },
        false);
    add(
        "GetCapabilities", 48, [](auto* out, auto ms) { return GetCapabilities(out, 48, ms); }, false);
    add(
        "SendCmd", 512,
        [](auto* out, auto ms) { return SendCmd("ZRPing?", 7, out + 4, 508, As<uint32_t>(out), ms); }, false);
    add(
        "GetStatus", 1052,
        [](auto* out, auto) { return GetStatus(As<DeviceStatusRecord>(out), sizeof(DeviceStatusRecord)); },
        true);
    return all;
}
