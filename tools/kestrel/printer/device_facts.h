// What a printer says of itself besides its settings: each reading as the JSON that the commands print, from
// the library's function for it. All throw the Failure of the library's call.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kestrel/printer/library.h"
#include "shared/json.h"

namespace cli {

struct FirmwareVersions final {
    uint32_t lagoon = 0;
    uint32_t customer = 0;
    std::string printer;
};
[[nodiscard]] FirmwareVersions ReadFirmwareVersions(const Library& library, uint32_t timeoutMs);
[[nodiscard]] tools::Json FirmwareJson(const FirmwareVersions& versions);

struct UsbIdentifiers final {
    uint32_t vendor = 0;
    uint32_t product = 0;
};
[[nodiscard]] UsbIdentifiers ReadIdentifiers(const Library& library, uint32_t timeoutMs);

struct CloudService final {
    const char* name;
    const char* function;
};
inline constexpr std::array<CloudService, 2> kCloudServices = {{
    {"gcp", "GetGCPConfigured"},
    {"pennant", "GetPennantConfigured"},
}};
// A printer that does not know a service has no flag for it: no failure, and no value either.
[[nodiscard]] std::optional<bool> ReadService(const Library& library, const CloudService& service,
                                              uint32_t timeoutMs);

[[nodiscard]] bool CanUpgradeFirmware(const Library& library, uint32_t timeoutMs);
[[nodiscard]] bool CanOverrideTopOfForm(const Library& library, uint32_t timeoutMs);
// The code of one letter.
[[nodiscard]] uint32_t ReadRbnVersion(const Library& library, uint32_t timeoutMs);
[[nodiscard]] std::vector<uint8_t> ReadCapabilityBlock(const Library& library);

struct WallTime final {
    uint32_t year = 0;
    uint32_t month = 0;
    uint32_t day = 0;
    uint32_t hour = 0;
    uint32_t minute = 0;
};
[[nodiscard]] WallTime ReadWallTime(const Library& library, uint32_t timeoutMs);
// 28 hexadecimal digits, of a clock that somebody has set.
[[nodiscard]] std::string ReadClockText(const Library& library, uint32_t timeoutMs);

// What the printer has found so far.
[[nodiscard]] tools::Json ReadAccessPoints(const Library& library, uint32_t timeoutMs);
[[nodiscard]] std::vector<std::string> ReadHosts(const Library& library, uint32_t timeoutMs);

// A number that counts something; `what` are its words: "pings sent".
[[nodiscard]] uint32_t ReadCount(const Library& library, const char* function, const char* what,
                                 uint32_t timeoutMs);

}  // namespace cli
