// Many clients on one channel while one of them is killed again and again.
#include <windows.h>

#include <array>
#include <iostream>

#include "channel_puppet.h"
#include "working_client.h"

namespace {

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
    constexpr int kKills = 100;
    for (int i = 0; i < kKills; ++i) {
        WorkingClient victim = Start(1);
        Sleep(static_cast<DWORD>(i * 7 % 60));
        victim.Process().Kill();
        victim.Process().Wait();
    }
    for (WorkingClient& survivor : survivors) {
        const ExchangeCounts counts = survivor.Counts();
        std::cout << kKills << " kills: " << counts << '\n';
        EXPECT_GT(counts.good, 1000);
        EXPECT_EQ(0, counts.wrong + counts.other);
        EXPECT_LE(counts.failed, kKills);
        // A reply knows its process, not its request: the other thread may get what one has given up.
        EXPECT_LE(counts.late, counts.failed);
        EXPECT_LT(counts.longestMs, 2 * kTimeoutMs + 250);
    }
    // A reply that one of them gave up waits for its process as long as that lives.
    for (WorkingClient& survivor : survivors)
        survivor.Close();
    // Longer than the one time-out that it may cost to find the last one's request.
    WorkingClient afterwards = Start(1);
    Sleep(2 * kTimeoutMs);
    const ExchangeCounts counts = afterwards.Counts();
    EXPECT_GT(counts.good, 100);
    EXPECT_EQ(0, counts.other + counts.late + counts.wrong);
    EXPECT_LE(counts.Failures(), 2);
}

}  // namespace
