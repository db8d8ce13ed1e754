// Identifiers and the clock.
#include <windows.h>
// The headers below need the one above.
#include <objbase.h>
#include <rpc.h>
#include <time.h>

#include <cerrno>

#include "support.h"

namespace {

constexpr __time64_t kNoon = 1'341'144'000;  // 2012-07-01 12:00:00 UTC

std::string TextOf(GUID guid) {
    RPC_WSTR text = nullptr;
    EXPECT_EQ(UuidToStringW(&guid, &text), RPC_S_OK);
    std::string narrow;
    for (const unsigned short* unit = text; *unit != 0; ++unit)
        narrow.push_back(static_cast<char>(*unit));
    EXPECT_EQ(RpcStringFreeW(&text), RPC_S_OK);
    return narrow;
}

std::string FreshGuidText() {
    GUID guid = {};
    EXPECT_EQ(CoCreateGuid(&guid), S_OK);
    return TextOf(guid);
}

tm Calendar(int year, int month, int day, int hour) {
    tm time = {};
    time.tm_year = year - 1900;
    time.tm_mon = month - 1;
    time.tm_mday = day;
    time.tm_hour = hour;
    time.tm_isdst = -1;
    return time;
}

}  // namespace

TEST(Identifiers, Have_five_groups_of_lower_case_digits_and_differ) {
    const std::string text = FreshGuidText();
    ASSERT_EQ(text.size(), 36u);
    EXPECT_EQ(text.find_first_not_of("0123456789abcdef-"), std::string::npos);
    for (const std::size_t dash : {8, 13, 18, 23})
        EXPECT_EQ(text[dash], '-');
    EXPECT_NE(text, FreshGuidText());
    bool ownDigits = false;
    for (int i = 0; i < 16; ++i) {
        const std::string random = FreshGuidText();
        EXPECT_EQ(random[14], '4');
        EXPECT_NE(std::string("89ab").find(random[19]), std::string::npos);
        ownDigits |= random[20] != random[22];
    }
    EXPECT_TRUE(ownDigits);

    const GUID known = {0x0123ABCD, 0x4567, 0x89EF, {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0xF8}};
    EXPECT_EQ(TextOf(known), "0123abcd-4567-89ef-0102-0304050607f8");
}

TEST(Clock, Calendar_times_without_a_zone_are_seconds_since_1970) {
    tm noon = Calendar(2012, 7, 1, 12);
    EXPECT_EQ(_mkgmtime64(&noon), kNoon);
    tm late = Calendar(2136, 12, 31, 23);
    EXPECT_EQ(_mkgmtime64(&late), 5'270'050'800);
    tm early = Calendar(1960, 1, 1, 0);
    errno = 0;
    EXPECT_EQ(_mkgmtime64(&early), -1);
    EXPECT_EQ(errno, EINVAL);
    errno = 0;
    const __time64_t before = -1;
    EXPECT_EQ(_localtime64_s(&early, &before), EINVAL);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(early.tm_mday, -1);
    EXPECT_GT(_time64(nullptr), kNoon);
}
