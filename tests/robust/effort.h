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

inline Effort effort;  // set by main, before the first test
