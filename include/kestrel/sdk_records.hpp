// The records of sdk.hpp, with texts in UTF-8, and how they become those of the C interface and back.
#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "sdk_unicode.hpp"

#include <kestrel/sdk_settings.hpp>

namespace kestrel {

/// The printer's status.
struct Status {
    std::uint32_t state = 0;      ///< the number of it
    bool on_usb = false;          ///< on a USB port
    std::string text;             ///< in words
    DeviceStatusRecord record{};  ///< the whole of it, as the language monitor sends it

    /// False as long as the language monitor has no status to tell.
    [[nodiscard]] bool is_known() const { return state != 100000 || !text.empty(); }
};

/// A destination of the address book.
struct QuickDial {
    AddressType type = AddressType::None;  ///< what the address is
    std::string name{};                    ///< at most 40 UTF-16 units; the printer may take fewer
    std::string address{};                 ///< fax number or e-mail address, at most 50 UTF-16 units

    bool operator==(const QuickDial&) const = default;
};
/// The whole speed-dial list.
using SpeedDialList = std::array<QuickDial, KESTREL_SPEED_DIAL_RECORDS>;
/// The whole one-touch list.
using OneTouchList = std::array<QuickDial, KESTREL_ONE_TOUCH_RECORDS>;

/// An access point as the printer sees it; the numbers as the printer reports them.
struct AccessPoint {
    std::string ssid;                   ///< empty for a hidden one
    std::string mac_address;            ///< 00:1B:2C:3D:4E:5F; empty when the printer does not tell it
    std::uint16_t signal_strength = 0;  ///< of the radio
    std::uint16_t beacon_interval = 0;  ///< time between two signs of life
    std::uint16_t capabilities = 0;     ///< bits, each with a meaning of its own
    std::uint32_t channel = 0;          ///< of the radio
    std::uint32_t encryption = 0;       ///< a number of the printer's own

    bool operator==(const AccessPoint&) const = default;
};

/// The versions of the firmware: compare them for equality.
struct FirmwareVersions {
    std::uint32_t lagoon = 0;    ///< what the printer calls its Lagoon version
    std::uint32_t customer = 0;  ///< its customer version
    std::string printer;         ///< its printer version
};

/// The printer's identifiers on the USB.
struct UsbIds {
    std::uint32_t vendor = 0;   ///< its maker
    std::uint32_t product = 0;  ///< its model
};

/// A printer to be made with a driver of a setup information file. No text may hold double quotes.
struct DriverInstance {
    std::string printer_name{};  ///< that it is to have
    std::string inf_path{};      ///< the setup information file
    std::string model{};         ///< one of that file
    std::string port{};          ///< the name of an existing one
    bool make_default = false;   ///< whether it becomes the default printer as well
};

/// The printer's clock, in its own time zone.
using ClockTime = std::chrono::local_time<std::chrono::minutes>;

namespace detail {

template <std::size_t capacity>
[[nodiscard]] std::string text_of(const kestrel_char (&field)[capacity]) {
    return to_utf8(field, capacity);
}

/// False when the text does not fit; one that fills the field has no terminator.
template <std::size_t capacity>
[[nodiscard]] bool fill(kestrel_char (&field)[capacity], const std::string& text) {
    Wide wide;
    if (!to_wide(text, wide) || wide.size() > capacity) return false;
    std::fill(std::copy(wide.begin(), wide.end(), field), field + capacity, kestrel_char{0});
    return true;
}

[[nodiscard]] inline Status from_c(const DeviceStatusRecord& record) {
    return {record.state, record.onUsb != 0, text_of(record.text), record};
}

[[nodiscard]] inline QuickDial from_c(const KestrelQuickDial& record) {
    return {static_cast<AddressType>(record.addressType), text_of(record.name), text_of(record.address)};
}

[[nodiscard]] inline bool to_c(const QuickDial& entry, KestrelQuickDial& record) {
    record.addressType = static_cast<std::uint32_t>(entry.type);
    return fill(record.name, entry.name) && fill(record.address, entry.address);
}

[[nodiscard]] inline AccessPoint from_c(const KestrelAccessPoint& record) {
    return {text_of(record.ssid),  text_of(record.macAddress), record.signalStrength,
            record.beaconInterval, record.capabilities,        record.channel,
            record.encryption};
}

[[nodiscard]] inline std::string from_c(const KestrelHost& record) {
    return text_of(record.name);
}

/// Those of a list that are not empty.
template <typename Record, std::size_t count>
[[nodiscard]] auto filled(const std::array<Record, count>& records) {
    std::vector<decltype(from_c(records[0]))> entries;
    for (const Record& record : records)
        if (auto entry = from_c(record); entry != decltype(entry){}) entries.push_back(std::move(entry));
    return entries;
}

/// Nothing for what is in no calendar.
[[nodiscard]] inline std::optional<ClockTime> clock_time(std::uint32_t year, std::uint32_t month,
                                                         std::uint32_t day, std::uint32_t hour,
                                                         std::uint32_t minute) {
    using namespace std::chrono;
    const year_month_day date(std::chrono::year(static_cast<int>(year)), std::chrono::month(month),
                              std::chrono::day(day));
    const bool is_small = year <= 9999 && month <= 12 && day <= 31;  // what chrono's types can hold
    if (!is_small || !date.ok() || hour > 23 || minute > 59) return std::nullopt;
    return local_days(date) + hours(hour) + minutes(minute);
}

}  // namespace detail
}  // namespace kestrel
