#include "vprinter/device/live_device.h"

#include <algorithm>

#include "vprinter/requests/reply_items.h"

namespace vprinter {
namespace {
constexpr uint32_t kList = 101;
}

struct LiveDevice::Row {
    opl::Key key;
    std::string (LiveDevice::*read)();
    std::string (LiveDevice::*act)(const Setting& setting);
    uint32_t number = 0;
};

const LiveDevice::Row LiveDevice::kRows[] = {
    {opl::Key::RestoreDefaults, nullptr, &LiveDevice::RestoreDefaults},
    {opl::Key::DeviceTime, &LiveDevice::ReadTime, nullptr},
    {opl::Key::DeviceTimeYear, &LiveDevice::ReadYear, &LiveDevice::SetTimeField},
    {opl::Key::DeviceTimeMonth, nullptr, &LiveDevice::SetTimeField},
    {opl::Key::DeviceTimeDay, nullptr, &LiveDevice::SetTimeField},
    {opl::Key::DeviceTimeHour, nullptr, &LiveDevice::SetTimeField},
    {opl::Key::DeviceTimeMinute, nullptr, &LiveDevice::SetTimeField},
    {opl::Key::CurrentTimeRTC, &LiveDevice::ReadClockText, &LiveDevice::SetClockText},
    {opl::Key::Configuration, &LiveDevice::ReadConfiguration, nullptr},
    {opl::Key::SearchForAccessPoints, nullptr, &LiveDevice::Search},
    {opl::Key::NumAccessPoints, &LiveDevice::ReadAccessPointsFound, nullptr},
    {opl::Key::AccessPoints, &LiveDevice::ReadAccessPoints, nullptr, kList},
    {opl::Key::PingAddress, nullptr, &LiveDevice::Ping},
    {opl::Key::PingCount, nullptr, &LiveDevice::Ping},
    {opl::Key::PingTimeout, nullptr, &LiveDevice::Ping},
    {opl::Key::NumOfPingExecuted, &LiveDevice::ReadPingsExecuted, nullptr},
    {opl::Key::NumOfPingSuccess, &LiveDevice::ReadPingsAnswered, nullptr},
    {opl::Key::MDNSHostList, &LiveDevice::ReadHosts, nullptr, kList},
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
    for (const opl::Key key : {opl::Key::GCPConfigured, opl::Key::PennantConfigured})
        items.Text(opl::KeyText(key), model_.Value(opl::KeyText(key)));
    return items.Take();
}

std::string LiveDevice::ReadAccessPointsFound() {
    return ReplyItems()
        .Number(opl::KeyText(opl::Key::NumAccessPoints), static_cast<int64_t>(network_.AccessPointsFound()))
        .Take();
}

std::string LiveDevice::ReadPingsExecuted() {
    return ReplyItems().Number(opl::KeyText(opl::Key::NumOfPingExecuted), network_.PingsExecuted()).Take();
}

std::string LiveDevice::ReadPingsAnswered() {
    return ReplyItems().Number(opl::KeyText(opl::Key::NumOfPingSuccess), network_.PingsAnswered()).Take();
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
