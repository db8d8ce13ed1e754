// Sleeping on words that processes share, and waking who sleeps there.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>

namespace winport {

// A moment of the monotonic clock in nanoseconds.
using Moment = int64_t;
inline constexpr Moment kNever = INT64_MAX;

[[nodiscard]] Moment Now();

// A word and the value at which it is worth sleeping.
struct SleepWord {
    std::atomic<uint32_t>* word;
    uint32_t expected;
};

// Sleeps until one of the words is woken or no longer as expected, until the moment, or for no reason at all:
// the caller looks again. True when it was woken. At most 64 words.
bool SleepOn(std::span<const SleepWord> words, Moment until);

// Returns how many were woken.
int Wake(std::atomic<uint32_t>& word, int most);

}  // namespace winport
