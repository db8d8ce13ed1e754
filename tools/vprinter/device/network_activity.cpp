// Everything is worked out from the time that has passed; nothing runs in between.
#include "vprinter/device/network_activity.h"

#include <fmt/core.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include "vprinter/device/condition.h"
#include "vprinter/requests/reply_items.h"

namespace vprinter {
namespace {

constexpr size_t kMaxAccessPoints = 30;
constexpr size_t kMaxHosts = 10;
constexpr std::string_view kNoName = "(null)";

constexpr uint64_t kAnsweredPingMs = 200;  // from one ping to the next

// What is not worth a condition of its own follows from the place in the list.
AccessPoint MadeUp(size_t index, std::string_view name) {
    const auto number = static_cast<int64_t>(index);
    const char mac[] = {0x02, 0x4B, 0x53, 0x00, 0x00, static_cast<char>(index + 1)};
    return {.name = std::string(name),
            .address = {mac, sizeof(mac)},
            .signalStrength = std::max<int64_t>(95 - 6 * number, 5),
            .beaconInterval = 100,
            .capabilities = 0x0411,
            .channel = 1 + number * 5 % 13,
            .encryption = number % 4};
}

void AppendAccessPoint(ReplyItems& items, size_t index, const AccessPoint& point) {
    const auto key = [&](std::string_view field) {
        return fmt::format("{}[{}].{}", opl::KeyText(opl::Key::AccessPoints), index, field);
    };
    if (!point.address.empty()) items.Block(key("MacAddr"), point.address);
    items.Number(key("SignalStrength"), point.signalStrength)
        .Number(key("BcnInterval"), point.beaconInterval)
        .Number(key("CapInfo"), point.capabilities)
        .Text(key("SSID"), point.name.empty() ? kNoName : point.name)
        .Number(key("Channel"), point.channel)
        .Number(key("Encryption"), point.encryption);
}

}  // namespace

void NetworkActivity::Adopt(const Origin& origin) {
    adopted_ = origin.accessPoints;
    pingsExecuted_ = origin.pingsSent;
    answeredPercents_ = origin.pingsAnswered * 100;
}

void NetworkActivity::Search() {
    searchBegan_ = tickMs_();
}

size_t NetworkActivity::AccessPointsFound() const {
    if (!searchBegan_) return adopted_.size();
    if (!model_.Flag(opl::KeyText(opl::Key::WirelessRadio))) return 0;
    const size_t all = std::min(ListParts(model_.Value(condition::kNetworks)).size(), kMaxAccessPoints);
    const auto duration = static_cast<uint64_t>(model_.Number(condition::kSearchSeconds)) * 1000;
    const uint64_t elapsed = MsSince(*searchBegan_);
    return elapsed >= duration ? all : static_cast<size_t>(all * elapsed / duration);
}

std::vector<AccessPoint> NetworkActivity::AccessPoints() const {
    if (!searchBegan_) return adopted_;
    const std::vector<std::string_view> names = ListParts(model_.Value(condition::kNetworks));
    std::vector<AccessPoint> points;
    for (size_t i = 0; i < AccessPointsFound(); ++i) {
        const std::string_view name = names[i] == kNoName ? std::string_view() : names[i];
        const auto known = std::ranges::find(adopted_, name, &AccessPoint::name);
        points.push_back(known != adopted_.end() ? *known : MadeUp(i, name));
    }
    return points;
}

std::string NetworkActivity::AccessPointItems() const {
    ReplyItems items;
    size_t index = 0;
    for (const AccessPoint& point : AccessPoints())
        AppendAccessPoint(items, index++, point);
    return items.Take();
}

void NetworkActivity::Ping() {
    lastPingAt_ = tickMs_();
    pingsExecuted_ = 0;
    answeredPercents_ = 0;
}

void NetworkActivity::AdvancePings() {
    if (!lastPingAt_) return;
    const int64_t answered = IsConnected() ? model_.Number(condition::kPingAnswered) : 0;
    const int64_t timeoutSeconds = std::max<int64_t>(model_.Number(opl::KeyText(opl::Key::PingTimeout)), 1);
    const uint64_t intervalMs = answered > 0 ? kAnsweredPingMs : static_cast<uint64_t>(timeoutSeconds) * 1000;
    const int64_t count = model_.Number(opl::KeyText(opl::Key::PingCount));
    while (pingsExecuted_ < count && MsSince(*lastPingAt_) >= intervalMs) {
        *lastPingAt_ += intervalMs;
        ++pingsExecuted_;
        answeredPercents_ += static_cast<uint32_t>(answered);
    }
}

uint32_t NetworkActivity::PingsExecuted() {
    AdvancePings();
    return pingsExecuted_;
}

uint32_t NetworkActivity::PingsAnswered() {
    AdvancePings();
    return answeredPercents_ / 100;
}

std::string NetworkActivity::HostItems() const {
    std::vector<std::string_view> hosts;
    if (IsConnected()) hosts = ListParts(model_.Value(condition::kHosts));
    if (hosts.empty()) hosts = {kNoName};
    hosts.resize(std::min(hosts.size(), kMaxHosts));
    ReplyItems items;
    for (size_t i = 0; i < hosts.size(); ++i)
        items.Text(fmt::format("{}[{}]", opl::KeyText(opl::Key::MDNSHostList), i), hosts[i]);
    return items.Take();
}

bool NetworkActivity::IsConnected() const {
    return model_.Value(opl::KeyText(opl::Key::WirelessState)) == "Connected";
}

}  // namespace vprinter
