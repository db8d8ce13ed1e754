// Many clients on one channel while one of them is killed again and again.
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <iostream>
#include <random>
#include <thread>

#include "channel_puppet.h"
#include "working_client.h"

namespace {

using std::chrono::milliseconds;

constexpr int kTimeoutMs = 2000;

WorkingClient Start(int threads) {
    WorkingClient client("Hammer", threads, kTimeoutMs);
    client.Begin();
    return client;
}

TEST(Hammer, Survivors_of_kills_never_hang_and_never_see_anothers_reply) {
    ChannelPuppet server;
    ASSERT_EQ(1u, server.Do("open server Hammer 65791").number);
    ASSERT_EQ(1u, server.Do("dispatch").number);
    std::array<WorkingClient, 2> survivors = {Start(2), Start(2)};
    std::mt19937 random(20261124);
    long kills = 0;
    const auto end = std::chrono::steady_clock::now() + milliseconds(10'000);
    while (std::chrono::steady_clock::now() < end) {
        WorkingClient victim = Start(1);
        std::this_thread::sleep_for(milliseconds(random() % 60));
        victim.Process().Kill();
        victim.Process().Wait();
        ++kills;
    }
    for (WorkingClient& survivor : survivors) {
        const ExchangeCounts counts = survivor.Counts();
        std::cout << kills << " kills: " << counts << '\n';
        EXPECT_GT(counts.good, 1000);
        EXPECT_EQ(0, counts.wrong);
        EXPECT_EQ(0, counts.other);
        EXPECT_LE(counts.Failures(), kills);
        // A reply knows its process, not its request: the other thread may get what one has given up.
        EXPECT_LE(counts.late, counts.failed);
        EXPECT_LT(counts.longestMs, 2 * kTimeoutMs + 250);
    }
    // A reply that one of them gave up waits for its process as long as that lives.
    for (WorkingClient& survivor : survivors)
        survivor.Close();
    // Longer than the one time-out that it may cost to find the last one's request.
    WorkingClient afterwards = Start(1);
    std::this_thread::sleep_for(milliseconds(2 * kTimeoutMs));
    const ExchangeCounts counts = afterwards.Counts();
    EXPECT_GT(counts.good, 100);
    EXPECT_EQ(0, counts.other + counts.late + counts.wrong);
    EXPECT_LE(counts.Failures(), 2);
}

}  // namespace
