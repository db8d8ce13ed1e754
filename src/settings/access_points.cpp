// The list is read item by item: each names a record and one of its fields.
#include "settings/access_points.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "kestrel/sdk_errors.h"
#include "kwt/strings.h"
#include "settings/list_reply.h"
#include "settings/typed_queries.h"

namespace settings {
namespace {

static_assert(sizeof(KestrelAccessPoint) == 372 && offsetof(KestrelAccessPoint, signalStrength) == 36 &&
              offsetof(KestrelAccessPoint, ssid) == 42 && offsetof(KestrelAccessPoint, channel) == 108);

constexpr size_t kMacBytes = 6;

std::string FormatMac(const std::vector<uint8_t>& bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (const uint8_t byte : bytes) {
        if (!text.empty()) text += ':';
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

uint32_t ReadNumber(std::string_view item) {
    int32_t number = 0;
    return opl::OPLParser::GetIntValue(item, number) ? static_cast<uint32_t>(number) : 0;
}

void ReadMac(std::string_view item, KestrelAccessPoint& record) {
    std::vector<uint8_t> bytes;
    if (!opl::OPLParser::GetBinaryValue(item, bytes) || bytes.size() != kMacBytes) return;
    kwt::AsciiToWideBuffer(record.macAddress, FormatMac(bytes).c_str(), sizeof(record.macAddress));
}

void ReadSsid(std::string_view item, KestrelAccessPoint& record) {
    std::string text;
    if (!opl::OPLParser::GetValue(item, text) || text == "(null)") return;
    kwt::AsciiToWideBuffer(record.ssid, text.c_str(), sizeof(record.ssid));
}

struct AccessPointField {
    std::string_view marker;
    void (*read)(std::string_view item, KestrelAccessPoint& record);
};

// A value cannot imitate a marker: its dots come escaped.
constexpr AccessPointField kAccessPointFields[] = {
    {"].MacAddr", ReadMac},
    {"].SignalStrength",
     [](std::string_view item, KestrelAccessPoint& record) {
         record.signalStrength = static_cast<uint16_t>(ReadNumber(item));
     }},
    {"].BcnInterval",
     [](std::string_view item, KestrelAccessPoint& record) {
         record.beaconInterval = static_cast<uint16_t>(ReadNumber(item));
     }},
    {"].CapInfo",
     [](std::string_view item, KestrelAccessPoint& record) {
         record.capabilities = static_cast<uint16_t>(ReadNumber(item));
     }},
    {"].SSID", ReadSsid},
    {"].Channel",
     [](std::string_view item, KestrelAccessPoint& record) { record.channel = ReadNumber(item); }},
    {"].Encryption",
     [](std::string_view item, KestrelAccessPoint& record) { record.encryption = ReadNumber(item); }},
};

bool ReadItem(std::string_view item, KestrelAccessPoint* records) {
    uint32_t index = 0;
    if (!ReadItemIndex(item, KESTREL_MAX_ACCESS_POINTS, index)) return false;
    for (const AccessPointField& field : kAccessPointFields) {
        if (item.find(field.marker) == std::string_view::npos) continue;
        field.read(item, records[index]);
        return true;
    }
    SetLastError(SDK_ERROR_UNEXPECTED_REPLY);
    return false;
}

}  // namespace

bool StartSearchForAccessPoints(session::KestrelSDK& sdk, uint32_t timeoutMs) {
    return SetBool(sdk, opl::Key::SearchForAccessPoints, true, timeoutMs);
}

bool GetAccessPoints(session::KestrelSDK& sdk, KestrelAccessPoint* records, uint32_t timeoutMs) {
    std::fill_n(records, KESTREL_MAX_ACCESS_POINTS, KestrelAccessPoint{});
    opl::ListItems items;
    if (!QueryList(sdk, opl::Key::AccessPoints, items, timeoutMs)) return false;
    return std::ranges::all_of(items.views, [&](std::string_view item) { return ReadItem(item, records); });
}

}  // namespace settings
