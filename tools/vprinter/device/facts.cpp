#include "vprinter/device/facts.h"

#include <limits>

namespace vprinter {
namespace {

constexpr int32_t kAny = std::numeric_limits<int32_t>::max();
constexpr bool kLive = true;

constexpr DeviceFact kFacts[] = {
    // Identity
    {OplKey::VendorID, "65520", 0, 65535},
    {OplKey::ProductID, "9900", 0, 65535},

    // Clock
    {OplKey::DeviceTime, "", 0, 0, kLive},
    {OplKey::DeviceTimeYear, "2012", 2000, 2136, kLive},
    {OplKey::DeviceTimeMonth, "1", 1, 12, kLive},
    {OplKey::DeviceTimeDay, "1", 1, 31, kLive},
    {OplKey::DeviceTimeHour, "0", 0, 23, kLive},
    {OplKey::DeviceTimeMinute, "0", 0, 59, kLive},
    {OplKey::CurrentTimeRTC, "", 0, 0, kLive},

    // Firmware and capabilities
    {OplKey::FWVersionLagoon, "417", 0, kAny},
    {OplKey::FWVersionCustomer, "2209", 0, kAny},
    {OplKey::FWVersionPrinter, "9900.2209.417"},
    {OplKey::CapFWUpgrade, "OPL"},
    {OplKey::CapRBNVer, "B"},
    {OplKey::CapTOFEdgeOverride, "YES"},
    {OplKey::Configuration, "", 0, 0, kLive},
    {OplKey::GCPConfigured, "NO"},
    {OplKey::PennantConfigured, "NO"},

    // Trays
    {OplKey::PhotoTrayEngaged, "NO"},

    // Access points and network diagnostics; the time-out of one ping in seconds
    {OplKey::SearchForAccessPoints, "NO", 0, 0, kLive},
    {OplKey::NumAccessPoints, "0", 0, 30, kLive},
    {OplKey::AccessPoints, "", 0, 0, kLive},
    {OplKey::PingAddress, "0.0.0.0", 0, 0, kLive},
    {OplKey::PingCount, "0", 0, 255, kLive},
    {OplKey::PingTimeout, "0", 0, 255, kLive},
    {OplKey::NumOfPingExecuted, "0", 0, 255, kLive},
    {OplKey::NumOfPingSuccess, "0", 0, 255, kLive},
    {OplKey::MDNSHostList, "", 0, 0, kLive},
};

}  // namespace

std::span<const DeviceFact> DeviceFacts() {
    return kFacts;
}

}  // namespace vprinter
