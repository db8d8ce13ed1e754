// The calendar and the clock text, against the calendar of the standard library.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <utility>

#include "settings/calendar.h"
#include "settings/clock_text.h"

using namespace settings;

namespace {

constexpr bool kObserved = true;
constexpr bool kNotObserved = false;

TEST(Calendar, Counts_the_seconds_to_every_hour_and_knows_daylight_saving_between_its_first_Sundays) {
    using namespace std::chrono;
    constexpr sys_days kEpoch = 2000y / January / 1;
    for (sys_time<hours> now = kEpoch; now <= sys_days(2136y / February / 7) + 6h; ++now) {
        const auto today = floor<days>(now);
        const year_month_day date(today);
        const CalendarTime time = {static_cast<int>(date.year()),
                                   static_cast<int>(unsigned{date.month()}),
                                   static_cast<int>(unsigned{date.day()}),
                                   static_cast<int>(weekday(today).c_encoding()),
                                   static_cast<int>((now - today).count()),
                                   28,
                                   15};
        uint32_t seconds = 1;
        ASSERT_TRUE(SecondsSince2000(time, kNotObserved, seconds)) << time.year;
        ASSERT_EQ(seconds, (now - kEpoch + 28min + 15s).count()) << time.year;
        const bool inside = now >= sys_days(date.year() / April / Sunday[1]) + 2h &&
                            now < sys_days(date.year() / October / Sunday[1]) + 1h;
        ASSERT_EQ(InDaylightSavingPeriod(time), inside) << time.year << '-' << time.month << '-' << time.day;
    }
}

TEST(Calendar, Refuses_what_no_calendar_has_and_what_the_clock_cannot_count) {
    const CalendarTime cases[] = {
        {1999, 12, 31, 5, 0, 0, 0}, {2137, 1, 1, 2, 0, 0, 0},  {2026, 0, 1, 0, 0, 0, 0},
        {2026, 13, 1, 0, 0, 0, 0},  {2026, 1, 0, 0, 0, 0, 0},  {2026, 4, 31, 0, 0, 0, 0},
        {2100, 2, 29, 1, 0, 0, 0},  {2026, 2, 29, 0, 0, 0, 0}, {2026, 1, 1, 4, 24, 0, 0},
        {2026, 1, 1, 4, 0, 60, 0},  {2026, 1, 1, 4, 0, 0, 60}, {2026, 1, 1, 4, -1, 0, 0},
    };
    for (const CalendarTime& time : cases) {
        uint32_t seconds = 0;
        EXPECT_FALSE(SecondsSince2000(time, kNotObserved, seconds)) << time.year << ' ' << time.month;
    }
}

TEST(ClockText, Holds_the_computer_the_time_and_the_zone) {
    const CalendarTime summer = {2012, 7, 1, 0, 12, 0, 0};
    const std::pair<HostClock, const char*> cases[] = {
        {{summer, 120, kObserved}, "0123456789ABCDEF1782EA300078"},
        {{summer, 120, kNotObserved}, "0123456789ABCDEF1782F8400078"},
        {{summer, -300, kNotObserved}, "0123456789ABCDEF1782F840112C"},
        {{summer, 0, kNotObserved}, "0123456789ABCDEF1782F8400000"},
        {{{2000, 1, 1, 6, 0, 0, 0}, -1, kObserved}, "0123456789ABCDEF000000001001"},
    };
    std::string text;
    for (const auto& [clock, expected] : cases) {
        EXPECT_TRUE(FormatClockText(0x0123456789ABCDEF, clock, text));
        EXPECT_EQ(expected, text);
    }
    EXPECT_FALSE(FormatClockText(1, {{2137, 1, 1, 2, 0, 0, 0}, 0, kNotObserved}, text));
}

TEST(HostClock, Knows_whether_its_zone_has_a_daylight_saving_time_at_all) {
    char observing[] = "TZ=EST5EDT";
    char never[] = "TZ=JST-9";
    for (const auto& [zone, observes] : {std::pair(observing, kObserved), {never, kNotObserved}}) {
        putenv(zone);
        HostClock clock = {};
        EXPECT_TRUE(ReadHostClock(clock));
        EXPECT_EQ(clock.observesDaylightSaving, observes) << zone;
    }
}

}  // namespace
