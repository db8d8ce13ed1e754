// The upgrade of the printer's firmware: the file that is handed over, and the time that the upgrade takes.
//
// A firmware file is anything that begins with the line
//
//   ZRFW 1 9900.2210.420
//
// The three numbers are the product that the firmware is for, its customer version and its Lagoon version.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "vprinter/device/model.h"

namespace vprinter {

struct FirmwareVersion {
    int64_t product = 0;
    int64_t customer = 0;
    int64_t lagoon = 0;
};

/// The version that the first line of a firmware file names; nothing when it is none.
[[nodiscard]] std::optional<FirmwareVersion> ReadFirmwareLine(std::string_view beginning);

/// The first bytes of a file, whose path is text of the ANSI code page; nothing when it cannot be read.
[[nodiscard]] std::optional<std::string> ReadBeginning(const std::string& path);

class FirmwareUpgrade final {
  public:
    FirmwareUpgrade(DeviceModel& model, std::function<uint64_t()> tickMs)
        : model_(model), tickMs_(std::move(tickMs)) {}

    /// Why an upgrade does not begin; `number` is the response number.
    struct Refusal {
        uint32_t number = 0;
        std::string text;
    };
    /// Begins an upgrade from the file at `path`.
    [[nodiscard]] std::optional<Refusal> Begin(const std::string& path);

    [[nodiscard]] bool IsUnderWay() const { return next_.has_value(); }
    /// Ends an upgrade whose time has come.
    void Advance();
    /// Of the upgrade that is under way.
    [[nodiscard]] std::optional<uint32_t> Percent() const;

  private:
    [[nodiscard]] uint64_t DurationMs() const;

    DeviceModel& model_;
    std::function<uint64_t()> tickMs_;
    std::optional<FirmwareVersion> next_;
    uint64_t beganAt_ = 0;
};

}  // namespace vprinter
