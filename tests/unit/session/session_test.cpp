// Of the session, what needs no counterpart: verdicts, time, and the refusals before anything is sent.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kestrel/sdk_errors.h"
#include "session/kestrel_sdk.h"
#include "session/remaining_time.h"
#include "session/response_judgement.h"
#include "session/timeout_announcement.h"

using namespace session;

TEST(Judgement, Every_response_number_has_its_verdict) {
    const std::map<uint32_t, std::vector<uint32_t>> numbersOfError = {
        {0, {0, 1, 101, 1000, 4000, 4199, 100000}},
        {31, {1001, 1998, 2000, 3401, 3999, 4200, 99999, 100001, 100005, 4294967295u}},
        {22, {3400}},
        {23, {3450}},
        {170, {1999}},
        {4319, {100003, 100007, 100008}},
        {1460, {100004, 100103, 100104}},
        {0xE0000003, {100009}},
        {2, {100113}},
        {1392, {100114}},
    };
    for (const auto& [error, numbers] : numbersOfError)
        for (const uint32_t number : numbers)
            EXPECT_EQ(ErrorOfResponse(number), error) << number;
}

TEST(RemainingTimes, Nothing_is_left_when_the_time_is_up_or_the_count_has_wrapped) {
    EXPECT_EQ(RemainingTime::At(1000, 5000, 1000), 5000u);
    EXPECT_EQ(RemainingTime::At(1000, 5000, 5999), 1u);
    EXPECT_EQ(RemainingTime::At(1000, 5000, 6000), 0u);
    EXPECT_EQ(RemainingTime::At(1000, 5000, 900000), 0u);
    EXPECT_EQ(RemainingTime::At(0xFFFFFF00u, 5000, 0xFFFFFFFFu), 4745u);
    EXPECT_EQ(RemainingTime::At(0xFFFFFF00u, 5000, 10), 0u);
    EXPECT_EQ(RemainingTime::At(0xFFFFFF00u, 0xFFFFFFFFu, 10), 0u) << "even of an unlimited one";
}

TEST(TimeoutAnnouncement, The_number_is_95_percent_in_double_precision_and_wraps_to_negative) {
    constexpr uint64_t kStep = 4099;  // a prime, so that every remainder occurs
    for (uint64_t timeoutMs = 0; timeoutMs <= 0xFFFFFFFFu; timeoutMs += kStep) {
        const volatile double product = static_cast<double>(timeoutMs) * 0.95;
        const auto expected = static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(product)));
        ASSERT_EQ(AnnouncedTimeout(static_cast<uint32_t>(timeoutMs)), expected) << timeoutMs;
    }
    EXPECT_EQ(AnnouncedTimeout(2260509103u), 2147483647);
    EXPECT_EQ(AnnouncedTimeout(2260509104u), -2147483648);
    EXPECT_EQ(AnnouncedTimeout(4294967295u), -214748366);
}

TEST(Session, Without_a_printer_a_request_fails_and_forgets_the_last_bad_reply) {
    const auto sdk = std::make_unique<KestrelSDK>();
    sdk->lastBadResponse = "3400,old;";
    uint32_t length = 7;
    char reply[4] = {'k', 'e', 'p', 't'};
    EXPECT_FALSE(sdk->SendCmd("A?", 2, reply, sizeof(reply), &length, 100));
    EXPECT_EQ(GetLastError(), SDK_ERROR_CHANNEL_NOT_OPEN);
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(std::string(reply, sizeof(reply)), "kept");
    EXPECT_EQ(sdk->lastBadResponse, "");
    EXPECT_EQ(sdk->lastTimeoutSent, 0u);
    EXPECT_EQ(sdk->lastResponseNum, 100000u);

    std::string_view text = "stale";
    EXPECT_FALSE(sdk->Query("A?", text, 100));
    EXPECT_EQ(GetLastError(), SDK_ERROR_CHANNEL_NOT_OPEN);
    EXPECT_EQ(text, "");
    for (const auto& [size, error] : {std::pair(1u, 87u), {0u, SDK_ERROR_CHANNEL_NOT_OPEN}}) {
        EXPECT_FALSE(sdk->SendCmd(nullptr, size, nullptr, 0, nullptr, 100));
        EXPECT_EQ(GetLastError(), error);
    }
}
