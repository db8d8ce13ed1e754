// Waits beside what those leave who were killed in the middle of one, in the page that an object is, and in a
// sandbox.
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <ctime>

#include "forked.h"
#include "handle_support.h"
#include "page_of_object.h"

namespace {

constexpr uint32_t kDead = winport::kLastToken;  // no thread had it
constexpr uint32_t kDeadToo = kDead - 1;

TEST(Killed_waiters, Are_in_nobodys_way_to_a_free_mutex) {
    const struct {
        const char* what;
        uint32_t owner, heir, sleepers;
        bool isAbandoned;
    } left[] = {
        {"the heir", 0, kDead, 0, false},
        {"the heir before a sleeper", 0, kDead, 1, false},
        {"the sleeper for whom the place is kept", 0, winport::kHeirToCome, 1, false},
        {"the owner and the heir", kDead, kDeadToo, 0, true},
    };
    const Handle never = AutoEvent();
    const Handle always = ManualEvent();
    SetEvent(always);
    const auto several = [](HANDLE mutex, HANDLE event, bool all, DWORD time) {
        const HANDLE both[] = {mutex, event};
        return WaitForMultipleObjects(2, both, all, time);
    };
    const std::function<DWORD(HANDLE)> waits[] = {
        [](HANDLE mutex) { return WaitForSingleObject(mutex, 0); },
        [](HANDLE mutex) { return WaitForSingleObject(mutex, 10); },
        [&](HANDLE mutex) { return several(mutex, never, false, 0); },
        [&](HANDLE mutex) { return several(mutex, never, false, kPatience); },
        [&](HANDLE mutex) { return several(mutex, always, true, 0); },
        [&](HANDLE mutex) { return several(mutex, always, true, kPatience); },
    };
    for (const auto& killed : left)
        for (size_t i = 0; i < std::size(waits); ++i) {
            SCOPED_TRACE(std::string(killed.what) + ", wait " + std::to_string(i));
            const WideText name = FreshName();
            const Handle mutex = Mutex(name);
            const Page page(name);
            page->queueSleepers = killed.sleepers;
            page->heir = killed.heir;
            page->word = killed.owner;
            EXPECT_EQ(killed.isAbandoned ? WAIT_ABANDONED : WAIT_OBJECT_0, waits[i](mutex));
            EXPECT_TRUE(ReleaseMutex(mutex));
        }
}

TEST(Killed_waiters, Who_set_an_event_and_woke_nobody_are_found_out) {
    const WideText name = FreshName();
    const Handle event = AutoEvent(name);
    const Page page(name);
    std::jthread setter([&] {
        while (page->word != winport::kEventSleepers)
            Sleep(1);
        page->word = winport::kEventSignaled;
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event, kPatience));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
}

// Refuses a call of the system in this process from here on.
bool Refuse(unsigned call, unsigned error) {
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter = {std::size(program), program};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

// Two that leave the signal to one waiter are slept on in another way than others are. The second wait finds
// what the first one left in the objects.
TEST(Sandbox, A_wait_for_several_objects_sleeps_although_futex_waitv_is_refused) {
    constexpr unsigned kFutexWaitv = 449;
    const Handle a = AutoEvent();
    const Handle alike = AutoEvent();
    const Handle other = ManualEvent();
    const struct {
        HANDLE second;
        BOOL all;
        unsigned refusal;
    } rows[] = {{alike, FALSE, 0},     {other, TRUE, 0},       {other, FALSE, 0},
                {other, FALSE, EPERM}, {other, FALSE, ENOSYS}, {other, FALSE, EACCES}};
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        EXPECT_TRUE(HoldsInChild([&] {
            const HANDLE both[] = {a, row.second};
            if (row.refusal != 0 && !Refuse(kFutexWaitv, row.refusal)) return false;
            const std::clock_t before = std::clock();
            for (int wait = 0; wait < 2; ++wait)
                if (WaitForMultipleObjects(2, both, row.all, 150) != WAIT_TIMEOUT) return false;
            return std::clock() - before < CLOCKS_PER_SEC / 15;
        }));
    }
}

}  // namespace
