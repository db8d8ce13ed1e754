#pragma once

#include <kestrel/sdk_types.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

struct InkLevel final {
    std::string_view name;
    std::uint32_t percent = 0;
    std::string_view state;  // enough, low, empty
};

// What product layout 1 of the status record tells beyond the fields that the library knows.
struct StatusDetails final {
    std::optional<std::uint32_t> upgradePercent;  // of an upgrade that is under way
    std::vector<InkLevel> inks;
    std::uint32_t upperTray = 0;  // percent
    std::uint32_t lowerTray = 0;
    bool photoTray = false;
    bool networkUp = false;
};

struct DeviceStatus final {
    std::uint32_t state = 0;
    std::string_view word;  // of the state; "other" for a number without one
    std::string text;
    bool onUsb = false;
    std::optional<StatusDetails> details;  // none for a record of another layout
};

// Trusts nothing but the record's size.
[[nodiscard]] DeviceStatus ReadStatus(const DeviceStatusRecord& record);

[[nodiscard]] std::string StatusText(const DeviceStatus& status);
[[nodiscard]] nlohmann::ordered_json StatusJson(const DeviceStatus& status);

}  // namespace cli
