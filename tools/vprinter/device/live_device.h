// The part of the printer that moves: values that are made when they are asked, and what happens when others
// are set.
#pragma once

#include <cstdint>
#include <string>

#include "vprinter/device/clock.h"
#include "vprinter/device/firmware.h"
#include "vprinter/device/model.h"
#include "vprinter/device/network_activity.h"
#include "vprinter/device/surroundings.h"

namespace vprinter {

/// Belongs to the printer's serving thread.
class LiveDevice final {
  public:
    LiveDevice(DeviceModel& model, const Surroundings& surroundings);

    /// The reply to the query of a live setting.
    struct Reading {
        uint32_t number = 0;  // response number
        std::string items;
    };
    [[nodiscard]] Reading Read(const Setting& setting);

    /// What follows from the value that a live setting has just taken. Returns what is wrong with the value
    /// after all; empty for nothing.
    [[nodiscard]] std::string Act(const Setting& setting);

    void Adopt(const Origin& origin) { network_.Adopt(origin); }

    [[nodiscard]] FirmwareUpgrade& Upgrade() { return upgrade_; }
    [[nodiscard]] NetworkActivity& Network() { return network_; }

  private:
    struct Row;
    static const Row kRows[];
    [[nodiscard]] static const Row& RowOf(const Setting& setting);

    [[nodiscard]] std::string ReadTime() { return clock_.TimeItems(); }
    [[nodiscard]] std::string ReadYear() { return clock_.YearItem(); }
    [[nodiscard]] std::string ReadClockText() { return clock_.ClockText(); }
    [[nodiscard]] std::string ReadConfiguration();
    [[nodiscard]] std::string ReadAccessPointsFound();
    [[nodiscard]] std::string ReadAccessPoints() { return network_.AccessPointItems(); }
    [[nodiscard]] std::string ReadPingsExecuted();
    [[nodiscard]] std::string ReadPingsAnswered();
    [[nodiscard]] std::string ReadHosts() { return network_.HostItems(); }

    [[nodiscard]] std::string RestoreDefaults(const Setting& setting);
    [[nodiscard]] std::string SetTimeField(const Setting& setting);
    [[nodiscard]] std::string SetClockText(const Setting& setting);
    [[nodiscard]] std::string Search(const Setting& setting);
    [[nodiscard]] std::string Ping(const Setting& setting);

    DeviceModel& model_;
    DeviceClock clock_;
    NetworkActivity network_;
    FirmwareUpgrade upgrade_;
};

}  // namespace vprinter
