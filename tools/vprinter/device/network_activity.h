// What the printer does on the network, and what it finds there as time goes by: the search for access
// points, pings, and the hosts that it has discovered.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "vprinter/device/model.h"
#include "vprinter/device/origin.h"

namespace vprinter {

class NetworkActivity final {
  public:
    NetworkActivity(const DeviceModel& model, std::function<uint64_t()> tickMs)
        : model_(model), tickMs_(std::move(tickMs)) {}

    /// What was found and counted before this run.
    void Adopt(const Origin& origin);

    /// A search forgets what the one before it found. It finds nothing while the radio is off.
    void Search();
    [[nodiscard]] size_t AccessPointsFound() const;
    /// Those found so far.
    [[nodiscard]] std::vector<AccessPoint> AccessPoints() const;
    /// Their items; empty for none.
    [[nodiscard]] std::string AccessPointItems() const;

    /// Begins to ping with what has been set last; each of the three settings of a ping calls for this, so
    /// that their order is of no account.
    void Ping();
    /// Both only ever count up until the next `Ping`: a network that goes or comes in the middle concerns the
    /// pings still to be made.
    [[nodiscard]] uint32_t PingsExecuted();
    [[nodiscard]] uint32_t PingsAnswered();

    [[nodiscard]] std::string HostItems() const;

  private:
    [[nodiscard]] bool IsConnected() const;
    /// Makes the pings whose time has come.
    void AdvancePings();
    [[nodiscard]] uint64_t MsSince(uint64_t tick) const { return tickMs_() - tick; }

    const DeviceModel& model_;
    std::function<uint64_t()> tickMs_;
    std::vector<AccessPoint> adopted_;
    std::optional<uint64_t> searchBegan_;
    std::optional<uint64_t> lastPingAt_;
    uint32_t pingsExecuted_ = 0;
    uint32_t answeredPercents_ = 0;  // 100 for each ping that is surely answered
};

}  // namespace vprinter
