// The five fields of the time come in one list and go in one request.
#include "settings/clock.h"

#include <algorithm>

#include "host/host_identity.h"
#include "session/remaining_time.h"
#include "settings/clock_text.h"
#include "settings/typed_queries.h"

namespace settings {
namespace {

struct ClockField {
    opl::Key key;
    uint32_t DeviceTime::*value;
};

// The order in which they are looked for in an item, and set.
constexpr ClockField kClockFields[] = {
    {opl::Key::DeviceTimeYear, &DeviceTime::year},     {opl::Key::DeviceTimeMonth, &DeviceTime::month},
    {opl::Key::DeviceTimeDay, &DeviceTime::day},       {opl::Key::DeviceTimeHour, &DeviceTime::hour},
    {opl::Key::DeviceTimeMinute, &DeviceTime::minute},
};

bool ReadItem(std::string_view item, DeviceTime& time) {
    for (const ClockField& field : kClockFields) {
        if (item.find(opl::KeyText(field.key)) == std::string_view::npos) continue;
        int32_t number = 0;
        const bool read = opl::OPLParser::GetIntValue(item, number);
        time.*field.value = static_cast<uint32_t>(number);
        return read;
    }
    return false;
}

}  // namespace

bool GetDeviceTime(session::KestrelSDK& sdk, DeviceTime& time, uint32_t timeoutMs) {
    time = {};
    std::string_view reply;
    if (!sdk.Query(opl::Key::DeviceTime, reply, timeoutMs)) return false;
    opl::ListItems items;
    if (!sdk.parser.SplitList(reply, items) || items.views.size() != std::size(kClockFields)) return false;
    return std::ranges::all_of(items.views, [&](std::string_view item) { return ReadItem(item, time); });
}

bool SetDeviceTime(session::KestrelSDK& sdk, const DeviceTime& time, uint32_t timeoutMs) {
    const session::RemainingTime remaining(timeoutMs);
    std::string& request = sdk.NewRequest();
    for (const ClockField& field : kClockFields)
        sdk.builder.AppendSetInt(request, field.key, static_cast<int32_t>(time.*field.value));
    if (!SetValue(sdk, request, timeoutMs)) return false;
    uint32_t left = 0;
    int32_t year = 0;
    return remaining.IsLeft(left) && QueryInt(sdk, year, opl::Key::DeviceTimeYear, left);
}

bool GetCurrentTimeRTC(session::KestrelSDK& sdk, WCHAR* text, uint32_t timeoutMs) {
    return QueryText(sdk, text, kClockTextBytes, opl::Key::CurrentTimeRTC, timeoutMs);
}

bool SetCurrentTimeRTC(session::KestrelSDK& sdk, uint32_t timeoutMs) {
    uint64_t hostId = 0;
    if (!host::GetHostId(hostId)) return false;
    HostClock clock = {};
    std::string text;
    if (!ReadHostClock(clock) || !FormatClockText(hostId, clock, text)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    return SetText(sdk, opl::Key::CurrentTimeRTC, text, timeoutMs);
}

}  // namespace settings
