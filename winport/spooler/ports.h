// Ports: the few that every computer has, and those of the network port monitor.
#pragma once

#include <string_view>

namespace winport {

// What OpenPrinterW opens the monitor's configuration by.
inline constexpr std::u16string_view kPortMonitorName = u",XcvMonitor Standard TCP/IP Port";

}  // namespace winport
