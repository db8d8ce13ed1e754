// Calendar arithmetic on the printer's seconds.
#include "vprinter/device/clock.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <chrono>

#include "vprinter/device/condition.h"
#include "vprinter/requests/reply_items.h"

namespace vprinter {
namespace {

using namespace std::chrono;

constexpr size_t kHostDigits = 16;
constexpr size_t kSecondsDigits = 8;
constexpr size_t kZoneDigits = 4;

struct Calendar {
    int64_t year = 0;
    int64_t month = 0;
    int64_t day = 0;
    int64_t hour = 0;
    int64_t minute = 0;
    int64_t second = 0;
};

struct TimePart {
    opl::Key key;
    int64_t Calendar::*member;
};
constexpr TimePart kTimeParts[] = {
    {opl::Key::DeviceTimeYear, &Calendar::year},     {opl::Key::DeviceTimeMonth, &Calendar::month},
    {opl::Key::DeviceTimeDay, &Calendar::day},       {opl::Key::DeviceTimeHour, &Calendar::hour},
    {opl::Key::DeviceTimeMinute, &Calendar::minute},
};

constexpr sys_days kEpoch = sys_days(year(2000) / January / 1);

Calendar ToCalendar(int64_t sinceEpoch) {
    const sys_seconds time = sys_seconds(kEpoch) + seconds(sinceEpoch);
    const auto midnight = floor<days>(time);
    const year_month_day date(midnight);
    const hh_mm_ss clock(time - midnight);
    return {static_cast<int>(date.year()),     static_cast<unsigned>(date.month()),
            static_cast<unsigned>(date.day()), clock.hours().count(),
            clock.minutes().count(),           clock.seconds().count()};
}

year_month MonthOf(const Calendar& time) {
    return year(static_cast<int>(time.year)) / month(static_cast<unsigned>(time.month));
}

int64_t DaysInMonth(const Calendar& time) {
    return static_cast<unsigned>((MonthOf(time) / last).day());
}

int64_t ToSeconds(const Calendar& time) {
    const sys_days date = MonthOf(time) / day(static_cast<unsigned>(time.day));
    const auto clock = hours(time.hour) + minutes(time.minute) + seconds(time.second);
    return duration_cast<seconds>(date - kEpoch + clock).count();
}

bool IsCapitalHex(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

}  // namespace

int64_t DeviceClock::Now() const {
    return localSeconds_() + model_.Number(condition::kClockOffset);
}

void DeviceClock::SetNow(int64_t now) {
    model_.Change(condition::kClockOffset, std::to_string(now - localSeconds_()));
}

std::string DeviceClock::TimeItems() const {
    const Calendar now = ToCalendar(Now());
    ReplyItems items;
    for (const TimePart& field : kTimeParts)
        items.Number(opl::KeyText(field.key), now.*field.member);
    return items.Take();
}

std::string DeviceClock::YearItem() const {
    return ReplyItems().Number(opl::KeyText(opl::Key::DeviceTimeYear), ToCalendar(Now()).year).Take();
}

std::string DeviceClock::SetField(opl::Key key, int64_t value) {
    Calendar time = ToCalendar(Now());
    time.*std::ranges::find(kTimeParts, key, &TimePart::key)->member = value;
    const int64_t lastDay = DaysInMonth(time);
    if (key == opl::Key::DeviceTimeDay && value > lastDay) {
        return fmt::format("Expected a day from 1 to {}", lastDay);
    }
    time.day = std::min(time.day, lastDay);
    if (key == opl::Key::DeviceTimeMinute) time.second = 0;
    SetNow(ToSeconds(time));
    return {};
}

std::string DeviceClock::ClockText() const {
    const std::string text = fmt::format("{}{:08X}{}", model_.Value(condition::kClockHost),
                                         static_cast<uint32_t>(Now()), model_.Value(condition::kClockZone));
    return ReplyItems().Text(opl::KeyText(opl::Key::CurrentTimeRTC), text).Take();
}

std::string DeviceClock::SetClockText(std::string_view text) {
    if (text.size() != kHostDigits + kSecondsDigits + kZoneDigits ||
        !std::ranges::all_of(text, IsCapitalHex)) {
        return "Expected 28 hexadecimal digits in capitals";
    }
    uint32_t sinceEpoch = 0;
    std::from_chars(text.data() + kHostDigits, text.data() + kHostDigits + kSecondsDigits, sinceEpoch, 16);
    SetNow(sinceEpoch);
    model_.Change(condition::kClockHost, text.substr(0, kHostDigits));
    model_.Change(condition::kClockZone, text.substr(kHostDigits + kSecondsDigits));
    return {};
}

}  // namespace vprinter
