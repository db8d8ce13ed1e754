#include "query_exports.h"

#include "export_call.h"

namespace {

QueryExport GetterOf(const catalogue::Row& row) {
    const auto call = [&row](uint8_t* out, uint32_t timeoutMs) {
        return CallExport(row, row.getter, out, timeoutMs) != 0;
    };
    const bool clears = row.readType != catalogue::Type::Enum && row.readType != catalogue::Type::Text;
    return {row.getter, OutBytes(row), call, clears, &row};
}

template <typename Value>
Value* As(uint8_t* out) {
    return reinterpret_cast<Value*>(out);
}

template <auto kExport, typename Element>
bool Asks(uint8_t* out, uint32_t timeoutMs) {
    return kExport(As<Element>(out), timeoutMs) != 0;
}

// The functions that are no row of the catalogue.
const QueryExport kOthers[] = {
    {"GetNumAccessPoints", 4, Asks<GetNumAccessPoints, uint32_t>, true},
    {"GetNumOfPingExecuted", 4, Asks<GetNumOfPingExecuted, uint32_t>, true},
    {"GetNumOfPingSuccess", 4, Asks<GetNumOfPingSuccess, uint32_t>, true},
    {"GetCapFWUpgrade", 1, Asks<GetCapFWUpgrade, uint8_t>, true},
    {"GetCapTOFEdgeOverride", 1, Asks<GetCapTOFEdgeOverride, uint8_t>, true},
    {"GetGCPConfigured", 1, Asks<GetGCPConfigured, uint8_t>, true},
    {"GetPennantConfigured", 1, Asks<GetPennantConfigured, uint8_t>, true},
    {"GetCurrentTimeRTC", 58, Asks<GetCurrentTimeRTC, kestrel_char>},
    {"GetCapRBNVer", 4, Asks<GetCapRBNVer, uint32_t>},
    {"GetAccessPoints", sizeof(KestrelAccessPoint) * KESTREL_MAX_ACCESS_POINTS,
     Asks<GetAccessPoints, KestrelAccessPoint>},
    {"GetMDNSHostList", sizeof(KestrelHost) * KESTREL_MAX_HOSTS, Asks<GetMDNSHostList, KestrelHost>},
    {"GetQuickDialButtons", sizeof(KestrelQuickDial) * KESTREL_ONE_TOUCH_RECORDS,
     Asks<GetQuickDialButtons, KestrelQuickDial>},
    {"GetQuickDialNumbers", sizeof(KestrelQuickDial) * KESTREL_SPEED_DIAL_RECORDS,
     Asks<GetQuickDialNumbers, KestrelQuickDial>},
    {"GetQuickDialButton", sizeof(KestrelQuickDial),
     [](uint8_t* out, uint32_t ms) { return GetQuickDialButton(0, As<KestrelQuickDial>(out), ms) != 0; }},
    {"GetDeviceTime", 20,
     [](uint8_t* out, uint32_t ms) {
         auto* v = As<uint32_t>(out);
         return GetDeviceTime(v, v + 1, v + 2, v + 3, v + 4, ms) != 0;
     }},
    {"GetVendorProductIDs", 8,
     [](uint8_t* out, uint32_t ms) {
         return GetVendorProductIDs(As<uint32_t>(out), As<uint32_t>(out + 4), ms) != 0;
     }},
    {"GetFWVersion", 136,
     [](uint8_t* out, uint32_t ms) {
         return GetFWVersion(As<uint32_t>(out), As<uint32_t>(out + 4), As<kestrel_char>(out + 8), ms) != 0;
     }},
    {"GetCapabilities", 48, [](uint8_t* out, uint32_t ms) { return GetCapabilities(out, 48, ms) != 0; }},
    {"SendCmd", 512,
     [](uint8_t* out, uint32_t ms) {
         return SendCmd("ZRPing?", 7, out + 4, 508, As<uint32_t>(out), ms) != 0;
     }},
    {"GetStatus", 1052,
     [](uint8_t* out, uint32_t) {
         return GetStatus(As<DeviceStatusRecord>(out), sizeof(DeviceStatusRecord)) != 0;
     },
     true},
};

}  // namespace

std::vector<QueryExport> QueryExports() {
    std::vector<QueryExport> all;
    for (const catalogue::Row& row : catalogue::Rows())
        if (row.CanRead() && row.id) all.push_back(GetterOf(row));
    all.insert(all.end(), std::begin(kOthers), std::end(kOthers));
    return all;
}
