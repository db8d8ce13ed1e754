// The printer's condition: what no request can change but the control file and the printer itself can, such
// as the ink that is left. Kept like a setting, under a key of its own.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "vprinter/device/setting_spec.h"

namespace vprinter {

namespace condition {
inline constexpr std::string_view kOnline = "device.online";
inline constexpr std::string_view kOrdersSupplies = "device.orders-supplies";
inline constexpr std::string_view kStatusKnown = "status.known";
inline constexpr std::string_view kConnection = "status.connection";
inline constexpr std::string_view kError = "status.error";
inline constexpr std::string_view kStatusText = "status.text";
inline constexpr std::string_view kInks[] = {"ink.black", "ink.cyan", "ink.magenta", "ink.yellow",
                                             "ink.photo"};
inline constexpr std::string_view kUpgradeSeconds = "upgrade.seconds";
inline constexpr std::string_view kSearchSeconds = "search.seconds";
inline constexpr std::string_view kNetworks = "search.networks";
inline constexpr std::string_view kHosts = "network.hosts";
inline constexpr std::string_view kPingAnswered = "ping.answered";
inline constexpr std::string_view kClockOffset = "clock.offset";
inline constexpr std::string_view kClockHost = "clock.host";
inline constexpr std::string_view kClockZone = "clock.zone";
}  // namespace condition

void AppendConditions(std::vector<SettingSpec>& specs);

/// The parts of a text that is a list separated by commas; blanks around a part belong to nobody.
[[nodiscard]] std::vector<std::string_view> ListParts(std::string_view list);

}  // namespace vprinter
