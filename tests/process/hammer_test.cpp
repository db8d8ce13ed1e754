// Many clients on one channel while one of them is killed again and again.
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <thread>

#include "channel_puppet.h"
#include "hammer_counts.h"

namespace {

using std::chrono::milliseconds;

constexpr int kTimeoutMs = 2000;

ChildProcess Start(int threads, int ms) {
    ChildProcess hammer(
        {CHANNEL_HAMMER, "Hammer", std::to_string(threads), std::to_string(ms), std::to_string(kTimeoutMs)});
    EXPECT_EQ("ready", hammer.ReadLine());
    hammer.WriteLine("go");
    return hammer;
}

HammerCounts Result(ChildProcess& hammer) {
    std::istringstream line(hammer.ReadLine(std::chrono::seconds(60)).value_or(""));
    HammerCounts counts;
    line >> counts;
    return counts;
}

TEST(Hammer, Survivors_of_kills_never_hang_and_never_see_anothers_reply) {
    constexpr int kMilliseconds = 10'000;
    ChannelPuppet server;
    ASSERT_EQ(1u, server.Do("open server Hammer 65791").number);
    ASSERT_EQ(1u, server.Do("dispatch").number);
    std::array<ChildProcess, 2> survivors = {Start(2, kMilliseconds), Start(2, kMilliseconds)};
    std::mt19937 random(20261124);
    long kills = 0;
    const auto end = std::chrono::steady_clock::now() + milliseconds(kMilliseconds);
    while (std::chrono::steady_clock::now() < end) {
        ChildProcess victim = Start(1, kMilliseconds);
        std::this_thread::sleep_for(milliseconds(random() % 60));
        victim.Kill();
        victim.Wait();
        ++kills;
    }
    for (ChildProcess& survivor : survivors) {
        const HammerCounts counts = Result(survivor);
        std::cout << kills << " kills: " << counts << '\n';
        EXPECT_GT(counts.good, 1000);
        EXPECT_EQ(0, counts.wrong);
        EXPECT_EQ(0, counts.other);
        EXPECT_LE(counts.Failures(), kills);
        // A reply knows its process, not its request: the other thread may get what one has given up.
        EXPECT_LE(counts.late, counts.timedOut);
        EXPECT_LT(counts.longestMs, 2 * kTimeoutMs + 250);
    }
    // A reply that one of them gave up waits for its process as long as that lives.
    for (ChildProcess& survivor : survivors) {
        survivor.WriteLine("end");
        EXPECT_EQ(0, survivor.Wait());
    }
    // Longer than the one time-out that it may cost to find the last one's request.
    ChildProcess afterwards = Start(1, 2 * kTimeoutMs);
    const HammerCounts counts = Result(afterwards);
    EXPECT_GT(counts.good, 100);
    EXPECT_EQ(0, counts.other + counts.late + counts.wrong);
    EXPECT_LE(counts.Failures(), 2);
}

}  // namespace
