#include "vprinter/device/facts.h"

#include <limits>

namespace vprinter {
namespace {

constexpr int32_t kAny = std::numeric_limits<int32_t>::max();
constexpr bool kLive = true;

constexpr DeviceFact kFacts[] = {
    // Identity
    {opl::Key::VendorID, "65520", 0, 65535},
    {opl::Key::ProductID, "9900", 0, 65535},

    // Clock
    {opl::Key::DeviceTime, "", 0, 0, kLive},
    {opl::Key::DeviceTimeYear, "2012", 2000, 2136, kLive},
    {opl::Key::DeviceTimeMonth, "1", 1, 12, kLive},
    {opl::Key::DeviceTimeDay, "1", 1, 31, kLive},
    {opl::Key::DeviceTimeHour, "0", 0, 23, kLive},
    {opl::Key::DeviceTimeMinute, "0", 0, 59, kLive},
    {opl::Key::CurrentTimeRTC, "", 0, 0, kLive},

    // Firmware and capabilities
    {opl::Key::FWVersionLagoon, "417", 0, kAny},
    {opl::Key::FWVersionCustomer, "2209", 0, kAny},
    {opl::Key::FWVersionPrinter, "9900.2209.417"},
    {opl::Key::CapFWUpgrade, "OPL"},
    {opl::Key::CapRBNVer, "B"},
    {opl::Key::CapTOFEdgeOverride, "YES"},
    {opl::Key::Configuration, "", 0, 0, kLive},
    {opl::Key::GCPConfigured, "NO"},
    {opl::Key::PennantConfigured, "NO"},

    // Trays
    {opl::Key::PhotoTrayEngaged, "NO"},

    // Access points and network diagnostics; the time-out of one ping in seconds
    {opl::Key::SearchForAccessPoints, "NO", 0, 0, kLive},
    {opl::Key::NumAccessPoints, "0", 0, 30, kLive},
    {opl::Key::AccessPoints, "", 0, 0, kLive},
    {opl::Key::PingAddress, "0.0.0.0", 0, 0, kLive},
    {opl::Key::PingCount, "0", 0, 255, kLive},
    {opl::Key::PingTimeout, "0", 0, 255, kLive},
    {opl::Key::NumOfPingExecuted, "0", 0, 255, kLive},
    {opl::Key::NumOfPingSuccess, "0", 0, 255, kLive},
    {opl::Key::MDNSHostList, "", 0, 0, kLive},
};

}  // namespace

std::span<const DeviceFact> DeviceFacts() {
    return kFacts;
}

}  // namespace vprinter
