// The printer's status record in words.
#pragma once

#include <kestrel/sdk_types.h>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kestrel/printer/library.h"
#include "kestrel/printer/printer.h"
#include "shared/json.h"

namespace cli {

inline constexpr std::string_view kEnoughInk = "enough";

struct InkLevel final {
    std::string_view name;
    uint32_t percent = 0;
    std::string_view state;  // enough, low, empty
};

// What product layout 1 of the status record tells beyond the fields that the library knows.
struct StatusDetails final {
    std::optional<uint32_t> upgradePercent;  // of an upgrade that is under way
    std::vector<InkLevel> inks;
    uint32_t upperTray = 0;  // percent
    uint32_t lowerTray = 0;
    bool photoTray = false;
    bool networkUp = false;
};

struct DeviceStatus final {
    uint32_t state = 0;
    std::string_view word;  // of the state; "other" for a number without one
    std::string text;
    bool onUsb = false;
    std::optional<StatusDetails> details;  // none for a record of another layout
};

// Trusts nothing but the record's size.
[[nodiscard]] DeviceStatus ReadStatus(const DeviceStatusRecord& record);

// Every word that a state can have.
[[nodiscard]] std::vector<std::string_view> StateWords();

// Of the printer that is selected; starts the status monitor, and waits for a status that is not known yet,
// up to 14 seconds. Throws the failure of the library's call.
[[nodiscard]] DeviceStatus AskForStatus(const Library& library);

// The status as the printer tells it, without the status monitor: nothing is started, and a status that is
// not known yet is not waited for.
[[nodiscard]] DeviceStatus AskDeviceStatus(const Printer& printer);

[[nodiscard]] std::string InksText(const StatusDetails& details);
[[nodiscard]] tools::Json InksJson(const StatusDetails& details);
[[nodiscard]] std::string StatusText(const DeviceStatus& status);
[[nodiscard]] tools::Json StatusJson(const DeviceStatus& status);

}  // namespace cli
