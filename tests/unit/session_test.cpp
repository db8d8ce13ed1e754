// Of the session, what needs no counterpart: verdicts, time, and the refusals before anything is sent.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "kestrel/sdk_errors.h"
#include "session/kestrel_sdk.h"
#include "session/remaining_time.h"
#include "session/response_judgement.h"
#include "session/timeout_announcement.h"

namespace {

constexpr std::pair<uint32_t, uint32_t> kVerdicts[] = {
    {0, 0},         {1, 0},         {101, 0},     {1000, 0},      {1001, 31},        {1998, 31},
    {1999, 170},    {2000, 31},     {3400, 22},   {3401, 31},     {3450, 23},        {3999, 31},
    {4000, 0},      {4199, 0},      {4200, 31},   {99999, 31},    {100000, 0},       {100001, 31},
    {100003, 4319}, {100004, 1460}, {100005, 31}, {100007, 4319}, {100008, 4319},    {100009, 0xE0000003},
    {100103, 1460}, {100104, 1460}, {100113, 2},  {100114, 1392}, {4294967295u, 31},
};

struct Clock {
    uint32_t start;
    uint32_t timeoutMs;
    uint32_t now;
    uint32_t left;
};
constexpr Clock kClocks[] = {
    {1000, 5000, 1000, 5000},
    {1000, 5000, 5999, 1},
    {1000, 5000, 6000, 0},
    {1000, 5000, 900000, 0},
    {1000, 0, 1000, 0},
    {0xFFFFFF00u, 5000, 0xFFFFFFFFu, 4745},
    {0xFFFFFF00u, 5000, 10, 0},         // wrapped: no time is left
    {0xFFFFFF00u, 0xFFFFFFFFu, 10, 0},  // even of an unlimited one
    {1000, 0xFFFFFFFFu, 1000, 0xFFFFFFFFu},
    {1000, 0xFFFFFFFFu, 1001, 0xFFFFFFFEu},
};

constexpr std::pair<uint32_t, int32_t> kAnnouncements[] = {
    {0, 0},
    {1, 0},
    {19, 18},
    {20, 19},
    {1000, 950},
    {5000, 4750},
    {30000, 28500},
    {2260509103u, 2147483647},
    {2260509104u, -2147483648},
    {4294967295u, -214748366},
};

class Session : public testing::Test {
  protected:
    std::unique_ptr<KestrelSDK> sdk_ = std::make_unique<KestrelSDK>();
};

}  // namespace

TEST(Judgement, Every_response_number_has_its_verdict) {
    for (const auto& [number, error] : kVerdicts)
        EXPECT_EQ(ErrorOfResponse(number), error) << number;
}

TEST(RemainingTimes, Nothing_is_left_when_the_time_is_up_or_the_count_has_wrapped) {
    for (const Clock& clock : kClocks)
        EXPECT_EQ(RemainingTime::At(clock.start, clock.timeoutMs, clock.now), clock.left) << clock.now;
}

TEST(TimeoutAnnouncement, The_number_is_95_percent_and_wraps_to_negative) {
    for (const auto& [timeoutMs, number] : kAnnouncements)
        EXPECT_EQ(AnnouncedTimeout(timeoutMs), number) << timeoutMs;
}

TEST(TimeoutAnnouncement, The_number_is_that_of_the_product_in_double_precision) {
    constexpr uint64_t kStep = 4099;  // a prime, so that every remainder occurs
    for (uint64_t timeoutMs = 0; timeoutMs <= 0xFFFFFFFFu; timeoutMs += kStep) {
        const volatile double product = static_cast<double>(timeoutMs) * 0.95;
        const auto expected = static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(product)));
        ASSERT_EQ(AnnouncedTimeout(static_cast<uint32_t>(timeoutMs)), expected) << timeoutMs;
    }
}

TEST_F(Session, Without_a_printer_a_request_fails_and_forgets_the_last_bad_reply) {
    sdk_->lastBadResponse = "3400,old;";
    uint32_t length = 7;
    char reply[4] = {'k', 'e', 'p', 't'};
    EXPECT_FALSE(sdk_->SendCmd("A?", 2, reply, sizeof(reply), &length, 100));
    EXPECT_EQ(GetLastError(), SDK_ERROR_CHANNEL_NOT_OPEN);
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(std::string(reply, sizeof(reply)), "kept");
    EXPECT_EQ(sdk_->lastBadResponse, "");
    EXPECT_EQ(sdk_->lastTimeoutSent, 0u);
    EXPECT_EQ(sdk_->lastResponseNum, 100000u);

    std::string text = "stale";
    EXPECT_FALSE(sdk_->Query("A?", text, 100));
    EXPECT_EQ(GetLastError(), SDK_ERROR_CHANNEL_NOT_OPEN);
    EXPECT_EQ(text, "");
    EXPECT_FALSE(sdk_->SetWithAck("A=1;", 100));
    EXPECT_EQ(GetLastError(), SDK_ERROR_CHANNEL_NOT_OPEN);
}

TEST_F(Session, A_missing_request_is_an_invalid_parameter) {
    EXPECT_FALSE(sdk_->SendCmd(nullptr, 1, nullptr, 0, nullptr, 100));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}
