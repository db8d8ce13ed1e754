// The calendar and the clock text, against numbers of another calendar program.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "settings/calendar.h"
#include "settings/clock_text.h"

namespace {

constexpr bool kObserved = true;
constexpr bool kNotObserved = false;

TEST(Calendar, Counts_the_seconds_from_2000_to_the_last_second_that_fits) {
    constexpr std::pair<CalendarTime, uint32_t> kCases[] = {
        {{2000, 1, 1, 6, 0, 0, 0}, 0},
        {{2000, 2, 29, 2, 0, 0, 0}, 5097600},
        {{2000, 12, 31, 0, 23, 59, 59}, 31622399},
        {{2001, 3, 1, 4, 0, 0, 0}, 36720000},
        {{2012, 7, 1, 0, 12, 0, 0}, 394459200},
        {{2026, 11, 24, 2, 19, 7, 5}, 848862425},
        {{2100, 2, 28, 0, 23, 59, 59}, 3160857599},
        {{2100, 3, 1, 1, 0, 0, 0}, 3160857600},
        {{2136, 2, 7, 2, 6, 28, 15}, 4294967295},
    };
    for (const auto& [time, expected] : kCases) {
        uint32_t seconds = 1;
        EXPECT_TRUE(SecondsSince2000(time, kNotObserved, seconds));
        EXPECT_EQ(expected, seconds) << time.year;
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

TEST(Calendar, Daylight_saving_begins_and_ends_on_the_first_Sundays_of_April_and_October) {
    // 2012: April 1 and October 7 are Sundays. 2026: April 5 and October 4.
    constexpr CalendarTime kInside[] = {
        {2012, 4, 1, 0, 2, 0, 0},   {2012, 4, 7, 6, 0, 0, 0},   {2026, 4, 5, 0, 2, 0, 0},
        {2026, 4, 6, 1, 0, 0, 0},   {2026, 10, 3, 6, 23, 0, 0}, {2026, 10, 4, 0, 0, 59, 0},
        {2012, 10, 6, 6, 12, 0, 0}, {2026, 9, 30, 3, 23, 0, 0},
    };
    constexpr CalendarTime kOutside[] = {
        {2012, 4, 1, 0, 1, 59, 0},  {2026, 4, 4, 6, 23, 0, 0}, {2026, 4, 5, 0, 1, 0, 0},
        {2026, 10, 4, 0, 1, 0, 0},  {2026, 10, 5, 1, 0, 0, 0}, {2012, 10, 31, 3, 0, 0, 0},
        {2026, 3, 31, 2, 23, 0, 0}, {2026, 11, 1, 0, 0, 0, 0},
    };
    for (const CalendarTime& time : kInside)
        EXPECT_TRUE(InDaylightSavingPeriod(time)) << &time - kInside;
    for (const CalendarTime& time : kOutside)
        EXPECT_FALSE(InDaylightSavingPeriod(time)) << &time - kOutside;
}

TEST(ClockText, Holds_the_computer_the_time_and_the_zone) {
    const CalendarTime summer = {2012, 7, 1, 0, 12, 0, 0};
    const std::pair<HostClock, const char*> cases[] = {
        {{summer, 120, kObserved}, "0123456789ABCDEF1782EA300078"},
        {{summer, 120, kNotObserved}, "0123456789ABCDEF1782F8400078"},
        {{summer, -300, kNotObserved}, "0123456789ABCDEF1782F840112C"},
        {{{2000, 1, 1, 6, 0, 0, 0}, -1, kObserved}, "0123456789ABCDEF000000001001"},
    };
    std::string text;
    for (const auto& [clock, expected] : cases) {
        EXPECT_TRUE(FormatClockText(0x0123456789ABCDEF, clock, text));
        EXPECT_EQ(expected, text);
    }
    EXPECT_FALSE(FormatClockText(1, {{2137, 1, 1, 2, 0, 0, 0}, 0, kNotObserved}, text));
}

}  // namespace
