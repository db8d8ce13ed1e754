// The two binary blocks that the language monitor hands out: the printer's status and its capabilities. Their
// layout is this product's own but for the three places of the status block that the library reads: the
// state, the connection and the text. Numbers are little-endian, texts UTF-16 with a terminating zero.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vprinter/device/model.h"

namespace vprinter {

namespace status_layout {
// Offset         Width  Content
constexpr size_t kSize = 0;       // 4  1316
constexpr size_t kVersion = 4;    // 4  1
constexpr size_t kState = 8;      // 4  a PrinterState
constexpr size_t kProgress = 12;  // 4  percent of an upgrade that is under way, else 0xFFFFFFFF
constexpr size_t kInkCount = 16;  // 4  number of the entries that follow
constexpr size_t kInks = 20;  // 8  each: percent left (4), InkState (4); black, cyan, magenta, yellow, photo
constexpr size_t kUpperTray = 60;    // 4  percent
constexpr size_t kLowerTray = 64;    // 4  percent
constexpr size_t kPhotoTray = 68;    // 4  1 when the photo tray is engaged
constexpr size_t kConnection = 740;  // 1  1 on a USB port, 0 on the network
constexpr size_t kNetworkUp = 741;   // 1  1 when the wireless network is connected
constexpr size_t kText = 760;        // 292
constexpr size_t kFirmware = 1052;   // 128  version of the printer's firmware
constexpr size_t kName = 1180;       // 136  the printer's name
constexpr size_t kWhole = 1316;

constexpr size_t kMaxText = 145;  // characters of the text
}  // namespace status_layout

/// Values of the state, product-own except the last.
enum class PrinterState : uint32_t {
    Ready = 0,
    PaperOut = 1,
    PaperJam = 2,
    CoverOpen = 3,
    InkOut = 4,
    CartridgeMissing = 5,
    CarriageStalled = 6,
    DeviceError = 7,
    Offline = 100,
    Upgrading = 101,
    NotYetKnown = 100000,
};

enum class InkState : uint32_t { Enough = 0, Low = 1, Empty = 2 };

/// What the condition status.error can be.
[[nodiscard]] std::vector<std::string_view> ErrorWords();

/// The word of status.error for a state that the printer cannot be in of its own accord; empty for the
/// others.
[[nodiscard]] std::string_view ErrorWordOf(PrinterState state);
/// What the status says while it has no text of its own.
[[nodiscard]] std::string_view TextOf(PrinterState state);
[[nodiscard]] PrinterState StateOf(const DeviceModel& model, bool upgrading);

/// What the display says.
struct Status {
    PrinterState state;
    std::string_view word;  // of the state, as clients are told it: paper-jam
    std::string_view text;  // of the model, or for ever
};
/// `upgradePercent`: of a firmware upgrade that is under way.
[[nodiscard]] Status StatusOf(const DeviceModel& model, std::optional<uint32_t> upgradePercent);
[[nodiscard]] std::string_view InkWord(int64_t percent);
/// The same word of a number; "other" for one that no state has.
[[nodiscard]] std::string_view StateWord(uint32_t number);

[[nodiscard]] std::string StatusBlock(const DeviceModel& model, std::optional<uint32_t> upgradePercent);

namespace capability_layout {
constexpr size_t kSize = 0;         // 4  48
constexpr size_t kVersion = 4;      // 4  1
constexpr size_t kFeatures = 8;     // 4  bits: 1 fax, 2 wireless, 4 photo tray, 8 memory card, 16 flatbed
constexpr size_t kVendor = 12;      // 2
constexpr size_t kProduct = 14;     // 2
constexpr size_t kInks = 16;        // 4  number of inks
constexpr size_t kTrays = 20;       // 4  number of trays
constexpr size_t kSpeedDial = 24;   // 4  number of speed-dial records
constexpr size_t kOneTouch = 28;    // 4  number of one-touch records
constexpr size_t kMaxCopies = 32;   // 4
constexpr size_t kResolution = 36;  // 4  dots an inch; the rest is zero
constexpr size_t kWhole = 48;
}  // namespace capability_layout

[[nodiscard]] std::string CapabilityBlock(const DeviceModel& model);

}  // namespace vprinter
