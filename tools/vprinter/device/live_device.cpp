#include "vprinter/device/live_device.h"

#include <algorithm>

#include "vprinter/requests/reply_items.h"

namespace vprinter {
namespace {
constexpr uint32_t kList = 101;
}

struct LiveDevice::Row {
    OplKey key;
    std::string (LiveDevice::*read)();
    std::string (LiveDevice::*act)(const Setting& setting);
    uint32_t number = 0;
};

const LiveDevice::Row LiveDevice::kRows[] = {
    {OplKey::RestoreDefaults, nullptr, &LiveDevice::RestoreDefaults},
    {OplKey::DeviceTime, &LiveDevice::ReadTime, nullptr},
    {OplKey::DeviceTimeYear, &LiveDevice::ReadYear, &LiveDevice::SetTimeField},
    {OplKey::DeviceTimeMonth, nullptr, &LiveDevice::SetTimeField},
    {OplKey::DeviceTimeDay, nullptr, &LiveDevice::SetTimeField},
    {OplKey::DeviceTimeHour, nullptr, &LiveDevice::SetTimeField},
    {OplKey::DeviceTimeMinute, nullptr, &LiveDevice::SetTimeField},
    {OplKey::CurrentTimeRTC, &LiveDevice::ReadClockText, &LiveDevice::SetClockText},
    {OplKey::Configuration, &LiveDevice::ReadConfiguration, nullptr},
    {OplKey::SearchForAccessPoints, nullptr, &LiveDevice::Search},
    {OplKey::NumAccessPoints, &LiveDevice::ReadAccessPointsFound, nullptr},
    {OplKey::AccessPoints, &LiveDevice::ReadAccessPoints, nullptr, kList},
    {OplKey::PingAddress, nullptr, &LiveDevice::Ping},
    {OplKey::PingCount, nullptr, &LiveDevice::Ping},
    {OplKey::PingTimeout, nullptr, &LiveDevice::Ping},
    {OplKey::NumOfPingExecuted, &LiveDevice::ReadPingsExecuted, nullptr},
    {OplKey::NumOfPingSuccess, &LiveDevice::ReadPingsAnswered, nullptr},
    {OplKey::MDNSHostList, &LiveDevice::ReadHosts, nullptr, kList},
};

LiveDevice::LiveDevice(DeviceModel& model, const Surroundings& surroundings)
    : model_(model),
      clock_(model, surroundings.localSeconds),
      network_(model, surroundings.tickMs),
      upgrade_(model, surroundings.tickMs) {}

const LiveDevice::Row& LiveDevice::RowOf(const Setting& setting) {
    return *std::ranges::find(kRows, setting.spec.id, &Row::key);
}

LiveDevice::Reading LiveDevice::Read(const Setting& setting) {
    const Row& row = RowOf(setting);
    return {row.number, (this->*row.read)()};
}

std::string LiveDevice::Act(const Setting& setting) {
    return (this->*RowOf(setting).act)(setting);
}

// Both values are asked one by one afterwards; this reply names those that the printer has.
std::string LiveDevice::ReadConfiguration() {
    ReplyItems items;
    for (const OplKey key : {OplKey::GCPConfigured, OplKey::PennantConfigured})
        items.Text(KeyText(key), model_.Value(KeyText(key)));
    return items.Take();
}

std::string LiveDevice::ReadAccessPointsFound() {
    return ReplyItems()
        .Number(KeyText(OplKey::NumAccessPoints), static_cast<int64_t>(network_.AccessPointsFound()))
        .Take();
}

std::string LiveDevice::ReadPingsExecuted() {
    return ReplyItems().Number(KeyText(OplKey::NumOfPingExecuted), network_.PingsExecuted()).Take();
}

std::string LiveDevice::ReadPingsAnswered() {
    return ReplyItems().Number(KeyText(OplKey::NumOfPingSuccess), network_.PingsAnswered()).Take();
}

std::string LiveDevice::RestoreDefaults(const Setting& setting) {
    model_.RestoreDefaults(setting.value == "Network" ? "DeviceNetwork." : "");
    return {};
}

std::string LiveDevice::SetTimeField(const Setting& setting) {
    return clock_.SetField(*setting.spec.id, model_.Number(setting.spec.key));
}

std::string LiveDevice::SetClockText(const Setting& setting) {
    return clock_.SetClockText(setting.value);
}

std::string LiveDevice::Search(const Setting& setting) {
    if (setting.value == "YES") network_.Search();
    return {};
}

std::string LiveDevice::Ping(const Setting&) {
    network_.Ping();
    return {};
}

}  // namespace vprinter
