// Waits for two events that both leave the signal to one waiter, which sleep at a bell. A wait looks by
// itself each second, which would hide a wake-up that is lost: what is said here of time is said of many
// rounds.
#include "forked.h"
#include "handle_support.h"
#include "page_of_object.h"

namespace {

using winport::kEventBell;
using winport::kEventSleepers;

// Two events, and a wait for any of them.
class TwoEvents final {
  public:
    HANDLE First() const { return first_; }
    HANDLE Second() const { return second_; }
    winport::ObjectPage& SecondPage() { return *page_.operator->(); }

    DWORD Wait(DWORD milliseconds = kPatience) const {
        const HANDLE both[] = {first_, second_};
        return WaitForMultipleObjects(2, both, FALSE, milliseconds);
    }
    // Of the second event: who sleeps has said so.
    uint32_t WordOnceSleptOn(uint32_t other = 0) {
        for (;;) {
            const uint32_t word = SecondPage().word;
            if (word != other && (word / kEventBell != 0 || (word & kEventSleepers) != 0)) return word;
            Sleep(1);
        }
    }

  private:
    WideText name_ = FreshName();
    Handle first_ = AutoEvent(FreshName());
    Handle second_ = AutoEvent(name_);
    Page page_{name_};
};

// Slow is a round that took nearly as long as a wait takes to look by itself.
void ExpectQuick(int rounds, int slowAtMost, const std::function<void(int)>& round) {
    int slow = 0;
    for (int i = 0; i < rounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        round(i);
        slow += std::chrono::steady_clock::now() - start > std::chrono::milliseconds(800);
    }
    EXPECT_LE(slow, slowAtMost);
}

TEST(Bells, Ring_for_a_sleeper_of_another_process_whichever_event_is_set) {
    const Handle answer = AutoEvent(FreshName());
    const TwoEvents asked;
    constexpr int kRounds = 3000;
    Forked counterpart([&] {
        for (int i = 0; i < kRounds; ++i) {
            if (asked.Wait() != WAIT_OBJECT_0 + i % 2) return 1;
            if (i % 3 == 0) std::this_thread::yield();
            SetEvent(answer);
        }
        return 0;
    });
    const Handle never = AutoEvent();
    const HANDLE both[] = {never, answer};
    ExpectQuick(kRounds, kRounds / 300, [&](int round) {
        SetEvent(round % 2 == 0 ? asked.First() : asked.Second());
        EXPECT_EQ(WAIT_OBJECT_0 + 1, WaitForMultipleObjects(2, both, FALSE, kPatience));
    });
    EXPECT_EQ(0, counterpart.Wait());
}

TEST(Bells, Two_who_sleep_for_the_same_are_both_woken) {
    ExpectQuick(10, 2, [](int) {
        TwoEvents events;
        std::jthread one([&] { EXPECT_EQ(WAIT_OBJECT_0 + 1, events.Wait()); });
        const uint32_t first = events.WordOnceSleptOn();
        std::jthread two([&] { EXPECT_EQ(WAIT_OBJECT_0 + 1, events.Wait()); });
        events.WordOnceSleptOn(first);
        SetEvent(events.Second());
        while ((events.SecondPage().word & winport::kEventSignaled) != 0)
            Sleep(1);
        SetEvent(events.Second());
    });
}

TEST(Bells, The_place_of_a_killed_sleeper_is_taken_over) {
    TwoEvents events;
    Forked sleeper([&] { return static_cast<int>(events.Wait()); });
    const uint32_t left = events.WordOnceSleptOn();
    ASSERT_NE(0U, left / kEventBell);
    sleeper.Kill();
    EXPECT_EQ(128 + SIGKILL, sleeper.Wait());
    std::jthread next([&] { EXPECT_EQ(WAIT_OBJECT_0, events.Wait()); });
    const uint32_t word = events.WordOnceSleptOn(left);
    EXPECT_NE(left / kEventBell, word / kEventBell);
    EXPECT_EQ(0U, word & kEventSleepers);
    SetEvent(events.First());
}

// As when a cleaner has removed the page where they are, and a process that came later has another.
TEST(Bells, Are_given_up_where_a_setter_has_others) {
    TwoEvents events;
    for (const bool isKnown : {false, true}) {
        std::jthread sleeper([&] { EXPECT_EQ(WAIT_OBJECT_0 + 1, events.Wait()); });
        const uint32_t word = events.WordOnceSleptOn();
        EXPECT_EQ(isKnown, (word & kEventSleepers) != 0);
        if (!isKnown) events.SecondPage().bellTag = 1;
        SetEvent(events.Second());
    }
    EXPECT_EQ(winport::kNoBells, events.SecondPage().bellTag);
}

}  // namespace
