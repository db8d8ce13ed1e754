// Events, mutexes and waits on one and several of them, where threads meet; what needs no second thread at
// the same moment is in the random traces.
#include <stop_token>

#include "child.h"
#include "handle_support.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

void RunOnThread(const std::function<void()>& body) {
    std::thread(body).join();
}

// Joined by the end of the vector.
std::vector<std::jthread> OnThreads(int count, const std::function<void()>& body) {
    std::vector<std::jthread> threads;
    while (count-- > 0)
        threads.emplace_back(body);
    return threads;
}

// Once a wait of this thread is asleep.
std::jthread SetsSoon(HANDLE event) {
    return std::jthread([event] {
        Sleep(50);
        SetEvent(event);
    });
}

TEST(Events, A_set_wakes_a_sleeping_wait_and_a_time_out_is_never_early) {
    const Handle event = AutoEvent();
    const Clock::time_point start = Clock::now();
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(event, 60));
    EXPECT_GE(Clock::now() - start, milliseconds(60));
    const std::jthread setter = SetsSoon(event);
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event, kPatience));
}

TEST(Events, A_manual_reset_event_that_is_set_and_reset_at_once_wakes_all_who_wait) {
    const Handle event = ManualEvent();
    std::atomic<int> woken{0};
    std::atomic<int> begun{0};
    auto waiters = OnThreads(3, [&] {
        ++begun;
        woken += WaitForSingleObject(event, kPatience) == WAIT_OBJECT_0;
    });
    while (begun < 3)
        Sleep(1);
    Sleep(250);  // until they wait
    SetEvent(event);
    ResetEvent(event);
    waiters.clear();
    EXPECT_EQ(3, woken);
}

TEST(Events, Each_set_of_an_auto_reset_event_is_taken_exactly_once) {
    constexpr int kRounds = 2000;
    const Handle event = AutoEvent();
    const Handle taken = AutoEvent();
    std::atomic<int> count{0};
    std::atomic<bool> stop{false};
    auto waiters = OnThreads(3, [&] {
        while (!stop)
            if (WaitForSingleObject(event, 20) == WAIT_OBJECT_0) {
                ++count;
                SetEvent(taken);
            }
    });
    for (int i = 0; i < kRounds; ++i) {
        SetEvent(event);
        ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(taken, kPatience));
    }
    stop = true;
    waiters.clear();
    EXPECT_EQ(kRounds, count);
}

TEST(Mutexes, A_thread_that_ends_abandons_what_it_holds_once) {
    for (const WideText& name : {WideText(), FreshName()}) {
        const Handle mutex = Mutex(name);
        std::atomic<bool> owned{false};
        std::thread owner([&] {
            WaitForSingleObject(mutex, INFINITE);
            WaitForSingleObject(mutex, INFINITE);
            owned = true;
            Sleep(50);
        });
        while (!owned)
            Sleep(1);
        EXPECT_EQ(WAIT_ABANDONED, WaitForSingleObject(mutex, kPatience));
        owner.join();
        EXPECT_TRUE(ReleaseMutex(mutex));
        EXPECT_FALSE(ReleaseMutex(mutex));
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(mutex, 0));
        EXPECT_TRUE(ReleaseMutex(mutex));
    }
}

TEST(Mutexes, One_that_was_closed_while_owned_is_released_through_another_handle) {
    const WideText name = FreshName();
    const Handle opened = ManualEvent(name + TEXT("Opened"));
    const Handle kept = Mutex();
    RunOnThread([&] {
        WaitForSingleObject(kept, 0);
        Handle first(CreateMutexW(nullptr, TRUE, name.c_str()));
        const Program other(OwnCommand(TEXT("take ") + name));
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(opened, kPatience));
        first.Close();
        const Handle second = Mutex(name);
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(second, 0));
        EXPECT_TRUE(ReleaseMutex(second));
        EXPECT_TRUE(ReleaseMutex(second));
        EXPECT_FALSE(ReleaseMutex(second));
        EXPECT_EQ(3u, other.WaitForExitCode());
    });
    EXPECT_EQ(WAIT_ABANDONED, WaitForSingleObject(kept, 0)) << "the others are abandoned as ever";
    EXPECT_TRUE(ReleaseMutex(kept));
}

// However many takes an owner has had, and whether or not another goes on with it.
TEST(Mutexes, A_waiter_comes_soon_after_a_release) {
    const Handle mutex = Mutex();
    const Handle begins = AutoEvent();
    milliseconds soonest = milliseconds::max();
    for (int round = 0; round < 5; ++round) {
        std::atomic<Clock::time_point> released;
        std::thread waiter([&] {
            WaitForSingleObject(begins, kPatience);
            EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(mutex, kPatience));
            soonest = std::min(soonest, std::chrono::ceil<milliseconds>(Clock::now() - released.load()));
            ReleaseMutex(mutex);
        });
        for (int takes = 1; takes < 200; ++takes) {
            WaitForSingleObject(mutex, kPatience);
            ReleaseMutex(mutex);
        }
        WaitForSingleObject(mutex, kPatience);
        SetEvent(begins);
        Sleep(2);
        released = Clock::now();
        ReleaseMutex(mutex);
        waiter.join();
    }
    EXPECT_LE(soonest, milliseconds(5));
}

TEST(Mutexes, One_thread_at_a_time_is_inside) {
    const Handle mutex = Mutex(FreshName());
    int inside = 0;
    int counted = 0;
    OnThreads(4, [&] {
        for (int i = 0; i < 2000; ++i) {
            ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(mutex, kPatience));
            ASSERT_EQ(1, ++inside);
            ++counted;
            --inside;
            ASSERT_TRUE(ReleaseMutex(mutex));
        }
    });
    EXPECT_EQ(8000, counted);
}

TEST(Waits, All_are_taken_together_or_none) {
    const Handle a = AutoEvent();
    const Handle b = AutoEvent();
    const Handle mutex = Mutex();
    const HANDLE all[] = {a, mutex, b};
    SetEvent(a);
    EXPECT_EQ(WAIT_TIMEOUT, WaitForMultipleObjects(3, all, TRUE, 30));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(a, 0)) << "the signal was not kept";
    EXPECT_FALSE(ReleaseMutex(mutex));
    const std::jthread setter([&] {
        Sleep(20);
        SetEvent(b);
        Sleep(20);
        SetEvent(a);
    });
    EXPECT_EQ(WAIT_OBJECT_0, WaitForMultipleObjects(3, all, TRUE, kPatience));
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_EQ(WAIT_OBJECT_0 + 1, WaitForMultipleObjects(3, all, FALSE, 0))
        << "only the mutex is left to take";
    EXPECT_TRUE(ReleaseMutex(mutex));
}

TEST(Waits, A_set_of_any_object_wakes_a_sleeping_wait) {
    for (DWORD i = 0; i < 3; ++i) {
        const Handle a = AutoEvent();
        const Handle b = ManualEvent(FreshName());
        const Handle c = AutoEvent(FreshName());
        const HANDLE all[] = {a, b, c};
        const std::jthread setter = SetsSoon(all[i]);
        EXPECT_EQ(WAIT_OBJECT_0 + i, WaitForMultipleObjects(3, all, FALSE, kPatience));
    }
}

TEST(Waits, What_is_given_back_was_not_taken) {
    const Handle event = AutoEvent();
    const Handle mutex = Mutex();
    const auto abandon = [&] { RunOnThread([&] { WaitForSingleObject(mutex, kPatience); }); };
    abandon();
    const std::jthread thief([&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            SetEvent(event);
            WaitForSingleObject(event, 0);
        }
    });
    std::vector<Handle> kept;
    std::vector<HANDLE> all = {mutex};
    for (int i = 0; i < 20; ++i)
        all.push_back(kept.emplace_back(AutoEvent()));
    all.push_back(event);
    const auto setKept = [&] {
        for (const Handle& each : kept)
            SetEvent(each);
    };
    setKept();
    // So many that the last one is often gone between the look at all and its turn.
    const Clock::time_point end = Clock::now() + milliseconds(300);
    while (Clock::now() < end) {
        const DWORD result = WaitForMultipleObjects(22, all.data(), TRUE, 0);
        if (result == WAIT_TIMEOUT) continue;
        ASSERT_EQ(WAIT_ABANDONED, result);
        setKept();
        ReleaseMutex(mutex);
        abandon();
    }
    for (const Handle& each : kept)
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(each, 0));
}

TEST(Waits, Odd_arguments_are_refused_with_87) {
    const Handle event = AutoEvent(FreshName());
    const std::vector<HANDLE> many(65, event);
    for (const DWORD count : {0, 65})
        EXPECT_REFUSED(87, WaitForMultipleObjects(count, many.data(), FALSE, 0) != WAIT_FAILED);
}

TEST(Waits, Closing_a_handle_while_another_thread_waits_is_safe) {
    // While it looks, and once it sleeps.
    for (int round = 0; round < 100; ++round) {
        HANDLE event = CreateEventW(nullptr, FALSE, FALSE, FreshName().c_str());
        std::atomic<bool> begun{false};
        std::thread waiter([&] {
            begun = true;
            WaitForSingleObject(event, round == 0 ? 100 : 1);
        });
        while (!begun)
            std::this_thread::yield();
        if (round == 0) Sleep(30);
        EXPECT_TRUE(CloseHandle(event));
        waiter.join();
    }
}

TEST(Waits, Leave_the_last_error_value_alone) {
    const Handle event = ManualEvent();
    const Handle mutex = Mutex();
    SetLastError(77);
    SetEvent(event);
    WaitForSingleObject(event, 0);
    ResetEvent(event);
    WaitForSingleObject(event, 1);
    WaitForSingleObject(mutex, 0);
    ReleaseMutex(mutex);
    EXPECT_EQ(77u, GetLastError());
}

TEST(CriticalSections, Keep_threads_apart_and_count_levels) {
    CRITICAL_SECTION section;
    InitializeCriticalSection(&section);
    int counted = 0;
    OnThreads(4, [&] {
        for (int i = 0; i < 5000; ++i) {
            EnterCriticalSection(&section);
            EnterCriticalSection(&section);
            ++counted;
            LeaveCriticalSection(&section);
            LeaveCriticalSection(&section);
        }
    });
    EXPECT_EQ(20000, counted);
    EnterCriticalSection(&section);
    RunOnThread([&] { EXPECT_FALSE(TryEnterCriticalSection(&section)); });
    auto sleepers = OnThreads(2, [&] {
        EnterCriticalSection(&section);
        LeaveCriticalSection(&section);
    });
    Sleep(50);
    LeaveCriticalSection(&section);
    sleepers.clear();
    DeleteCriticalSection(&section);
}

TEST(ThreadLocalSlots, Belong_to_one_thread_and_begin_empty) {
    const DWORD index = TlsAlloc();
    ASSERT_NE(TLS_OUT_OF_INDEXES, index);
    int mine = 0;
    EXPECT_TRUE(TlsSetValue(index, &mine));
    RunOnThread([&] { EXPECT_EQ(nullptr, TlsGetValue(index)); });
    SetLastError(77);
    EXPECT_EQ(&mine, TlsGetValue(index));
    EXPECT_EQ(0u, GetLastError());
    EXPECT_TRUE(TlsFree(index));
}

TEST(ThreadLocalSlots, Have_one_owner_at_a_time) {
    std::vector<std::atomic<bool>> owned(1088);
    std::atomic<int> twice{0};
    OnThreads(2, [&] {
        for (int i = 0; i < 20'000; ++i) {
            const DWORD index = TlsAlloc();
            twice += owned.at(index).exchange(true);
            owned[index] = false;
            TlsFree(index);
        }
    });
    EXPECT_EQ(0, twice);
}

}  // namespace
