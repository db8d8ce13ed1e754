// Whole days from tables, one of the months and one of the years.
#include "settings/calendar.h"

#include <array>
#include <cstddef>

namespace settings {
namespace {

constexpr int32_t kApril = 4;
constexpr int32_t kOctober = 10;
constexpr uint32_t kHour = 3600;
constexpr uint32_t kDay = 24 * kHour;

constexpr std::array<uint16_t, 13> kDaysBeforeMonth[] = {
    {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365},
    {0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335, 366},
};

constexpr uint8_t kLeapYear = 0x80;

// One byte a year from 2000 to 2139: whether it is a leap year, and in the bits below how many were before
// it.
constexpr auto kYears = [] {
    std::array<uint8_t, 140> years = {};
    uint8_t leapYears = 0;
    for (size_t i = 0; i < years.size(); ++i) {
        const size_t year = kFirstClockYear + i;
        const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
        years[i] = static_cast<uint8_t>((leap ? kLeapYear : 0) | leapYears);
        if (leap) ++leapYears;
    }
    return years;
}();

constexpr bool InRange(int32_t value, int32_t low, int32_t high) {
    return value >= low && value <= high;
}

// The day of the month of the first Sunday.
constexpr int32_t FirstSunday(const CalendarTime& time) {
    const int32_t inWeek = time.day % 7;
    return (inWeek > time.dayOfWeek ? inWeek : inWeek + 7) - time.dayOfWeek;
}

}  // namespace

bool InDaylightSavingPeriod(const CalendarTime& time) {
    if (time.month != kApril && time.month != kOctober) return time.month > kApril && time.month < kOctober;
    const int32_t sunday = FirstSunday(time);
    if (time.month == kApril) return time.day > sunday || (time.day == sunday && time.hour >= 2);
    return time.day < sunday || (time.day == sunday && time.hour == 0);
}

bool SecondsSince2000(const CalendarTime& time, bool observesDaylightSaving, uint32_t& seconds) {
    if (!InRange(time.year, kFirstClockYear, kLastClockYear) || !InRange(time.month, 1, 12)) return false;
    const auto years = static_cast<uint32_t>(time.year - kFirstClockYear);
    const bool leap = (kYears[years] & kLeapYear) != 0;
    const auto& daysBefore = kDaysBeforeMonth[leap ? 1 : 0];
    const auto month = static_cast<size_t>(time.month);
    const int32_t daysOfMonth = daysBefore[month] - daysBefore[month - 1];
    if (!InRange(time.day, 1, daysOfMonth) || !InRange(time.hour, 0, 23) || !InRange(time.minute, 0, 59) ||
        !InRange(time.second, 0, 59))
        return false;
    const uint32_t leapYearsBefore = kYears[years] & ~uint32_t{kLeapYear};
    const uint32_t days =
        years * 365 + leapYearsBefore + daysBefore[month - 1] + static_cast<uint32_t>(time.day) - 1;
    seconds = days * kDay + static_cast<uint32_t>(time.hour) * kHour +
              static_cast<uint32_t>(time.minute) * 60 + static_cast<uint32_t>(time.second);
    if (observesDaylightSaving && InDaylightSavingPeriod(time)) seconds -= kHour;
    return true;
}

}  // namespace settings
