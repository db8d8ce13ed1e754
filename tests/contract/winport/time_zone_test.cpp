// A running process changes its time zone here; under Wine the zone is settled when the process starts.
#include <gtest/gtest.h>
#include <time.h>

#include <cerrno>

#include "own_folder.h"

namespace {

constexpr __time64_t kNoon = 1'341'144'000;  // 2012-07-01 12:00:00 UTC

}  // namespace

TEST(Clock, The_zone_moves_local_time_and_says_whether_it_knows_daylight_saving) {
    const struct {
        const char* zone;
        int eastOfUtc;  // seconds on that day
        bool observes;
    } rows[] = {{"EST5EDT", -4 * 3600, true},
                {"CET-1CEST", 2 * 3600, true},
                {"JST-9", 9 * 3600, false},
                {"UTC0", 0, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.zone);
        SetVariable("TZ", row.zone);
        _tzset();
        EXPECT_EQ(_daylight != 0, row.observes);
        tm local = {};
        ASSERT_EQ(_localtime64_s(&local, &kNoon), 0);
        EXPECT_EQ(local.tm_isdst > 0, row.observes);
        tm asUtc = local;
        EXPECT_EQ(_mkgmtime64(&asUtc) - _mktime64(&local), row.eastOfUtc);
        // 1970-01-01 0:00 UTC, in the east and in the west of it.
        tm first = {};
        first.tm_year = 69;
        first.tm_mon = 11;
        first.tm_mday = 31;
        first.tm_sec = 24 * 3600 + (row.observes ? row.eastOfUtc - 3600 : row.eastOfUtc);
        EXPECT_EQ(_mktime64(&first), 0);
    }
    EXPECT_EQ(_mktime64(nullptr), -1);
    const __time64_t after3000 = 32'535'216'000;
    tm none = {};
    EXPECT_EQ(_localtime64_s(&none, &after3000), EINVAL);
    SetVariable("TZ", "UTC0");
    _tzset();
}
