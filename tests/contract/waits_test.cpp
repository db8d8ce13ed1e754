// Events, mutexes and waits on one and several of them, where threads meet; what needs no second thread at
// the same moment is in the random traces.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <latch>
#include <thread>
#include <vector>

#include "handle_support.h"
#include "on_wine.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Generous: a loaded machine wakes threads late, never early.
constexpr DWORD kLong = 5000;

void RunOnThread(const std::function<void()>& body) {
    std::thread(body).join();
}

void RunOnThreads(int count, const std::function<void()>& body) {
    std::vector<std::jthread> threads;
    while (count-- > 0)
        threads.emplace_back(body);
}

TEST(Events, A_set_wakes_a_sleeping_wait_and_a_time_out_is_never_early) {
    const Handle event = AutoEvent();
    const Clock::time_point start = Clock::now();
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(event.Get(), 60));
    EXPECT_GE(Clock::now() - start, milliseconds(60));
    std::thread setter([&] {
        Sleep(50);
        SetEvent(event.Get());
    });
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event.Get(), kLong));
    setter.join();
}

TEST(Events, A_manual_reset_event_that_is_set_and_reset_at_once_wakes_all_who_wait) {
    const Handle event = ManualEvent();
    std::atomic<int> woken{0};
    std::latch begun(3);
    std::vector<std::thread> waiters;
    for (int i = 0; i < 3; ++i)
        waiters.emplace_back([&] {
            begun.count_down();
            woken += WaitForSingleObject(event.Get(), kLong) == WAIT_OBJECT_0;
        });
    begun.wait();
    Sleep(250);  // until they wait
    SetEvent(event.Get());
    ResetEvent(event.Get());
    for (std::thread& waiter : waiters)
        waiter.join();
    EXPECT_EQ(3, woken);
}

TEST(Events, Each_set_of_an_auto_reset_event_is_taken_exactly_once) {
    constexpr int kRounds = 2000;
    const Handle event = AutoEvent();
    const Handle taken = AutoEvent();
    std::atomic<int> count{0};
    std::atomic<bool> stop{false};
    std::vector<std::thread> waiters;
    for (int i = 0; i < 3; ++i)
        waiters.emplace_back([&] {
            while (!stop)
                if (WaitForSingleObject(event.Get(), 20) == WAIT_OBJECT_0) {
                    ++count;
                    SetEvent(taken.Get());
                }
        });
    for (int i = 0; i < kRounds; ++i) {
        SetEvent(event.Get());
        ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(taken.Get(), kLong));
    }
    stop = true;
    for (std::thread& waiter : waiters)
        waiter.join();
    EXPECT_EQ(kRounds, count);
}

TEST(Mutexes, A_thread_that_ends_abandons_what_it_holds_once) {
    for (const WideText& name : {WideText(), FreshName()}) {
        const Handle mutex = Mutex(name);
        std::atomic<bool> owned{false};
        std::thread owner([&] {
            WaitForSingleObject(mutex.Get(), INFINITE);
            WaitForSingleObject(mutex.Get(), INFINITE);
            owned = true;
            Sleep(50);
        });
        while (!owned)
            Sleep(1);
        EXPECT_EQ(WAIT_ABANDONED, WaitForSingleObject(mutex.Get(), kLong));
        owner.join();
        EXPECT_TRUE(ReleaseMutex(mutex.Get()));
        EXPECT_FALSE(ReleaseMutex(mutex.Get()));
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(mutex.Get(), 0));
        EXPECT_TRUE(ReleaseMutex(mutex.Get()));
    }
}

TEST(Mutexes, One_thread_at_a_time_is_inside) {
    const Handle mutex = Mutex(FreshName());
    int inside = 0;
    int counted = 0;
    RunOnThreads(4, [&] {
        for (int i = 0; i < 2000; ++i) {
            ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(mutex.Get(), kLong));
            ASSERT_EQ(1, ++inside);
            ++counted;
            --inside;
            ASSERT_TRUE(ReleaseMutex(mutex.Get()));
        }
    });
    EXPECT_EQ(8000, counted);
}

TEST(Waits, All_are_taken_together_or_none) {
    const Handle a = AutoEvent();
    const Handle b = AutoEvent();
    const Handle mutex = Mutex();
    const HANDLE all[] = {a.Get(), mutex.Get(), b.Get()};
    SetEvent(a.Get());
    EXPECT_EQ(WAIT_TIMEOUT, WaitForMultipleObjects(3, all, TRUE, 30));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(a.Get(), 0)) << "the signal was not kept";
    EXPECT_FALSE(ReleaseMutex(mutex.Get()));
    std::thread setter([&] {
        Sleep(20);
        SetEvent(b.Get());
        Sleep(20);
        SetEvent(a.Get());
    });
    EXPECT_EQ(WAIT_OBJECT_0, WaitForMultipleObjects(3, all, TRUE, kLong));
    setter.join();
    EXPECT_TRUE(ReleaseMutex(mutex.Get()));
    EXPECT_EQ(WAIT_OBJECT_0 + 1, WaitForMultipleObjects(3, all, FALSE, 0))
        << "only the mutex is left to take";
    EXPECT_TRUE(ReleaseMutex(mutex.Get()));
}

TEST(Waits, A_set_of_any_object_wakes_a_sleeping_wait) {
    for (DWORD i = 0; i < 3; ++i) {
        const Handle a = AutoEvent();
        const Handle b = ManualEvent(FreshName());
        const Handle c = AutoEvent(FreshName());
        const HANDLE all[] = {a.Get(), b.Get(), c.Get()};
        std::thread setter([&] {
            Sleep(50);
            SetEvent(all[i]);
        });
        EXPECT_EQ(WAIT_OBJECT_0 + i, WaitForMultipleObjects(3, all, FALSE, kLong));
        setter.join();
    }
}

TEST(Waits, For_all_of_one_object_twice_is_refused_with_87__not_on_Wine) {
    if (OnWine()) GTEST_SKIP() << "Wine 8 does not look whether a handle stands twice";
    const Handle event = AutoEvent(FreshName());
    const HANDLE twice[] = {event.Get(), event.Get()};
    EXPECT_EQ(WAIT_FAILED, WaitForMultipleObjects(2, twice, TRUE, 0));
    EXPECT_EQ(87u, GetLastError());
}

TEST(Waits, Odd_arguments_are_refused_with_87) {
    const Handle event = AutoEvent(FreshName());
    std::vector<HANDLE> many(65, event.Get());
    const auto refused = [](DWORD result) {
        EXPECT_EQ(WAIT_FAILED, result);
        EXPECT_EQ(87u, GetLastError());
    };
    refused(WaitForMultipleObjects(0, many.data(), FALSE, 0));
    refused(WaitForMultipleObjects(65, many.data(), FALSE, 0));
}

TEST(Waits, Closing_a_handle_while_another_thread_waits_is_safe) {
    HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    std::thread waiter([&] { WaitForSingleObject(event, 100); });
    Sleep(30);
    EXPECT_TRUE(CloseHandle(event));
    waiter.join();
}

TEST(Waits, Leave_the_last_error_value_alone) {
    const Handle event = ManualEvent();
    const Handle mutex = Mutex();
    SetLastError(77);
    SetEvent(event.Get());
    WaitForSingleObject(event.Get(), 0);
    ResetEvent(event.Get());
    WaitForSingleObject(event.Get(), 1);
    WaitForSingleObject(mutex.Get(), 0);
    ReleaseMutex(mutex.Get());
    EXPECT_EQ(77u, GetLastError());
}

TEST(CriticalSections, Keep_threads_apart_and_count_levels) {
    CRITICAL_SECTION section;
    InitializeCriticalSection(&section);
    int counted = 0;
    RunOnThreads(4, [&] {
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
    LeaveCriticalSection(&section);
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

}  // namespace
