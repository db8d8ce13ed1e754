#include "winport/sync/futex.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

#ifndef SYS_futex_waitv
#define SYS_futex_waitv 449
#endif

namespace winport {

namespace {

constexpr int64_t kSecond = 1'000'000'000;
constexpr size_t kMostWords = 64;

// What is asked where there is no futex_waitv: short sleeps on one of the words.
constexpr Moment kShortSleep = 1'000'000;

timespec ToTimespec(Moment moment) {
    return {static_cast<time_t>(moment / kSecond), static_cast<long>(moment % kSecond)};
}

bool SleepOnOne(const SleepWord& word, Moment until) {
    const timespec limit = ToTimespec(until);
    // FUTEX_WAIT_BITSET is the form that takes an absolute time of the monotonic clock.
    return syscall(SYS_futex, word.word, FUTEX_WAIT_BITSET, word.expected, until == kNever ? nullptr : &limit,
                   nullptr, FUTEX_BITSET_MATCH_ANY) == 0;
}

bool SleepOnAll(std::span<const SleepWord> words, Moment until) {
    std::array<futex_waitv, kMostWords> vector;
    const size_t count = std::min(words.size(), kMostWords);
    for (size_t i = 0; i < count; ++i)
        vector[i] = {words[i].expected, reinterpret_cast<uintptr_t>(words[i].word), FUTEX_32, 0};
    const timespec limit = ToTimespec(until);
    const long result = syscall(SYS_futex_waitv, vector.data(), count, 0u, until == kNever ? nullptr : &limit,
                                CLOCK_MONOTONIC);
    if (result >= 0) return true;
    // A kernel that has no such call says so, a sandbox refuses it with whatever it likes.
    const bool wasTried = errno == EAGAIN || errno == ETIMEDOUT || errno == EINTR;
    return !wasTried && SleepOnOne(words[0], std::min(until, Now() + kShortSleep));
}

}  // namespace

Moment Now() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * kSecond + now.tv_nsec;
}

bool SleepOn(std::span<const SleepWord> words, Moment until) {
    return words.size() == 1 ? SleepOnOne(words[0], until) : SleepOnAll(words, until);
}

int Wake(std::atomic<uint32_t>& word, int most) {
    return static_cast<int>(syscall(SYS_futex, &word, FUTEX_WAKE, most, nullptr, nullptr, 0));
}

}  // namespace winport
