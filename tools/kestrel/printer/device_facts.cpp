// One call each; only the capability block is asked for twice.
#include "kestrel/printer/device_facts.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "kestrel/text/text.h"

namespace cli {
namespace {

constexpr uint32_t kLargestBlock = 65000;
constexpr uint32_t kSizeBytes = 4;

using GetFlag = kestrel_bool(kestrel_bool*, uint32_t);

bool ReadFlag(const Library& library, const char* function, const char* attempt, uint32_t timeoutMs) {
    kestrel_bool flag = 0;
    Demand<GetFlag>(library, function, {attempt, Exchange::Read}, &flag, timeoutMs);
    return flag != 0;
}

constexpr CodelessFailure kNoCompleteTime = {ExitCode::BadReply,
                                             "the printer's answer is not a complete time",
                                             "set the clock with `kestrel clock sync` and try again"};

}  // namespace

FirmwareVersions ReadFirmwareVersions(const Library& library, uint32_t timeoutMs) {
    FirmwareVersions versions;
    std::array<kestrel_char, 64> printer{};
    Demand<decltype(GetFWVersion)>(library, "GetFWVersion",
                                   {"cannot read the firmware's versions", Exchange::Read}, &versions.lagoon,
                                   &versions.customer, printer.data(), timeoutMs);
    versions.printer = Utf8FromWide(printer.data());
    return versions;
}

tools::Json FirmwareJson(const FirmwareVersions& versions) {
    return {{"printer", versions.printer}, {"customer", versions.customer}, {"lagoon", versions.lagoon}};
}

UsbIdentifiers ReadIdentifiers(const Library& library, uint32_t timeoutMs) {
    UsbIdentifiers identifiers;
    Demand<decltype(GetVendorProductIDs)>(library, "GetVendorProductIDs",
                                          {"cannot read the USB identifiers", Exchange::Read},
                                          &identifiers.vendor, &identifiers.product, timeoutMs);
    return identifiers;
}

std::optional<bool> ReadService(const Library& library, const CloudService& service, uint32_t timeoutMs) {
    kestrel_bool configured = 0;
    if (library.Find<GetFlag>(service.function)(&configured, timeoutMs) != 0) return configured != 0;
    if (GetLastError() == ERROR_SUCCESS) return std::nullopt;
    throw FailureOfLastCall(library, fmt::format("cannot ask for the service {}", service.name),
                            Exchange::Read);
}

bool CanUpgradeFirmware(const Library& library, uint32_t timeoutMs) {
    return ReadFlag(library, "GetCapFWUpgrade", "cannot read the upgrade capability", timeoutMs);
}
bool CanOverrideTopOfForm(const Library& library, uint32_t timeoutMs) {
    return ReadFlag(library, "GetCapTOFEdgeOverride", "cannot read the edge capability", timeoutMs);
}

uint32_t ReadRbnVersion(const Library& library, uint32_t timeoutMs) {
    uint32_t version = 0;
    Demand<decltype(GetCapRBNVer)>(library, "GetCapRBNVer", {"cannot read the RBN version", Exchange::Read},
                                   &version, timeoutMs);
    return version;
}

// The block begins with its own size, which also a call that asks for less leaves in the buffer.
std::vector<uint8_t> ReadCapabilityBlock(const Library& library) {
    std::vector<uint8_t> block(kSizeBytes);
    const auto get = library.Find<decltype(GetCapabilities)>("GetCapabilities");
    bool got = get(block.data(), kSizeBytes, 0) != 0;
    if (!got && GetLastError() == ERROR_SUCCESS) {
        uint32_t size = 0;
        std::memcpy(&size, block.data(), sizeof(size));
        block.resize(std::clamp(size, kSizeBytes, kLargestBlock));
        got = get(block.data(), static_cast<uint32_t>(block.size()), 0) != 0;
    }
    if (got) return block;
    throw FailureOfLastCall(library,
                            Attempt{"cannot read the capability block",
                                    Exchange::Read,
                                    {ExitCode::BadReply, "the printer has no complete block",
                                     "look at the printer's reply with `kestrel raw 'ZRGetCapabilities?'`"}});
}

WallTime ReadWallTime(const Library& library, uint32_t timeoutMs) {
    WallTime time;
    Demand<decltype(GetDeviceTime)>(library, "GetDeviceTime",
                                    {"cannot read the clock", Exchange::Read, kNoCompleteTime}, &time.year,
                                    &time.month, &time.day, &time.hour, &time.minute, timeoutMs);
    return time;
}

std::string ReadClockText(const Library& library, uint32_t timeoutMs) {
    std::array<kestrel_char, 29> text{};
    Demand<decltype(GetCurrentTimeRTC)>(
        library, "GetCurrentTimeRTC", {"cannot read the clock text", Exchange::Read}, text.data(), timeoutMs);
    return Utf8FromWide(text.data());
}

tools::Json ReadAccessPoints(const Library& library, uint32_t timeoutMs) {
    std::vector<KestrelAccessPoint> points(KESTREL_MAX_ACCESS_POINTS);
    Demand<decltype(GetAccessPoints)>(library, "GetAccessPoints",
                                      {"cannot read the access points", Exchange::Read}, points.data(),
                                      timeoutMs);
    tools::Json list = tools::Json::EmptyArray();
    for (const KestrelAccessPoint& point : points) {
        const std::string ssid = Utf8FromWide(point.ssid);
        const std::string address = Utf8FromWide(point.macAddress);
        // A hidden network has no name; an empty record has no address either.
        if (ssid.empty() && address.empty()) continue;
        list.Append({{"ssid", ssid},
                     {"macAddress", address},
                     {"channel", point.channel},
                     {"signalStrength", point.signalStrength},
                     {"beaconInterval", point.beaconInterval},
                     {"capabilities", point.capabilities},
                     {"encryption", point.encryption}});
    }
    return list;
}

std::vector<std::string> ReadHosts(const Library& library, uint32_t timeoutMs) {
    std::vector<KestrelHost> records(KESTREL_MAX_HOSTS);
    Demand<decltype(GetMDNSHostList)>(library, "GetMDNSHostList", {"cannot read the hosts", Exchange::Read},
                                      records.data(), timeoutMs);
    std::vector<std::string> hosts;
    for (const KestrelHost& record : records) {
        std::string name = Utf8FromWide(record.name);
        if (!name.empty()) hosts.push_back(std::move(name));
    }
    return hosts;
}

uint32_t ReadCount(const Library& library, const char* function, const char* what, uint32_t timeoutMs) {
    uint32_t count = 0;
    Demand<kestrel_bool(uint32_t*, uint32_t)>(
        library, function, {fmt::format("cannot read the number of {}", what), Exchange::Read}, &count,
        timeoutMs);
    return count;
}

}  // namespace cli
