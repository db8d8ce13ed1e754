#include "winport/sync/poller.h"

#include <sched.h>

#include <algorithm>

namespace winport {

namespace {

constexpr uint32_t kRetryEvery = 64;    // a wait that polls although polling has not paid
constexpr uint32_t kBareLooks = 100;    // a pause costs as much as the way of an answer: not at first
constexpr uint32_t kLooksPerTime = 32;  // looks between two readings of the clock
constexpr Moment kQuietTime = 10'000;   // after this, others get the processor between looks
constexpr uint32_t kRecountEvery = 64;  // waits that slept, between two counts of the usable processors

// Polling for another process makes sense only while that process can run at the same time.
std::atomic<int> usableProcessors{0};

int CountProcessors() {
    cpu_set_t set;
    const int count = sched_getaffinity(0, sizeof(set), &set) == 0 ? CPU_COUNT(&set) : 1;
    usableProcessors.store(count, std::memory_order_relaxed);
    return count;
}

bool SeveralProcessors() {
    const int known = usableProcessors.load(std::memory_order_relaxed);
    return (known != 0 ? known : CountProcessors()) > 1;
}

void Pause() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
}

}  // namespace

uint32_t CurrentProcessor() {
    return static_cast<uint32_t>(sched_getcpu() + 1);
}

Poller::Poller(PollHistory& history, bool setterIsHere) : history_(history) {
    const uint32_t waits = ++history_.waits;
    polls_ = !setterIsHere && SeveralProcessors() && (history_.credit > 0 || waits % kRetryEvery == 0);
}

bool Poller::Again() {
    if (!polls_) return false;
    if (++looks_ % kLooksPerTime != 0) {
        if (looks_ > kBareLooks) Pause();
        return true;
    }
    const Moment now = Now();
    if (start_ == 0) start_ = now;
    if (now - start_ > kPollBudget) return false;
    if (now - start_ > kQuietTime) sched_yield();
    return true;
}

void Poller::Learn(Moment slept) {
    // Whoever never sleeps has its processors.
    if (slept != 0 && ++history_.sleeps % kRecountEvery == 0) CountProcessors();
    const int step = slept <= kPollBudget ? 1 : -1;
    history_.credit = std::clamp(history_.credit + step, 0, kBestCredit);
}

}  // namespace winport
