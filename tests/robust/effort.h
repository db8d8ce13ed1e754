// How hard a run tries. A short run belongs to every test run, a long one to tests/soak/run; both begin with
// the seed that they print.
#pragma once

#include <cstdint>
#include <random>

struct Effort {
    uint32_t seed = 20261124;
    bool isLong = false;

    // Of a long run's number, what this run does.
    [[nodiscard]] int Of(int longCount, int shortCount) const { return isLong ? longCount : shortCount; }
    [[nodiscard]] std::mt19937 Random() const { return std::mt19937(seed); }
};

// A sanitizer has an allocator of its own, and its shadow grows with what is used.
inline constexpr bool kIsSanitized = sizeof(KESTREL_SANITIZE) > 1;

inline Effort effort;  // set by main, before the first test
