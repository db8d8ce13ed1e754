// The printer's clock. It runs with the host's, at a distance that the clients set and the printer keeps.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "vprinter/device/model.h"

namespace vprinter {

class DeviceClock final {
  public:
    /// `localSeconds`: the host's local time since the beginning of 2000.
    DeviceClock(DeviceModel& model, std::function<int64_t()> localSeconds)
        : model_(model), localSeconds_(std::move(localSeconds)) {}

    /// The five items of the whole time, and that of the year.
    [[nodiscard]] std::string TimeItems() const;
    [[nodiscard]] std::string YearItem() const;
    /// Sets one of the five fields, whose value is within its range. The day gives way to a shorter month; a
    /// set minute begins anew. Returns what is wrong with it.
    [[nodiscard]] std::string SetField(opl::Key field, int64_t value);

    /// 28 hexadecimal digits: the host that set the clock, the seconds since 2000, that host's offset from
    /// UTC.
    [[nodiscard]] std::string ClockText() const;
    [[nodiscard]] std::string SetClockText(std::string_view text);

  private:
    [[nodiscard]] int64_t Now() const;
    void SetNow(int64_t seconds);

    DeviceModel& model_;
    std::function<int64_t()> localSeconds_;
};

}  // namespace vprinter
