// Calendar arithmetic of the printer's clock, which counts local seconds from 2000 on.
#pragma once

#include <cstdint>

namespace settings {

struct CalendarTime {
    int32_t year;
    int32_t month;      // 1 to 12
    int32_t day;        // 1 to 31
    int32_t dayOfWeek;  // 0 Sunday
    int32_t hour;
    int32_t minute;
    int32_t second;
};

inline constexpr int32_t kFirstClockYear = 2000;
inline constexpr int32_t kLastClockYear = 2136;  // whose end a 32-bit count just holds

/// Whether a time lies in the daylight-saving period that the printer assumes, whatever the zone: from the
/// first Sunday of April, 2 h, to the first Sunday of October, 1 h.
[[nodiscard]] bool InDaylightSavingPeriod(const CalendarTime& time);

/// Seconds from the beginning of 2000 to `time`, less an hour in the daylight-saving period when the zone
/// observes one. False for a time that no calendar has or that lies outside the clock's years.
[[nodiscard]] bool SecondsSince2000(const CalendarTime& time, bool observesDaylightSaving, uint32_t& seconds);

}  // namespace settings
